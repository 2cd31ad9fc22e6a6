#!/usr/bin/env bash
# End to end under Wine with the staged varnel.exe: one instance (a second start hands over and
# ends with status 0, bringing the hidden window back), and the settings files in the install
# folder's settings/ after a clean exit. How long the hand-over takes is the benchmark's to say.
#   staged_program.sh <stage folder> <windowstate.exe>
source "$(dirname "$0")/common.sh"
stage=$1
probe=$2

work=$(mktemp -d)
cleanup() {
  timeout 20 wine taskkill /f /im varnel.exe >/dev/null 2>&1
  rm -f "$provider"
  rm -rf "$work"
}
trap cleanup EXIT

# A private install folder, so the settings written are this run's own.
cp -r "$stage"/. "$work"/
cd "$work" || exit 1
: >"$provider"
printf '[settings]\nstart_hidden=true\ndontshowexitdiag=true\n' >settings/varnel.ini

# a. The first start stays up, hidden to the tray as set.
wine varnel.exe >first.log 2>&1 &
first=$!
wait_for 60 is_state hidden || fail "the first start never built its hidden window: $(window_state)"
sleep 2
[ "$(window_state)" = hidden ] || fail "the first instance did not stay up: $(window_state)"

# A second start hands over, ends with status 0, and the window comes back.
timeout 20 wine varnel.exe >second.log 2>&1
status=$?
[ "$status" -eq 0 ] || fail "second start exited with $status"
wait_for 5 is_state visible || fail "the hidden window did not come back: $(window_state)"
echo "second start: status 0, window shown again"

# e. A clean exit (the window asked to close) leaves the settings in the install folder.
timeout 20 wine taskkill /im varnel.exe >/dev/null 2>&1
wait_for 20 is_state none && wait_for 20 ended "$first" ||
  fail "the program did not end when asked to close"
for key in start_hidden dontshowexitdiag mainWindowGeometry mainWindowState; do
  grep -q "^$key=" settings/varnel.ini || fail "settings/varnel.ini lacks $key: $(cat settings/varnel.ini)"
done
head -n1 settings/varnel.ini | tr -d '\r' | grep -qx '\[settings\]' || fail "settings/varnel.ini has no [settings] group first"
[ -f settings/default_power_mode.ini ] || fail "the shipped default power modes are gone"
echo "settings/varnel.ini written in the install folder with the window's keys"
