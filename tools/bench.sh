#!/usr/bin/env bash
# Measures what a read costs, beside its floor and beside an independent reader, and writes the figures into
# docs/performance.md: bench.sh [FOLDER...], where a FOLDER is a kind and a number such as contacts500 or, to try it, contacts20.
# With such words only those are measured, and what would be written goes into build/bench/tried.
set -euo pipefail
cd "$(dirname "$0")/.."
# All programs share one processor: between two of them most of a remote call would be the time that an idle one takes to wake up,
# which depends on the machine and on nothing that is measured here.
taskset -cp "$(taskset -cp $$ | grep -oE '[0-9]+$')" $$ >/dev/null
source tools/wine-server.sh

[ -e build/release/build.ninja ] || cmake --preset release
cmake --build --preset release --target bench_programs
place=build/bench document=docs/performance.md
if [ "$#" -ne 0 ]; then
  place=build/bench/tried document=build/bench/tried/performance.md
  mkdir -p "$place"
  cp docs/performance.md "$document"
fi
mkdir -p "$place"
keep_wine_server
# What the end-to-end tests need runs with Debian's own Python.
python=/usr/bin/python3
[ -x "$python" ] || python=python3
export PYTHONDONTWRITEBYTECODE=1
"$python" tests/bench/bench.py "$place/measurements.jsonl" "$@"
"$python" tests/bench/report.py "$place/measurements.jsonl" "$document" "${document%/*}/growth.svg"
