#!/usr/bin/env bash
# Prepares a bare Debian 12 machine for building and testing: the packages, a 32-bit Wine of the project's own below
# build/wine32, and a Wine prefix in build/wine (or in $WINEPREFIX). What is there already is left alone, so a second run
# takes a moment. Nothing here changes which architectures dpkg knows.
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
cd "$here"
source tools/wine-prefix.sh
source tools/packages.sh

# Without these nothing can be built or run.
required=(
  g++-mingw-w64-x86-64-posix g++-mingw-w64-i686-posix mingw-w64-tools
  cmake ninja-build make wine64 googletest python3)
# These serve lint, the sanitized, fuzzed and counted builds, the independent readers of .msg files and recurrences, tests that give the
# agent another clock, and the 32-bit Wine.
wanted=(clang clang-format clang-tidy cppcheck libclang-rt-14-dev llvm python3-olefile python3-dateutil libfaketime libc6-i386)

# What the 32-bit Wine loads besides itself. Without FreeType every program begins with a complaint, and with FreeType but
# without Fontconfig it hangs when it makes its first window.
wine32_libraries=(libfreetype6 libpng16-16 zlib1g libbrotli1 libbz2-1.0 libfontconfig1 libexpat1)

wine64_loader=/usr/lib/wine/wine64
wine32_root=$here/build/wine32/root
prefix=$WINEPREFIX

say() { printf 'setup: %s\n' "$*"; }
die() { printf 'setup: %s\n' "$*" >&2; exit 1; }

