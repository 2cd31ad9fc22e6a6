# Sourced first by the end-to-end scripts under Wine, in the prefix the test fixture made
# (VARNEL_WINEPREFIX). Each script's second argument is windowstate.exe, the window's probe.

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
: >"$provider"
work=$(mktemp -d)
probe=$2
# A script's own clean-up goes into on_exit, after the program is ended.
on_exit() { :; }
trap 'timeout 20 wine taskkill /f /im varnel.exe >/dev/null 2>&1; rm -rf "$provider" "$work"; on_exit' EXIT

fail() { echo "FAIL: $*"; exit 1; }
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
# close_program <pid>: asked to close as the window would be; the window goes before the process
# has saved its settings and unloaded its DLLs.
close_program() {
  timeout 20 wine taskkill /im varnel.exe >/dev/null 2>&1
  wait_for 20 is_state none && wait_for 20 ended "$1"
}
ended() { ! kill -0 "$1" 2>/dev/null; }
# stage_copy <stage folder> <settings lines>: a private copy of the staged program to run in, so
# what it writes is this run's own.
stage_copy() {
  cp -r "$1"/. "$work"/ && cd "$work" || fail "cannot copy the staged program"
  printf '[settings]\n%s\n' "$2" >settings/varnel.ini
}
