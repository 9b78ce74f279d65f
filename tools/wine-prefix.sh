# Sourced by what runs Windows programs: sets WINEPREFIX to the project's own prefix unless the environment names another one.
#
# Pipes, registry and windows belong to a prefix, so entries of ctest can run side by side in lanes that have a prefix each
# (see cmake/testing.cmake). ZEB_LANE is the number of a lane behind the first; programs that are started from here on inherit the
# prefix and no lane.
export WINEPREFIX="${WINEPREFIX:-$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)/build/wine}${ZEB_LANE:+-$ZEB_LANE}"
unset ZEB_LANE
# The lanes behind the first.
ZEB_LANES=(2)
