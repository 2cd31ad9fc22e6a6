#!/bin/sh
# Runs one Windows program under Wine in the prefix prepared by wine-prefix.sh.
# Used as CMAKE_CROSSCOMPILING_EMULATOR, so the program's exit status becomes the test result.
#
#   VARNEL_WINEPREFIX     the prefix folder (required; set by the test fixture)
#   VARNEL_WINE_TIMEOUT   seconds before the program is killed (default 300)
set -u

if [ -z "${VARNEL_WINEPREFIX:-}" ]; then
    echo "wine-run.sh: VARNEL_WINEPREFIX is not set; run through ctest or wine-prefix.sh" >&2
    exit 2
fi
if [ ! -f "$VARNEL_WINEPREFIX/system.reg" ]; then
    echo "wine-run.sh: no Wine prefix at $VARNEL_WINEPREFIX (did wine_prefix_setup run?)" >&2
    exit 2
fi

export WINEPREFIX="$VARNEL_WINEPREFIX"
export WINEDEBUG=-all
export WINEDLLOVERRIDES="mscoree,mshtml="
# The home folder carries the .asoundrc with a null ALSA sink, so audio endpoints exist headless.
export HOME="$VARNEL_WINEPREFIX/unix-home"

# Wine starts helper processes (services, rpcss, explorer) that outlive the program and inherit
# its output descriptors. CTest waits until every writer of its pipe is gone, so the program
# writes to a file here and the file is copied out when the program ends.
log=$(mktemp "${TMPDIR:-/tmp}/varnel-wine-run.XXXXXX") || exit 2
trap 'rm -f "$log"' EXIT

timeout -k 5 "${VARNEL_WINE_TIMEOUT:-300}" wine "$@" </dev/null >"$log" 2>&1
status=$?
cat "$log"
if [ "$status" -eq 124 ] || [ "$status" -eq 137 ]; then
    echo "wine-run.sh: $1 did not finish within ${VARNEL_WINE_TIMEOUT:-300} s" >&2
fi
exit "$status"
