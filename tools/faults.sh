#!/usr/bin/env bash
# Fails every call of every remote operation in turn, with all codes, and writes what came of it into docs/testing.md:
# faults.sh [FILTER of the tests]. With a filter, or behind a failure, nothing is written.
set -euo pipefail
cd "$(dirname "$0")/.."
source tools/wine-server.sh

[ -e build/release/build.ninja ] || cmake --preset release
cmake --build --preset release --target faults_tests
log=$PWD/build/faults.log
keep_wine_server
status=0
ZEB_FAULTS=full tools/run-wine.sh build/release/tests/faults_tests.exe --gtest_filter="${1:-*}" 2>&1 |
  tee "$log" | tr -d '\r' | { grep --line-buffered -E '^FAULTS: |FAILED' || [ "$?" -eq 1 ]; } || status=$?
# A program that crashed has no line of its end. What it ran last may be any of its tests.
grep -qE '^\[==========\] .* ran\.' "$log" || {
  printf 'faults: THE PROGRAM ENDED IN %s\n' "$(grep -F '[ RUN      ]' "$log" | tail -1 | tr -d '\r')" >&2
  status=1
}
! grep -q 'FAILED' "$log" || status=1
if [ "$#" -eq 0 ] && [ "$status" -eq 0 ]; then
  tools/faults_table.py "$log" docs/testing.md
fi
exit "$status"
