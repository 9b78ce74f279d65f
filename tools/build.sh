#!/usr/bin/env bash
# Configures and builds presets of CMakePresets.json: build.sh PRESET...
set -euo pipefail
cd "$(dirname "$0")/.."

for preset in "$@"; do
  printf '== build: %s\n' "$preset"
  # A configuration that is there already configures itself again when its lists change.
  [ -e "build/$preset/build.ninja" ] || cmake --preset "$preset"
  cmake --build --preset "$preset"
done
