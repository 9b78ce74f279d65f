#!/usr/bin/env bash
# Fails every call of every remote operation in turn, with all codes, holds each call of a real agent's store, and writes what came
# of the sweep into docs/testing.md: faults.sh [FILTER of the tests]. With a filter, which is one of the sweep alone, or behind a
# failure, nothing is written.
set -euo pipefail
cd "$(dirname "$0")/.."
source tools/wine-server.sh

filter=--gtest_filter=${1:-*}
# Several times what a lane takes on a slow machine: one in which a call never returns ends as one that crashed.
readonly MOST_SECONDS=7200
lanes=('' "${ZEB_LANES[@]}")
logs=()
for number in "${!lanes[@]}"; do
  logs+=("build/faults-$number.log")
done

# Runs tests with every call of theirs, and a log of their own: run_full LOG PROGRAM FILTER
run_full() {
  local status=0
  ZEB_FAULTS=full timeout --foreground --kill-after=10 "$MOST_SECONDS" tools/run-wine.sh "build/release/tests/$2.exe" "$3" 2>&1 |
    tee "$1" | tr -d '\r' | { grep --line-buffered -E '^FAULTS: |FAILED' || [ "$?" -eq 1 ]; } || status=$?
  # A program that crashed has no line of its end. What it ran last may be any of its tests.
  grep -qE '^\[==========\] .* ran\.' "$1" || {
    printf 'faults: THE PROGRAM ENDED IN %s\n' "$(grep -F '[ RUN      ]' "$1" | tail -1 | tr -d '\r')" >&2
    status=1
  }
  ! grep -q 'FAILED' "$1" || status=1
  return "$status"
}

# The tests of one lane, which has its own part of them: sweep NUMBER
sweep() {
  ZEB_LANE=${lanes[$1]} GTEST_TOTAL_SHARDS=${#lanes[@]} GTEST_SHARD_INDEX=$1 run_full "${logs[$1]}" faults_tests "$filter"
}

# An agent of its own, beside a store that hangs.
hold_store() {
  ZEB_AGENT=$PWD/build/bin/ZebAgentForOutlook64.exe ZEB_HELD_STORE=$PWD/build/release/tests/held_store.dll \
    run_full build/faults-hanging-store.log wire_tests '--gtest_filter=*HangingStore*'
}

[ -e build/release/build.ninja ] || cmake --preset release
cmake --build --preset release --target faults_tests wire_tests
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
[ "$#" -ne 0 ] || hold_store || status=1
if [ "$#" -eq 0 ] && [ "$status" -eq 0 ]; then
  tools/faults_table.py docs/testing.md build/faults-tests.txt "${logs[@]}"
fi
exit "$status"
