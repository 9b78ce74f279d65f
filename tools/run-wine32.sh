#!/usr/bin/env bash
# Runs a 32-bit Windows program under the 32-bit Wine that tools/setup.sh unpacks, in the prefix of run-wine.sh:
# run-wine32.sh PROGRAM [ARGUMENT...]. Exit status 77 says that there is no 32-bit Wine on this machine.
set -eu
here=$(cd "$(dirname "$0")/.." && pwd)
root=${ZEB_WINE32_ROOT:-$here/build/wine32/root}
if [ ! -x "$root/usr/lib/wine/wine" ]; then
  echo "run-wine32: NO 32-BIT WINE in $root; tools/setup.sh fetches it" >&2
  exit 77
fi
# Both loaders must talk to one wineserver, the 64-bit one.
export WINESERVER="${WINESERVER:-/usr/lib/wine/wineserver64}"
export WINEDLLPATH="${WINEDLLPATH:-$root/usr/lib/i386-linux-gnu/wine}"
# A 64-bit program that is started from the 32-bit one passes over these.
export LD_LIBRARY_PATH="$root/usr/lib/i386-linux-gnu:$root/lib/i386-linux-gnu${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}"
export ZEB_WINE_LOADER="$root/usr/lib/wine/wine"
exec "$here/tools/run-wine.sh" "$@"
