# Sourced by the scripts that run many Windows programs: keeps one wineserver alive while they do, because without one
# each program starts it anew, which takes longer than most programs run.

# Starts the server of the project's prefix and stops it, with all programs that still run in the prefix, when the
# script ends. The script must not set a trap for EXIT of its own; on_exit is called instead if it is defined, and its
# failure is one of the script.
keep_wine_server() {
  export WINEPREFIX="${WINEPREFIX:-$PWD/build/wine}"
  wine_server=${WINESERVER:-/usr/lib/wine/wineserver64}
  wine_server_pid=
  # In the foreground of a job of its own, so that its process is known. One that runs already makes this one end.
  WINEDEBUG=-all "$wine_server" -f -p >/dev/null 2>&1 &
  wine_server_pid=$!
  trap release_wine_server EXIT
  trap 'exit 130' INT
  trap 'exit 143' TERM
  # The first program starts Wine's services, which keep its output open for as long as they live. It must not be a
  # program whose end of output somebody waits for.
  tools/run-wine.sh cmd /c exit </dev/null >/dev/null 2>&1
}

release_wine_server() {
  local status=$?
  trap - EXIT
  ! declare -F on_exit >/dev/null || on_exit || status=$((status == 0 ? 1 : status))
  if kill "$wine_server_pid" 2>/dev/null; then
    wait "$wine_server_pid" 2>/dev/null || true
  fi
  exit "$status"
}
