#!/usr/bin/env bash
# Runs a Windows program under Wine, as CTest's emulator:
#   scripts/wine_run.sh <program.exe> [argument...]
#   scripts/wine_run.sh --start     makes the prefix and starts the server that all programs share
#   scripts/wine_run.sh --stop      ends that server
#
# The server outlives the program that starts it. It must not inherit the pipes of CTest or of the calling shell,
# which would wait for it for ever; that is why it is started apart, before the first program.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
export WINEPREFIX=${VELQUAD_WINEPREFIX:-$root/build/wine}
export WINEDEBUG=${WINEDEBUG:--all} WINEDLLOVERRIDES="mscoree,mshtml=" LC_ALL=C
time_limit=${VELQUAD_WINE_TIME_LIMIT:-300}

first_of() {
    local file
    for file in "$@"; do
        [ -x "$file" ] && echo "$file" && return
    done
    echo "none of these is installed: $*" >&2
    return 1
}
wine=$(first_of /usr/lib/wine/wine64 /usr/bin/wine64 /usr/bin/wine)
server=$(first_of /usr/lib/wine/wineserver64 /usr/lib/wine/wineserver /usr/bin/wineserver)

start() {
    mkdir -p "$WINEPREFIX"
    # A server that runs already makes this one end at once.
    setsid "$server" -p </dev/null >/dev/null 2>&1 || true
    [ -e "$WINEPREFIX/.made" ] && return
    timeout -k 5 180 "$wine" wineboot -i </dev/null >/dev/null 2>&1
    # Without a display, looking for one again and again would take seconds.
    timeout -k 5 60 "$wine" reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d null /f </dev/null >/dev/null 2>&1
    touch "$WINEPREFIX/.made"
}

case "${1:-}" in
    --start) start ;;
    --stop) "$server" -k </dev/null >/dev/null 2>&1 || true ;;
    *)
        # Several tests may start at once; one of them makes the prefix.
        mkdir -p "$WINEPREFIX"
        exec 9>"$WINEPREFIX/.lock"
        flock 9
        start 9>&-
        exec 9>&-
        # Processes of the system that the program is the first to need inherit its output too, so that is a file.
        output=$(mktemp)
        errors=$(mktemp)
        trap 'rm -f "$output" "$errors"' EXIT
        status=0
        timeout -k 5 "$time_limit" "$wine" "$@" </dev/null >"$output" 2>"$errors" || status=$?
        # Lines end as they do on this system.
        tr -d '\r' <"$output"
        tr -d '\r' <"$errors" >&2
        exit "$status"
        ;;
esac
