#!/usr/bin/env bash
# Tells whether every program and library of the product is in build/bin.
set -euo pipefail
cd "$(dirname "$0")/.."

products=(ZebAgentForOutlook64.exe Fennic64.dll Dunmere64bit.dll MAPI32.dll zebdesk.exe zebdesk32.exe)
missing=0
for product in "${products[@]}"; do
  if [ -f "build/bin/$product" ]; then
    printf '%9d bytes  build/bin/%s\n' "$(stat -c %s "build/bin/$product")" "$product"
  else
    printf 'build/bin/%s IS MISSING\n' "$product" >&2
    missing=1
  fi
done
exit $missing
