#!/usr/bin/env bash
# Checks what no compiler does: the form of the sources, the rules between the rooms, the tests that the documents name, and
# what cppcheck and clang-tidy say. Ends with 1 if there is anything to say. With the argument "quick", clang-tidy leaves the tests
# out.
set -euo pipefail
cd "$(dirname "$0")/.."
bad=0

for tool in clang-format clang-tidy cppcheck python3 clang++; do
  command -v "$tool" >/dev/null || { printf 'lint: NO %s ON THIS MACHINE\n' "$tool" >&2; exit 1; }
done

printf '== lint: format\n'
mapfile -t sources < <(find . -path ./build -prune -o \( -name '*.cpp' -o -name '*.h' \) -print | sort)
if clang-format --dry-run -Werror "${sources[@]}"; then
  printf '%d files\n' "${#sources[@]}"
else
  bad=1
fi

printf '== lint: rooms\n'
tools/check_rooms.py || bad=1

printf '== lint: limits\n'
tools/check_limits.py || bad=1

# Both readers need headers that the builds make, and how each file is compiled.
tools/build.sh release sanitize fuzz
printf '== lint: cppcheck\n'
tools/run_cppcheck.py || bad=1
printf '== lint: clang-tidy\n'
if [ "${1:-}" = quick ]; then
  tools/run_clang_tidy.py --without-tests || bad=1
else
  tools/run_clang_tidy.py || bad=1
fi

[ "$bad" -eq 0 ] && printf 'lint: nothing to say\n' || printf 'lint: see above\n'
exit "$bad"
