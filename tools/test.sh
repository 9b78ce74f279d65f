#!/usr/bin/env bash
# Builds and runs all tests: the release build under Wine, then the pure ring natively with the sanitizers. Behind them
# stands what was measured and each single test that was left out; the last line counts the entries of both runs. Ends with 1 if a
# test failed or a run could not be had. With the argument "checked" it is the checked build instead, under Wine alone.
set -euo pipefail
cd "$(dirname "$0")/.."
source tools/wine-server.sh

passed=0
failed=0
skipped=0
measured=
left_out=

# Adds the counts of a result file that ctest wrote: count_results FILE
count_results() {
  local suite number
  suite=$(grep -m1 -A12 '<testsuite' "$1")
  number() { sed -nE "s/.*[[:space:]]$1=\"([0-9]+)\".*/\1/p" <<<"$suite" | head -n1; }
  local all bad off out
  all=$(number tests) bad=$(number failures) off=$(number disabled) out=$(number skipped)
  failed=$((failed + bad))
  skipped=$((skipped + off + out))
  passed=$((passed + all - bad - off - out))
}

# ctest shows nothing of an entry that passes, though single tests in it may have been left out. Prints what such tests say in
# the log of a run, as lines "measured ENTRY: TEXT" and "left_out ENTRY: TEXT": read_log FILE
read_log() {
  tr -d '\r' <"$1" | awk '
    sub(/^[0-9]+\/[0-9]+ Testing: /, "") { entry = $0 }
    match($0, /MEASURED: /) { print "measured " entry ": " substr($0, RSTART + RLENGTH) }
    sub(/^SKIPPED: /, "") { print "left_out " entry ": " $0 }
    /^\[  SKIPPED \] .* ms\)$/ { print "left_out " entry ": " $4 ": " reason }
    NF { reason = $0 }'
}

# Notes what the tests of a run say: note_log FILE
note_log() {
  local kind text
  while read -r kind text; do
    printf -v "$kind" '%s  %s\n' "${!kind}" "$text"
  done < <(read_log "$1")
}

# The closing section.
print_notes() {
  [ -z "$measured" ] || printf '== measured\n%s' "$measured"
  [ -z "$left_out" ] ||
    printf '== LEFT OUT, of entries that may have passed: %d TESTS\n%s' "$(grep -c . <<<"${left_out%$'\n'}")" "$left_out"
}

fail() {
  printf 'test: %s\n' "$1" >&2
  failed=$((failed + 1))
}

# Runs the tests of one preset: run_tests PRESET [ARGUMENT of ctest...]
run_tests() {
  local preset=$1 results=$PWD/build/$1/test-results.xml status=0 failed_before=$failed
  local log=$PWD/build/$1/Testing/Temporary/LastTest.log
  shift
  printf '== test: %s\n' "$preset"
  rm -f "$results" "$log"
  ctest --preset "$preset" --no-tests=error --output-junit "$results" "$@" || status=$?
  [ ! -s "$results" ] || count_results "$results"
  [ ! -s "$log" ] || note_log "$log"
  # A program that could not be started at all stands in the file as one that was left out.
  if [ "$status" -ne 0 ] && [ "$failed" -eq "$failed_before" ]; then
    fail "ctest of $preset ended with $status"
  fi
}

# Runs the tests of a build under Wine: run_lanes PRESET
run_lanes() {
  keep_wine_server "${ZEB_LANES[@]}"
  run_tests "$1" -j "$((1 + ${#ZEB_LANES[@]}))"
}

test_release() {
  # No test runs the measuring programs, but all of them are to build.
  if tools/build.sh release desktop32 && cmake --build --preset release --target bench_programs && tools/check_products.sh; then
    run_lanes release
  else
    fail "THE PROGRAMS WERE NOT BUILT"
  fi
}

test_checked() {
  # There is no checked build for 32 bits: that desktop program is the released one.
  if tools/build.sh checked desktop32 && cp build/bin/zebdesk32.exe build/checked/bin/; then
    run_lanes checked
  else
    fail "THE CHECKED PROGRAMS WERE NOT BUILT"
  fi
}

test_sanitized() {
  if ! command -v clang++ >/dev/null; then
    printf 'test: NO CLANG ON THIS MACHINE, so nothing was tested with the sanitizers\n'
    skipped=$((skipped + 1))
  elif tools/build.sh sanitize; then
    run_tests sanitize -j "$(nproc)"
  else
    fail "THE SANITIZED BUILD FAILED"
  fi
}

if [ "${1:-}" = checked ]; then
  test_checked
else
  test_release
  test_sanitized
fi

print_notes
printf '%d passed, %d failed, %d skipped\n' "$passed" "$failed" "$skipped"
[ "$failed" -eq 0 ] && [ "$passed" -gt 0 ]
