# Sourced first by the end-to-end scripts under Wine, in the prefix the test fixture made
# (VARNEL_WINEPREFIX). Each script sets probe to windowstate.exe before asking for the window.

# Wine's helper processes outlive a script and inherit its output; CTest would wait for them.
# The script's own output therefore goes through a file, copied out when the script ends.
if [ -z "${VARNEL_E2E_LOGGED:-}" ]; then
  log=$(mktemp)
  VARNEL_E2E_LOGGED=1 bash "$0" "$@" >"$log" 2>&1 </dev/null
  status=$?
  cat "$log"
  rm -f "$log"
  exit "$status"
fi
set -uo pipefail
export WINEPREFIX=$VARNEL_WINEPREFIX WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
export HOME=$VARNEL_WINEPREFIX/unix-home
# Wine lacks the laptop maker's WMI brightness provider; the program only looks for its file.
provider=$WINEPREFIX/drive_c/windows/syswow64/CLEVOMOF.dll

fail() {
  echo "FAIL: $*"
  exit 1
}
# wait_for <seconds> <command...>: until the command succeeds.
wait_for() {
  local deadline=$((SECONDS + $1))
  shift
  until "$@"; do
    [ $SECONDS -lt "$deadline" ] || return 1
    sleep 0.2
  done
}
# The state of the program's window: visible, hidden or none.
window_state() { timeout 20 wine "$probe" Varnel 2>/dev/null | tr -d '\r'; }
is_state() { [ "$(window_state)" = "$1" ]; }
# The window goes before the process has saved its settings and unloaded its DLLs.
ended() { ! kill -0 "$1" 2>/dev/null; }
