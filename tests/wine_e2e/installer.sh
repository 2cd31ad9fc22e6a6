#!/usr/bin/env bash
# End to end under Wine with the setup program: a silent install (/S) under Program Files with a
# Start-menu entry, the installed varnel.exe starts, and the uninstaller removes the files.
#   installer.sh <setup.exe> <windowstate.exe>
source "$(dirname "$0")/common.sh"
setup=$1
[ -f "$setup" ] || fail "no setup program at $setup (is makensis installed?)"
folder=$WINEPREFIX/drive_c/Program\ Files/Varnel
shortcut() { find "$WINEPREFIX/drive_c" -path '*Start Menu/Programs/Varnel/Varnel.lnk' | head -n1; }

timeout 120 wine "$setup" /S || fail "the silent install failed with $?"
files=(varnel.exe Qt5Core.dll Qt5Widgets.dll libstdc++-6.dll platforms/qwindows.dll
  styles/qwindowsvistastyle.dll settings/default_power_mode.ini branding/varnel_branding.ini
  cpuprofiles/10875H.ini)
for f in "${files[@]}" Uninstall.exe; do
  [ -f "$folder/$f" ] || fail "not installed: Program Files/Varnel/$f"
done
[ -n "$(shortcut)" ] || fail "no Start-menu entry"

# The installed program starts from its folder.
(cd "$folder" && exec wine varnel.exe >/dev/null 2>&1) &
program=$!
wait_for 60 is_state visible || fail "the installed program did not show: $(window_state)"
close_program "$program" || fail "the installed program did not end"

# The uninstaller hands over to a copy of itself and returns at once: wait for the files to go.
timeout 60 wine "$folder/Uninstall.exe" /S || fail "the uninstaller failed with $?"
for f in "${files[@]}"; do
  wait_for 60 test ! -e "$folder/$f" || fail "the uninstaller left $f"
done
no_shortcut() { [ -z "$(shortcut)" ]; }
wait_for 20 no_shortcut || fail "the uninstaller left the Start-menu entry"
