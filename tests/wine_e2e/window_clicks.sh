#!/usr/bin/env bash
# End to end under Wine with the staged varnel.exe, driven by clicks posted to its window (the
# prefix has Wine's null graphics driver): CPU tuning, a power-mode switch and a registry tweak.
#   window_clicks.sh <stage folder> <windowstate.exe> <powercfg stand-in> <fake tuning client>
source "$(dirname "$0")/common.sh"
system=$WINEPREFIX/drive_c/windows/system32
client_folder="$WINEPREFIX/drive_c/Program Files/Varnel/XTU/Client"
graphics='HKLM\SYSTEM\CurrentControlSet\Control\GraphicsDrivers'
on_exit() {
  rm -rf "$system/powercfg.exe" "$system/powercfg.log" "$WINEPREFIX/drive_c/Program Files/Varnel"
  for value in TdrDelay TdrDdiDelay; do
    timeout 20 wine reg delete "$graphics" /v $value /f >/dev/null 2>&1
  done
}
# Client positions in the 800 x 900 window at 96 dpi.
click() { timeout 20 wine "$probe" Varnel click "$1" "$2" >/dev/null 2>&1 || fail "no window to click"; }

stage_copy "$1" 'enable_power_modes=true
powermode=normal
DontManageCPU=true
dontshowexitdiag=true'
cp "$3" "$system/powercfg.exe"
mkdir -p "$client_folder"
cp "$4" "$client_folder/XtuCLI.exe"
printf '34=-85\n48=37\n66=56\n' >xtu.state
export FAKE_XTU_STATE="Z:$work/xtu.state" FAKE_XTU_LOG="Z:$work/xtu.log"

# Wine's own font engine measures text far taller than Windows does, which squeezes the power
# modes out of their tab; FreeType's metrics match Windows'.
wine varnel.exe -platform windows:fontengine=freetype >program.log 2>&1 &
wait_for 60 is_state visible || fail "the window never appeared"

# The read chain asks the client for all eleven settings; Apply saves what was read and writes
# only the ratio the click changed.
calls() { tr -d '\r' <xtu.log 2>/dev/null; }
last_read() { calls | grep -qx 'read 97'; }
wait_for 60 last_read || fail "the read chain did not finish: $(calls)"
reads=$(calls | grep -c '^read ')
[ "$reads" -eq 11 ] || fail "expected 11 reads, got $reads: $(calls)"
click 139 432 # the CPU tuning tab
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

# A switch to the silent mode: powercfg's pairs in order, the scheme re-activated after each;
# three seconds later the scheme takes the mode's brightness once more, after the panel.
click 49 432 # the power tab
# The start-up's own mode and its delayed brightness must be in before the log starts over.
log_size() { stat -c %s "$system/powercfg.log" 2>/dev/null || echo 0; }
quiet() { local before; before=$(log_size); sleep 3; [ "$(log_size)" = "$before" ]; }
wait_for 30 quiet || fail "powercfg kept being called after start-up: $(cat "$system/powercfg.log")"
rm -f "$system/powercfg.log"
click 221 497
scheme='SCHEME_CURRENT 7516b95f-f776-4464-8c53-06167f40cc99 aded5e82-b909-4619-9949-f5d71dac0bcb'
lid='SCHEME_CURRENT 4f971e89-eebd-4455-a8de-9e59040e7347 5ca83367-6e45-459f-a27b-476b1d01c936 1'
# Each line for mains power (ac) and then for the battery (dc).
expected=$(for line in "-set@valueindex $scheme 60" \
  "-set@valueindex SCHEME_CURRENT SUB_PROCESSOR PROCTHROTTLEMIN 5" \
  "-set@valueindex SCHEME_CURRENT SUB_PROCESSOR PROCTHROTTLEMAX 80" "-change -monitor-timeout-@ 15" \
  "-change -x -standby-timeout-@ 30" "set@valueindex $lid" "-set@valueindex $scheme 60"; do
  echo "powercfg ${line//@/ac}"
  echo "powercfg ${line//@/dc}"
done)
pairs() { grep -v -x 'powercfg -SetActive SCHEME_CURRENT' "$system/powercfg.log" 2>/dev/null; }
wait_for 30 bash -c "[ \$(grep -c . '$system/powercfg.log' 2>/dev/null || echo 0) -ge 21 ]" ||
  fail "powercfg was not called as expected: $(cat "$system/powercfg.log" 2>/dev/null)"
[ "$(pairs)" = "$expected" ] || fail "powercfg calls differ:
$(pairs)"
activations=$(grep -c -x 'powercfg -SetActive SCHEME_CURRENT' "$system/powercfg.log")
[ "$activations" -eq 7 ] || fail "expected 7 activations, got $activations"

# The long TDR delay tweak: checked writes both values, unchecked removes them.
regvalue() { timeout 20 wine reg query "$graphics" /v "$1" 2>/dev/null | tr -d '\r' | grep -q "$1 *REG_DWORD *0x3c"; }
click 368 432 # the Windows Tuning tab
click 22 467
# The two values are written one after the other: the second may lag the first.
wait_for 20 regvalue TdrDelay || fail "TdrDelay was not written"
wait_for 20 regvalue TdrDdiDelay || fail "TdrDdiDelay was not written"
click 22 467
gone() { ! regvalue TdrDelay && ! regvalue TdrDdiDelay; }
wait_for 20 gone || fail "unchecking left the TDR values"
