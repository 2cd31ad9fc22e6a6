#!/usr/bin/env bash
# End to end under Wine with the staged varnel.exe: one instance (a second start hands over and
# ends with status 0, bringing the hidden window back), and the settings files in the install
# folder's settings/ after a clean exit. How long the hand-over takes is the benchmark's to say.
#   staged_program.sh <stage folder> <windowstate.exe>
source "$(dirname "$0")/common.sh"
stage_copy "$1" 'start_hidden=true
dontshowexitdiag=true'

# The first start stays up, hidden to the tray as set.
wine varnel.exe >first.log 2>&1 &
first=$!
wait_for 60 is_state hidden || fail "the first start never built its hidden window: $(window_state)"
sleep 2
is_state hidden || fail "the first instance did not stay up: $(window_state)"

# A second start hands over, ends with status 0, and the window comes back.
timeout 20 wine varnel.exe >second.log 2>&1 || fail "second start exited with $?"
wait_for 5 is_state visible || fail "the hidden window did not come back: $(window_state)"

# A clean exit (the window asked to close) leaves the settings in the install folder.
close_program "$first" || fail "the program did not end when asked to close"
for key in start_hidden dontshowexitdiag mainWindowGeometry mainWindowState; do
  grep -q "^$key=" settings/varnel.ini || fail "settings/varnel.ini lacks $key: $(cat settings/varnel.ini)"
done
head -n1 settings/varnel.ini | tr -d '\r' | grep -qx '\[settings\]' || fail "settings/varnel.ini has no [settings] group first"
[ -f settings/default_power_mode.ini ] || fail "the shipped default power modes are gone"
