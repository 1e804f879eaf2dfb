#!/bin/sh
# Wine as the tests use it.
#
#   wine.sh run PROGRAM [ARGUMENT ...]   runs a Windows program
#   wine.sh start                        keeps the Wine server alive, so that each program starts at once, and gives the
#                                        programs a screen where DISPLAY names none
#   wine.sh stop                         ends it, with every program that still runs under it, and the screen
#   wine.sh make                         makes the prefix anew
#
# KELPKIT_CODE_PAGE  ANSI code page: 936 (default) or 1252. Each has a prefix of its own in build/wine.
# KELPKIT_RESULTS    folder that receives GoogleTest's XML report of the run (optional). A program that ends without a
#                    report has failed, whatever its exit code.
# KELPKIT_COUNTS     folder that receives the lines that ran, of a build with the preset mingw-coverage (optional); one
#                    folder within for each program and code page
set -eu

root=$(CDPATH='' cd -- "$(dirname -- "$0")/.." && pwd)
code_page=${KELPKIT_CODE_PAGE:-936}
# Wine takes the ANSI code page from the locale.
case $code_page in
936) LC_ALL=zh_CN.UTF-8 ;;
1252) LC_ALL=en_US.UTF-8 ;;
*)
    echo "wine.sh: no locale is known for code page $code_page" >&2
    exit 2
    ;;
esac
WINEPREFIX=$root/build/wine/$code_page
# Silent, save where Wine finds no room for itself in memory.
WINEDEBUG=${WINEDEBUG:--all,err+virtual}
# No browser and no .NET engine.
WINEDLLOVERRIDES='mscoree,mshtml='
export LC_ALL WINEPREFIX WINEDEBUG WINEDLLOVERRIDES

# Debian's wine command looks for 32-bit support first and complains where there is none.
wine=/usr/lib/wine/wine64
[ -x "$wine" ] || wine=$(command -v wine64 || command -v wine)
# Wine needs certain addresses. Where Linux puts the heap at random, it takes them from Wine once in some thousand
# starts, and the program ends before it begins. A container may forbid the setting; its programs start without it.
! setarch --addr-no-randomize true 2>/dev/null || wine="setarch --addr-no-randomize $wine"

require_prefix() {
    [ ! -e "$WINEPREFIX/ready" ] || return 0
    echo "wine.sh: $WINEPREFIX is missing; run scripts/setup.sh" >&2
    exit 2
}

make_prefix() {
    # What an interrupted attempt has left running.
    [ ! -d "$WINEPREFIX" ] || wineserver --kill || true
    rm -rf "$WINEPREFIX"
    mkdir -p "$WINEPREFIX"
    $wine wineboot --init
    # A program that crashes ends, rather than wait for somebody at a debugger: there is none of this name.
    $wine reg add 'HKLM\Software\Microsoft\Windows NT\CurrentVersion\AeDebug' /v Debugger /d none /f
    $wine reg add 'HKLM\Software\Microsoft\Windows NT\CurrentVersion\AeDebug' /v Auto /d 1 /f
    wineserver --wait
    # Programs start on drive C:, inside the prefix: drive Z: is the root of the machine, and a test that deletes must
    # not stand on it.
    mkdir -p "$WINEPREFIX/drive_c/work"
    touch "$WINEPREFIX/ready"
}

run() {
    program=$1
    report=
    shift
    case $program in
    */*) program=$(CDPATH='' cd -- "$(dirname -- "$program")" && pwd)/$(basename -- "$program") ;;
    esac
    if [ -n "${KELPKIT_RESULTS:-}" ]; then
        report=$KELPKIT_RESULTS/$(basename -- "$program" .exe)-$code_page.xml
        rm -f "$report"
        GTEST_OUTPUT=xml:Z:$report
        export GTEST_OUTPUT
    fi
    # The path of the counts' file is one of Linux, and would be taken for one on the current drive.
    if [ -n "${KELPKIT_COUNTS:-}" ]; then
        GCOV_PREFIX=Z:$KELPKIT_COUNTS/$(basename -- "$program" .exe)-$code_page
        export GCOV_PREFIX
    fi
    if [ -z "${DISPLAY:-}" ] && [ -s "$WINEPREFIX/display" ]; then
        DISPLAY=:$(cat "$WINEPREFIX/display")
        export DISPLAY
    fi
    cd "$WINEPREFIX/drive_c/work"
    [ -n "$report" ] || exec $wine "$program" "$@"
    status=0
    $wine "$program" "$@" || status=$?
    # A program that dies may report success under Wine. The report is what it writes last.
    if [ ! -s "$report" ]; then
        echo "wine.sh: $program has ended before its tests had (exit code $status)" >&2
        exit 1
    fi
    exit "$status"
}

start_display() {
    stop_display
    Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp 3>"$WINEPREFIX/display" &
    echo $! >"$WINEPREFIX/display.pid"
    attempts=100
    until [ -s "$WINEPREFIX/display" ] || [ "$attempts" -eq 0 ]; do
        attempts=$((attempts - 1))
        sleep 0.1
    done
    DISPLAY=:$(cat "$WINEPREFIX/display")
    export DISPLAY
}

stop_display() {
    [ ! -s "$WINEPREFIX/display.pid" ] || kill "$(cat "$WINEPREFIX/display.pid")" 2>/dev/null || true
    rm -f "$WINEPREFIX/display" "$WINEPREFIX/display.pid"
}

# Wine's own services outlive the program that starts them, so they must not hold its output open.
start() {
    exec </dev/null >/dev/null 2>&1
    [ -n "${DISPLAY:-}" ] || start_display
    wineserver --persistent || true # it may run already
    $wine cmd /c exit
}

stop() {
    wineserver --kill || true
    stop_display
}

command=$1
shift
[ "$command" = make ] || require_prefix
case $command in
run) run "$@" ;;
start) start ;;
stop) stop ;;
make) make_prefix ;;
*)
    echo "wine.sh: unknown command $command" >&2
    exit 2
    ;;
esac
