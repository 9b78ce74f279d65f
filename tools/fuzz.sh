#!/usr/bin/env bash
# Builds the fuzz targets and runs each, or those that are named, for some seconds: fuzz.sh [SECONDS [TARGET...]].
# A run begins with the inputs in tests/fuzz/corpus. What it finds stays in build/fuzz/found; new inputs that reach new code
# stay in build/fuzz/corpus. A file tests/fuzz/TARGET.options holds the fuzzer's options for a target.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-60}
shift || true

tools/build.sh fuzz
if [ $# -gt 0 ]; then
  targets=("${@/#/build/fuzz/fuzz/}")
else
  mapfile -t targets < <(find build/fuzz -type f -name 'fuzz_*' -perm -u+x | sort)
fi
[ ${#targets[@]} -gt 0 ] || { printf 'fuzz: no target was built\n' >&2; exit 1; }

broken=0
mkdir -p build/fuzz/found
for target in "${targets[@]}"; do
  name=$(basename "$target")
  corpus=build/fuzz/corpus/$name
  mkdir -p "$corpus"
  begin=tests/fuzz/corpus/$name
  log=build/fuzz/$name.log
  options=()
  if [ -f "tests/fuzz/$name.options" ]; then
    read -ra options <"tests/fuzz/$name.options"
  fi
  printf '%-24s ' "$name"
  if "$target" "${options[@]}" -max_total_time="$seconds" -artifact_prefix="build/fuzz/found/$name-" \
    "$corpus" "$begin" >"$log" 2>&1; then
    grep '^Done ' "$log"
  else
    broken=$((broken + 1))
    printf 'A FIND, see build/fuzz/found and %s\n' "$log"
    tail -n 40 "$log"
  fi
done
printf '%d targets, %d with a find\n' "${#targets[@]}" "$broken"
[ "$broken" -eq 0 ]
