# Sourced by the scripts that install Debian packages. They define die, which tells why the script ends and ends it.

# Prints those of the packages that are not installed.
missing() {
  local package
  for package in "$@"; do
    [ "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null)" = installed ] || printf '%s\n' "$package"
  done
}

as_root() {
  if [ "$(id -u)" -eq 0 ]; then
    "$@"
  elif command -v sudo >/dev/null; then
    sudo "$@"
  else
    die "packages have to be installed, which needs root: run this as root, or install sudo"
  fi
}

install_packages() {
  as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends "$@"
}
