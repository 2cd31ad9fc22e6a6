#!/usr/bin/env bash
# End to end under Wine with the setup program: a silent install (/S) under Program Files with a
# Start-menu entry, the installed varnel.exe starts, and the uninstaller removes the files.
#   installer.sh <setup.exe> <windowstate.exe>
source "$(dirname "$0")/common.sh"
setup=$1
probe=$2
[ -f "$setup" ] || { echo "FAIL: no setup program at $setup (is makensis installed?)"; exit 1; }

folder=$WINEPREFIX/drive_c/Program\ Files/Varnel
cleanup() {
  timeout 20 wine taskkill /f /im varnel.exe >/dev/null 2>&1
  rm -f "$provider"
}
trap cleanup EXIT

timeout 120 wine "$setup" /S || fail "the silent install failed with $?"
for f in varnel.exe Qt5Core.dll Qt5Widgets.dll libstdc++-6.dll platforms/qwindows.dll \
         styles/qwindowsvistastyle.dll settings/default_power_mode.ini branding/varnel_branding.ini \
         cpuprofiles/10875H.ini Uninstall.exe; do
  [ -f "$folder/$f" ] || fail "not installed: Program Files/Varnel/$f"
done
shortcut=$(find "$WINEPREFIX/drive_c" -path '*Start Menu/Programs/Varnel/Varnel.lnk' | head -n1)
[ -n "$shortcut" ] || fail "no Start-menu entry"
echo "installed into Program Files/Varnel, Start-menu entry at ${shortcut#"$WINEPREFIX/"}"

# The installed program starts from its folder (the laptop's WMI provider stood in by its file).
: >"$provider"
(cd "$folder" && exec wine varnel.exe >/dev/null 2>&1) &
program=$!
wait_for 60 is_state visible || fail "the installed program did not show: $(window_state)"
timeout 20 wine taskkill /im varnel.exe >/dev/null 2>&1
wait_for 20 is_state none && wait_for 20 ended "$program" ||
  fail "the installed program did not end"
echo "the installed varnel.exe started and showed its window"

# The uninstaller hands over to a copy of itself and returns at once: wait for the files to go.
timeout 60 wine "$folder/Uninstall.exe" /S || fail "the uninstaller failed with $?"
wait_for 60 test ! -e "$folder/varnel.exe" || fail "the uninstaller left varnel.exe"
for f in Qt5Core.dll platforms/qwindows.dll settings/default_power_mode.ini cpuprofiles/10875H.ini; do
  wait_for 20 test ! -e "$folder/$f" || fail "the uninstaller left $f"
done
no_shortcut() { [ -z "$(find "$WINEPREFIX/drive_c" -path '*Start Menu/Programs/Varnel/Varnel.lnk')" ]; }
wait_for 20 no_shortcut ||
  fail "the uninstaller left the Start-menu entry"
echo "the uninstaller removed the program's files and its Start-menu entry"
