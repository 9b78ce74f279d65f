#!/usr/bin/env bash
# Runs the tests of the pure ring natively, counts which of its lines they reach, and writes the table of docs/testing.md.
# Prints each line that was not reached.
set -euo pipefail
cd "$(dirname "$0")/.."
build=build/coverage

tools/build.sh coverage
mapfile -t programs < <(find "$build/tests" -maxdepth 1 -type f -name '*_tests' -perm -u+x | sort)
[ ${#programs[@]} -gt 0 ] || { printf 'coverage: no test was built\n' >&2; exit 1; }

# One profile a program: in a common one, functions that two programs have in different forms would get lost.
rm -rf "$build/lines"
mkdir -p "$build/lines"
for program in "${programs[@]}"; do
  lines=$build/lines/$(basename "$program")
  printf '%s\n' "$(basename "$program")"
  LLVM_PROFILE_FILE=$lines.profraw "$program" --gtest_brief=1 >"$lines.log" 2>&1 || { cat "$lines.log"; exit 1; }
  llvm-profdata merge -o "$lines.profdata" "$lines.profraw"
  llvm-cov export -format=lcov -instr-profile "$lines.profdata" "$program" >"$lines.info" 2>>"$lines.log"
done
tools/coverage_table.py "$build" docs/testing.md
