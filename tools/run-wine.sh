#!/usr/bin/env bash
# Runs a Windows program under Wine with the project's own prefix: run-wine.sh PROGRAM [ARGUMENT...]
# The variables that the environment sets already stay as they are.
set -eu
source "$(dirname "$0")/wine-prefix.sh"
# File names beyond ASCII need a locale of UTF-8, which an empty environment does not have.
case "${LC_ALL:-${LC_CTYPE:-${LANG:-}}}" in
  *[Uu][Tt][Ff]*8*) ;;
  *) export LC_ALL=C.UTF-8 ;;
esac
export WINEDEBUG="${WINEDEBUG:--all}"
# mapi32=n: the MAPI32.dll beside the program and not the one that Wine brings along.
# winedbg.exe=d: an unhandled exception ends the process at once, without a debugger.
export WINEDLLOVERRIDES="${WINEDLLOVERRIDES:-mapi32=n;winedbg.exe=d;mscoree=;mshtml=}"
# Debian's Wine has no preloader, and its loader lies just below the gigabyte in which the kernel places the heap at random:
# of some thousand programs one found its heap where Windows has a page of its own, and ended with 1 and without a word. Without
# randomisation the heap stays below. Where a sandbox forbids that, programs run all the same.
without_randomisation=(setarch "$(uname -m)" -R)
"${without_randomisation[@]}" true 2>/dev/null || without_randomisation=()
exec "${without_randomisation[@]}" "${ZEB_WINE_LOADER:-/usr/lib/wine/wine64}" "$@"
