#!/usr/bin/env bash
# End to end under Wine with the staged varnel.exe, driven by clicks posted to its window:
# - the tuning client's read chain fills the CPU tuning tab (proved by Apply, which saves what
#   was read and writes only the ratio changed by the click);
# - a power-mode switch runs powercfg's command lines in order (a stand-in in the system folder);
# - a Windows Tuning tweak writes its registry values, and unchecking removes them.
#   window_clicks.sh <stage folder> <windowstate.exe> <powercfg stand-in> <fake tuning client>
# The prefix has Wine's null graphics driver: the clicks are posted messages.
source "$(dirname "$0")/common.sh"
stage=$1
probe=$2
powercfg=$3
client=$4

drive=$WINEPREFIX/drive_c
system=$drive/windows/system32
client_folder="$drive/Program Files/Varnel/XTU/Client"
work=$(mktemp -d)
cleanup() {
  timeout 20 wine taskkill /f /im varnel.exe >/dev/null 2>&1
  rm -f "$provider" "$system/powercfg.exe" "$system/powercfg.log"
  rm -rf "$drive/Program Files/Varnel" "$work"
  timeout 20 wine reg delete 'HKLM\SYSTEM\CurrentControlSet\Control\GraphicsDrivers' /v TdrDelay /f >/dev/null 2>&1
  timeout 20 wine reg delete 'HKLM\SYSTEM\CurrentControlSet\Control\GraphicsDrivers' /v TdrDdiDelay /f >/dev/null 2>&1
}
trap cleanup EXIT
# Client positions in the 800 x 900 window at 96 dpi.
click() { timeout 20 wine "$probe" Varnel click "$1" "$2" >/dev/null 2>&1 || fail "no window to click"; }
power_tab() { click 49 432; }
cpu_tab() { click 139 432; }
tweaks_tab() { click 368 432; }

cp -r "$stage"/. "$work"/
cd "$work" || exit 1
: >"$provider"
cp "$powercfg" "$system/powercfg.exe"
mkdir -p "$client_folder"
cp "$client" "$client_folder/XtuCLI.exe"
printf '34=-85\n48=37\n66=56\n' >xtu.state
export FAKE_XTU_STATE="Z:$work/xtu.state" FAKE_XTU_LOG="Z:$work/xtu.log"
printf '[settings]\nenable_power_modes=true\npowermode=normal\nDontManageCPU=true\ndontshowexitdiag=true\n' \
  >settings/varnel.ini

# Wine's own font engine measures text far taller than Windows does, which squeezes the power
# modes out of their tab; FreeType's metrics match Windows'.
wine varnel.exe -platform windows:fontengine=freetype >program.log 2>&1 &
wait_for 60 is_state visible || fail "the window never appeared"

# c. The read chain asks the client for all eleven settings.
calls() { tr -d '\r' <xtu.log 2>/dev/null; }
last_read() { calls | grep -qx 'read 97'; }
wait_for 60 last_read || fail "the read chain did not finish: $(calls)"
reads=$(calls | grep -c '^read ')
[ "$reads" -eq 11 ] || fail "expected 11 reads, got $reads: $(calls)"
cpu_tab
click 199 638 # the up arrow of the ratio for one active core: 51 becomes 52
click 752 720 # Apply
saved() { grep -q '^turbotime=56' settings/varnel.ini; }
wait_for 30 saved || fail "Apply saved no tuning values: $(cat settings/varnel.ini)"
for line in 'undervolt=85' 'boostpower=37' 'turbotime=56' 'core1multi=52' 'core2multi=51'; do
  grep -qx "$line" <(tr -d '\r' <settings/varnel.ini) || fail "settings lack $line: $(cat settings/varnel.ini)"
done
written() { calls | grep -qx 'write 29 52'; }
wait_for 30 written || fail "the changed ratio was not written: $(calls)"
writes=$(calls | grep '^write ' | tr '\n' ';')
[ "$writes" = "write 29 52;" ] || fail "only the changed ratio may be written, got: $writes"
echo "tuning tab filled from the client: undervolt 85, 37 W, 56 s saved; only 'write 29 52' sent"

# b. A switch to the silent mode: powercfg's pairs in order, the scheme re-activated after each;
# three seconds later the scheme takes the mode's brightness once more, after the panel.
power_tab
# The start-up's own mode and its delayed brightness must be in before the log starts over.
log_size() { stat -c %s "$system/powercfg.log" 2>/dev/null || echo 0; }
quiet() { local before; before=$(log_size); sleep 3; [ "$(log_size)" = "$before" ]; }
wait_for 30 quiet || fail "powercfg kept being called after start-up: $(cat "$system/powercfg.log")"
rm -f "$system/powercfg.log"
click 221 497
scheme='SCHEME_CURRENT 7516b95f-f776-4464-8c53-06167f40cc99 aded5e82-b909-4619-9949-f5d71dac0bcb'
lid='SCHEME_CURRENT 4f971e89-eebd-4455-a8de-9e59040e7347 5ca83367-6e45-459f-a27b-476b1d01c936 1'
expected="powercfg -setacvalueindex $scheme 60
powercfg -setdcvalueindex $scheme 60
powercfg -setacvalueindex SCHEME_CURRENT SUB_PROCESSOR PROCTHROTTLEMIN 5
powercfg -setdcvalueindex SCHEME_CURRENT SUB_PROCESSOR PROCTHROTTLEMIN 5
powercfg -setacvalueindex SCHEME_CURRENT SUB_PROCESSOR PROCTHROTTLEMAX 80
powercfg -setdcvalueindex SCHEME_CURRENT SUB_PROCESSOR PROCTHROTTLEMAX 80
powercfg -change -monitor-timeout-ac 15
powercfg -change -monitor-timeout-dc 15
powercfg -change -x -standby-timeout-ac 30
powercfg -change -x -standby-timeout-dc 30
powercfg setacvalueindex $lid
powercfg setdcvalueindex $lid
powercfg -setacvalueindex $scheme 60
powercfg -setdcvalueindex $scheme 60"
pairs() { grep -v -x 'powercfg -SetActive SCHEME_CURRENT' "$system/powercfg.log" 2>/dev/null; }
wait_for 30 bash -c "[ \$(grep -c . '$system/powercfg.log' 2>/dev/null || echo 0) -ge 21 ]" ||
  fail "powercfg was not called as expected: $(cat "$system/powercfg.log" 2>/dev/null)"
[ "$(pairs)" = "$expected" ] || fail "powercfg calls differ:
$(pairs)"
activations=$(grep -c -x 'powercfg -SetActive SCHEME_CURRENT' "$system/powercfg.log")
[ "$activations" -eq 7 ] || fail "expected 7 activations, got $activations"
echo "silent mode: 14 powercfg settings in order, 7 activations"

# d. The long TDR delay tweak: checked writes both values, unchecked removes them.
regvalue() {
  timeout 20 wine reg query 'HKLM\SYSTEM\CurrentControlSet\Control\GraphicsDrivers' /v "$1" 2>/dev/null |
    tr -d '\r' | grep -q "$1 *REG_DWORD *0x3c"
}
tweaks_tab
click 22 467
wait_for 20 regvalue TdrDelay || fail "TdrDelay was not written"
regvalue TdrDdiDelay || fail "TdrDdiDelay was not written"
click 22 467
gone() { ! regvalue TdrDelay && ! regvalue TdrDdiDelay; }
wait_for 20 gone || fail "unchecking left the TDR values"
echo "TDR tweak: both values written, then removed"
