#!/usr/bin/env bash
# Fails every call of every remote operation in turn, with all codes, and writes what came of it into docs/testing.md:
# faults.sh [FILTER of the tests]. With a filter, or behind a failure, nothing is written.
set -euo pipefail
cd "$(dirname "$0")/.."
source tools/wine-server.sh

filter=--gtest_filter=${1:-*}
# Several times what a lane takes on a slow machine: one in which a call never returns ends as one that crashed.
readonly MOST_SECONDS=7200
lanes=('' "${ZEB_LANES[@]}")

# The tests of one lane, which has its own part of them, and its own log: sweep NUMBER.
sweep() {
  local log=$PWD/build/faults-$1.log status=0
  ZEB_LANE=${lanes[$1]} ZEB_FAULTS=full GTEST_TOTAL_SHARDS=${#lanes[@]} GTEST_SHARD_INDEX=$1 \
    timeout --foreground --kill-after=10 "$MOST_SECONDS" tools/run-wine.sh build/release/tests/faults_tests.exe "$filter" 2>&1 |
    tee "$log" | tr -d '\r' | { grep --line-buffered -E '^FAULTS: |FAILED' || [ "$?" -eq 1 ]; } || status=$?
  # A program that crashed has no line of its end. What it ran last may be any of its tests.
  grep -qE '^\[==========\] .* ran\.' "$log" || {
    printf 'faults: THE PROGRAM ENDED IN %s\n' "$(grep -F '[ RUN      ]' "$log" | tail -1 | tr -d '\r')" >&2
    status=1
  }
  ! grep -q 'FAILED' "$log" || status=1
  return "$status"
}

[ -e build/release/build.ninja ] || cmake --preset release
cmake --build --preset release --target faults_tests
keep_wine_server "${ZEB_LANES[@]}"
tools/run-wine.sh build/release/tests/faults_tests.exe --gtest_list_tests "$filter" >build/faults-tests.txt 2>/dev/null
sweeps=()
for number in "${!lanes[@]}"; do
  sweep "$number" &
  sweeps+=($!)
done
status=0
for sweep in "${sweeps[@]}"; do
  wait "$sweep" || status=1
done
if [ "$#" -eq 0 ] && [ "$status" -eq 0 ]; then
  tools/faults_table.py docs/testing.md build/faults-tests.txt build/faults-?.log
fi
exit "$status"
