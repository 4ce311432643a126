#!/usr/bin/env bash
# usage: wine.sh PREFIX start [SCRIPT] | stop | run PROGRAM [ARGUMENT...] | host COMMAND [ARGUMENT...]
#
# Runs test programs of the Windows build under Wine, in a prefix made for the run. One server is kept alive from start
# to stop, since its start costs seconds. A program has passed when it says so and exits with 0: an exit alone can come
# from a program that never ran. SCRIPT furnishes the new prefix.
set -euo pipefail

# Wine keeps a low page for itself, and recent kernels place a program's heap anywhere in the gigabyte around it. Once in
# some thousand starts they collide, and Wine ends with 1 before the program has begun. Without random addresses they
# cannot; a container may forbid that, and takes its chance.
if [ -z "${KESTOVA_FIXED_ADDRESSES:-}" ] && setarch --addr-no-randomize true 2>/dev/null; then
    KESTOVA_FIXED_ADDRESSES=1 exec setarch --addr-no-randomize "$0" "$@"
fi

# Silent but for that collision.
export WINEPREFIX=$1 WINEDEBUG=-all,err+virtual WINEDLLOVERRIDES="mscoree,mshtml="
unset DISPLAY
# The log file has a test of its own.
export KESTOVA_LOG_LEVEL=0

# step WHAT COMMAND...: a part of the start, whose output is shown if it fails.
step() {
    local what=$1 status=0
    shift
    "$@" >"$WINEPREFIX/start.log" 2>&1 || status=$?
    [ "$status" -ne 0 ] || return 0
    cat "$WINEPREFIX/start.log" >&2
    printf 'wine.sh: %s failed with status %s: %s\n' "$what" "$status" "$*" >&2
    exit 1
}

case $2 in
    start)
        rm -rf "$WINEPREFIX"
        mkdir -p "$WINEPREFIX"
        step "the start of the server" wineserver -p
        step "the making of a prefix" wine wineboot -i
        step "the look at the prefix" ls "$WINEPREFIX/drive_c/windows"
        # Without a desktop the search for input devices can hold up the start of every other service for minutes.
        step "a setting of the prefix" \
            wine reg add 'HKLM\System\CurrentControlSet\Services\winebus' /v Start /t REG_DWORD /d 4 /f
        [ $# -lt 3 ] || step "the furnishing of the prefix" "$3"
        # Services and the types of drives are read when the server starts.
        wineserver -k
        wineserver -w
        step "the second start of the server" wineserver -p
        # What looks for a COM server asks this service, which starts late by itself.
        wine net start rpcss >/dev/null 2>&1 || true
        ;;
    stop)
        wineserver -k || true
        wineserver -w
        rm -rf "$WINEPREFIX"
        ;;
    # A command of this machine that starts programs under Wine itself.
    host)
        shift 2
        exec "$@"
        ;;
    run)
        shift 2
        output=$(mktemp)
        trap 'rm -f "$output"' EXIT
        status=0
        # What the program leaves running must not hold the caller's pipes.
        wine "$@" >"$output" 2>&1 </dev/null || status=$?
        tr -d '\r' <"$output"
        [ "$status" -eq 0 ] && grep -q '\[  PASSED  \] [1-9]' "$output"
        ;;
esac
