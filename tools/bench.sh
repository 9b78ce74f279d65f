#!/usr/bin/env bash
# Measures what a read costs, beside its floor and beside an independent reader, and writes the figures into
# docs/performance.md: bench.sh [FOLDER...], where a FOLDER is a kind and a number such as contacts500. With such words
# only those are measured, and nothing is written.
set -euo pipefail
cd "$(dirname "$0")/.."
# All programs share one processor: between two of them most of a remote call would be the time that an idle one takes to wake up,
# which depends on the machine and on nothing that is measured here.
taskset -cp "$(taskset -cp $$ | grep -oE '[0-9]+$')" $$ >/dev/null
source tools/wine-server.sh

[ -e build/release/build.ninja ] || cmake --preset release
cmake --build --preset release --target bench_programs
mkdir -p build/bench
keep_wine_server
# What the end-to-end tests need runs with Debian's own Python.
python=/usr/bin/python3
[ -x "$python" ] || python=python3
PYTHONDONTWRITEBYTECODE=1 "$python" tests/bench/bench.py build/bench/measurements.jsonl "$@"
if [ "$#" -eq 0 ]; then
  PYTHONDONTWRITEBYTECODE=1 "$python" tests/bench/report.py \
    build/bench/measurements.jsonl docs/performance.md docs/growth.svg
fi