set_up_packages() {
  command -v dpkg-query >/dev/null || die "this is for Debian; on Windows, MSYS2 brings the tools (see docs)"
  local -a lacking
  mapfile -t lacking < <(missing "${required[@]}" "${wanted[@]}")
  if [ ${#lacking[@]} -eq 0 ]; then
    say "packages: all there"
    return
  fi
  say "packages: installing ${lacking[*]}"
  # An index that cannot be fetched matters only if a package is missing because of it.
  as_root apt-get update -q || say "packages: not every index could be fetched; going on"
  install_packages "${lacking[@]}" && return
  say "packages: not all could be installed; trying those that the build needs"
  mapfile -t lacking < <(missing "${required[@]}")
  [ ${#lacking[@]} -eq 0 ] || install_packages "${lacking[@]}" || die "packages: could not install ${lacking[*]}"
  mapfile -t lacking < <(missing "${wanted[@]}")
  say "packages: GOING ON WITHOUT ${lacking[*]}: what needs them will say so"
}

# Downloads the 32-bit half of Wine, in the version of the 64-bit half because both talk to one wineserver. apt-get works on
# lists and a status of its own, so the machine does not become a two-architecture one.
fetch_wine32() {
  local work=$1 version=$2
  local -a apt=(apt-get -q
    -o APT::Architecture=i386 -o APT::Architectures=i386 -o APT::Sandbox::User=
    -o "Dir::State::Lists=$work/lists" -o "Dir::State::Status=$work/status" -o "Dir::Cache=$work/cache"
    -o Acquire::http::Timeout=30 -o Acquire::Retries=2)
  mkdir -p "$work/lists/partial" "$work/cache/archives/partial" "$work/packages" "$work/root"
  : >"$work/status"
  "${apt[@]}" update >"$work/update.log" 2>&1 || true
  (cd "$work/packages" && "${apt[@]}" download "wine32=$version" "libwine=$version" "${wine32_libraries[@]}") || return 1
  local package
  for package in "$work"/packages/*.deb; do
    dpkg -x "$package" "$work/root" || return 1
  done
  # By this the 32-bit loader finds the 64-bit one, for programs that a 32-bit program starts.
  ln -s "$wine64_loader" "$work/root/usr/lib/wine/wine64"
}

set_up_wine32() {
  local version
  version=$(dpkg-query -W -f '${Version}' wine64)
  if [ "$(cat "$wine32_root/version" 2>/dev/null)" = "$version" ]; then
    say "32-bit Wine: there, $version"
    return
  fi
  say "32-bit Wine: downloading $version (about 95 MB) to build/wine32"
  local work=$here/build/wine32/new
  rm -rf "$work" "$wine32_root"
  mkdir -p "$work"
  if [ -e /lib/ld-linux.so.2 ] && fetch_wine32 "$work" "$version"; then
    printf '%s\n' "$version" >"$work/root/version"
    mv "$work/root" "$wine32_root"
    say "32-bit Wine: unpacked"
  else
    say "32-bit Wine: NOT AVAILABLE on this machine. Tests of the 32-bit desktop program will be skipped."
  fi
  rm -rf "$work"
}

# One prefix serves both halves: the 32-bit desktop program and the 64-bit agent must see the same named pipes.
set_up_prefix() {
  local kind=64
  [ ! -e "$wine32_root/version" ] || kind=64+32
  local stamp
  stamp="$(dpkg-query -W -f '${Version}' wine64) $kind"
  if [ "$(cat "$prefix/zeb-prefix" 2>/dev/null)" = "$stamp" ]; then
    say "Wine prefix: there, $prefix ($kind bits)"
    return
  fi
  [ ! -e "$prefix/system.reg" ] || [ -e "$prefix/zeb-prefix" ] ||
    die "Wine prefix: $prefix was not made by this script; name another one in WINEPREFIX"
  say "Wine prefix: making $prefix ($kind bits), which takes some seconds"
  [ ! -e "$prefix" ] || WINEPREFIX=$prefix /usr/lib/wine/wineserver64 -k || true
  rm -rf "$prefix"
  mkdir -p "$prefix"
  echo unfinished >"$prefix/zeb-prefix"
  # The dll path makes the prefix take in the 32-bit system libraries.
  WINEPREFIX=$prefix WINEDLLPATH=$wine32_root/usr/lib/i386-linux-gnu/wine \
    env -u DISPLAY timeout 300 tools/run-wine.sh wineboot -i >"$prefix.log" 2>&1 ||
    die "Wine prefix: could not be made, see $prefix.log"
  # The server writes the registry to its files when it ends.
  WINEPREFIX=$prefix timeout 60 /usr/lib/wine/wineserver64 -w || true
  [ "$kind" = 64 ] || [ -e "$prefix/drive_c/windows/syswow64/kernel32.dll" ] ||
    die "Wine prefix: the 32-bit libraries are not in it, see $prefix.log"
  printf '%s\n' "$stamp" >"$prefix/zeb-prefix"
}

# A lane's prefix is a copy. Of what Windows itself consists of, the settings alone are ever written to, so links to the rest do.
set_up_lane() {
  local lane=$prefix-$1
  ! cmp -s "$prefix/zeb-prefix" "$lane/zeb-prefix" || { say "Wine prefix: there, $lane"; return; }
  [ ! -e "$lane" ] || [ -e "$lane/zeb-prefix" ] || die "Wine prefix: $lane was not made by this script"
  [ ! -e "$lane" ] || WINEPREFIX=$lane /usr/lib/wine/wineserver64 -k || true
  say "Wine prefix: making $lane as a copy"
  rm -rf "$lane"
  mkdir -p "$lane/drive_c"
  echo unfinished >"$lane/zeb-prefix"
  if cp -al "$prefix"/drive_c/windows "$lane/drive_c/" 2>/dev/null; then
    cp -a --remove-destination "$prefix"/drive_c/windows/*.ini "$lane/drive_c/windows/"
  else
    rm -rf "$lane/drive_c/windows"
    cp -a "$prefix"/drive_c/windows "$lane/drive_c/"
  fi
  local part
  for part in "$prefix"/drive_c/*; do
    [ "${part##*/}" = windows ] || cp -a "$part" "$lane/drive_c/"
  done
  cp -a "$prefix"/*.reg "$prefix"/.update-timestamp "$prefix"/dosdevices "$lane/"
  cp "$prefix/zeb-prefix" "$lane/zeb-prefix"
}

set_up_packages
set_up_wine32
set_up_prefix
for number in "${ZEB_LANES[@]}"; do
  set_up_lane "$number"
done
say "done"
