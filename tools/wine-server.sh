# Sourced by the scripts that run many Windows programs: keeps one wineserver alive while they do, because without one
# each program starts it anew, which takes longer than most programs run.
source "$(dirname "${BASH_SOURCE[0]}")/wine-prefix.sh"

# Starts the servers of the project's prefix and of the lanes that are named, and stops them, with all programs that still run in
# the prefixes, when the script ends: keep_wine_server [LANE...]. The script must not set a trap for EXIT of its own; on_exit is
# called instead if it is defined, and its failure is one of the script.
keep_wine_server() {
  wine_server=${WINESERVER:-/usr/lib/wine/wineserver64}
  wine_server_pids=()
  trap release_wine_server EXIT
  trap 'exit 130' INT
  trap 'exit 143' TERM
  local lane
  for lane in '' "$@"; do
    # In the foreground of a job of its own, so that its process is known. One that runs already makes this one end.
    WINEDEBUG=-all WINEPREFIX="$WINEPREFIX${lane:+-$lane}" "$wine_server" -f -p >/dev/null 2>&1 &
    wine_server_pids+=($!)
    # The first program starts Wine's services, which keep its output open for as long as they live. It must not be a
    # program whose end of output somebody waits for.
    ZEB_LANE=$lane tools/run-wine.sh cmd /c exit </dev/null >/dev/null 2>&1
  done
}

release_wine_server() {
  local status=$?
  trap - EXIT
  ! declare -F on_exit >/dev/null || on_exit || status=$((status == 0 ? 1 : status))
  local pid
  for pid in "${wine_server_pids[@]}"; do
    if kill "$pid" 2>/dev/null; then
      wait "$pid" 2>/dev/null || true
    fi
  done
  exit "$status"
}
