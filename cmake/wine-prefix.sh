#!/bin/sh
# Creates or removes the throw-away, headless Wine prefix the Windows tests run in.
#
#   wine-prefix.sh setup <dir>     fresh prefix in <dir>, one wineserver kept alive
#   wine-prefix.sh cleanup <dir>   stop that wineserver, remove <dir> and its socket folder
#
# The prefix gets a home folder of its own (<dir>/unix-home) for the Wine processes only.
set -u

usage() {
    echo "usage: $0 setup|cleanup <dir>" >&2
    exit 2
}
[ $# -eq 2 ] || usage
action=$1
case $2 in
/*) dir=$2 ;;
*) dir=$(pwd)/$2 ;;
esac

export WINEPREFIX="$dir"
export WINEDEBUG=-all
export WINEDLLOVERRIDES="mscoree,mshtml="
export HOME="$dir/unix-home"
boot_timeout=${VARNEL_WINEBOOT_TIMEOUT:-120}

# Wine records the name of its socket folder (below TMPDIR) in the prefix; removing exactly that
# one leaves the servers of other prefixes alone.
socket_dir() {
    [ -f "$dir/wineserver" ] || return 1
    name=$(cat "$dir/wineserver" 2>/dev/null) || return 1
    case $name in
    wine-*) echo "${TMPDIR:-/tmp}/$name" ;;
    *) return 1 ;;
    esac
}

cleanup() {
    if [ -f "$dir/system.reg" ]; then
        timeout -k 2 20 wineserver -k >/dev/null 2>&1
        timeout -k 2 20 wineserver -w >/dev/null 2>&1
    fi
    if sockets=$(socket_dir); then
        rm -rf "$sockets"
    fi
    rm -rf "$dir"
}

# Everything Wine starts inherits these descriptors; a log file keeps them away from CTest's pipe.
log=$(mktemp "${TMPDIR:-/tmp}/varnel-wine-prefix.XXXXXX") || exit 2
trap 'rm -f "$log"' EXIT

case $action in
cleanup)
    cleanup
    [ ! -e "$dir" ] || {
        echo "wine-prefix.sh: could not remove $dir" >&2
        exit 1
    }
    exit 0
    ;;
setup) ;;
*) usage ;;
esac

# A prefix left over from an interrupted run would carry old registry values into the tests.
cleanup
mkdir -p "$HOME" || exit 1
printf 'pcm.!default { type null }\n' >"$HOME/.asoundrc"

fail() {
    cat "$log"
    echo "wine-prefix.sh: $1" >&2
    cleanup
    exit 1
}

start=$(date +%s)
timeout -k 5 "$boot_timeout" wineboot -i </dev/null >>"$log" 2>&1 ||
    fail "wineboot -i failed or took longer than $boot_timeout s"
# Top-level windows need no X display with the null graphics driver; a crash prints a backtrace
# and exits instead of waiting for someone to close the crash dialog.
timeout -k 5 60 wine reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d null /f \
    </dev/null >>"$log" 2>&1 || fail "could not select the null graphics driver"
timeout -k 5 60 wine reg add 'HKCU\Software\Wine\WineDbg' /v ShowCrashDialog /t REG_DWORD /d 0 /f \
    </dev/null >>"$log" 2>&1 || fail "could not switch off the crash dialog"
timeout -k 5 60 wineserver -w >>"$log" 2>&1 || fail "the boot processes did not end"
# One persistent server makes each later program start in a fraction of a second.
wineserver -p </dev/null >>"$log" 2>&1 || fail "could not start a persistent wineserver"
echo "Wine prefix ready in $dir ($(($(date +%s) - start)) s)"
