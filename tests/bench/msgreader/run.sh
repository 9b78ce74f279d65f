#!/usr/bin/env bash
# Measures how long an independent program takes to read a folder of .msg files and to print the fields that the agent's
# documents have: run.sh FOLDER contacts|appointments|recurring|exceptions cold|warm|fields REPETITIONS OUTFILE TURN. Appends a
# line of JSON: for processes that are started anew, which take the turns of that name with something else, or for one that has
# read the folder before; with "fields" it appends what is printed instead. What it needs is installed when it is not there:
# node, npm, and the package into build/bench. Where that cannot be had it says so, appends nothing and ends with 0.
set -euo pipefail
[ $# -eq 6 ] || { printf 'usage: run.sh FOLDER KIND cold|warm|fields REPETITIONS OUTFILE TURN\n' >&2; exit 2; }
folder=$(realpath "$1") kind=$2 how=$3 repetitions=$4 outfile=$(realpath "$5") turn=$6
here=$(cd "$(dirname "$0")" && pwd)
cd "$here/../../.."
source tools/packages.sh
place=$PWD/build/bench/msgreader

say() { printf 'msgreader: %s\n' "$*"; }
die() { printf 'msgreader: %s\n' "$*" >&2; exit 1; }
not_measured() { printf 'msgreader: NOT MEASURED: %s\n' "$*" >&2; exit 0; }

have_node() { command -v node >/dev/null && command -v npm >/dev/null; }

install_node() {
  command -v dpkg-query >/dev/null || return 1
  say "installing nodejs and npm"
  # An index that cannot be fetched matters only if a package is missing because of it.
  as_root apt-get update -q || say "not every index could be fetched; going on"
  install_packages nodejs npm
}

# The lock file tells whether what is there is what is asked for.
have_package() { cmp -s "$here/package-lock.json" "$place/installed-lock.json"; }

install_package() {
  say "fetching the package into build/bench"
  rm -rf "$place"
  mkdir -p "$place"
  cp "$here/package.json" "$here/package-lock.json" "$place/"
  (cd "$place" && npm ci --ignore-scripts --no-audit --no-fund --loglevel=error --fetch-retries=1) || return 1
  cp "$here/package-lock.json" "$place/installed-lock.json"
}

have_node || (install_node) || true
have_node || not_measured "node and npm are not on this machine and could not be installed"
have_package || install_package || not_measured "the package could not be fetched"

NODE_PATH=$place/node_modules exec python3 "$here/measure.py" "$folder" "$kind" "$how" "$repetitions" "$outfile" "$turn"
