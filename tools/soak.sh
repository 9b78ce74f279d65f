#!/usr/bin/env bash
# Wears the agent out at the length at which the figures of docs/testing.md were measured, and prints them: soak.sh [TEST...], where
# a TEST is named as for Python's unittest, with its script in front: "soak.Soak" or "overlap". ZEB_SEED repeats what chance chose.
set -euo pipefail
cd "$(dirname "$0")/.."
source tools/wine-server.sh

tools/build.sh release
keep_wine_server
status=0
[ $# -gt 0 ] || set -- soak overlap
for test in "$@"; do
  arguments=()
  [[ $test != *.* ]] || arguments=("${test#*.}")
  ZEB_SOAK=full ZEB_BIN_DIR=$PWD/build/bin ZEB_TEST_BIN_DIR=$PWD/build/release/tests PYTHONDONTWRITEBYTECODE=1 \
    python3 "tests/soak/test_${test%%.*}.py" "${arguments[@]}" || status=1
done
exit "$status"
