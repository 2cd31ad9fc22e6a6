#!/usr/bin/env bash
# The Debian package as a user gets it: built by CPack, checked by lintian, installed with
# apt, started by an unprivileged user under a virtual X server, then removed without a trace.
#   debian_package.sh <build folder>
# Installing system-wide needs root; elsewhere the test is skipped (exit 77).
set -uo pipefail
build="$1"
fail() { echo "FAIL: $*"; exit 1; }

if [ "$(id -u)" -ne 0 ]; then
  echo "SKIP: installing a package needs root"
  exit 77
fi
for tool in cpack lintian apt-get xvfb-run xwininfo runuser useradd; do
  command -v "$tool" >/dev/null || fail "$tool is missing (scripts/install-deps.sh installs it)"
done

work=$(mktemp -d)
user=varnel-e2e
app_pid=
cleanup() {
  [ -n "$app_pid" ] && kill "$app_pid" 2>/dev/null
  if id "$user" >/dev/null 2>&1; then
    # Whatever the user's session left running ends with it; wait, then remove the user.
    for _ in $(seq 1 50); do pgrep -u "$user" >/dev/null || break; sleep 0.2; done
    userdel -r "$user" >/dev/null 2>&1
  fi
  rm -rf "$work"
}
trap cleanup EXIT
apt_run() { DEBIAN_FRONTEND=noninteractive apt-get -o DPkg::Lock::Timeout=300 -y -qq "$@"; }

# 1. Build and check the package.
rm -f "$build"/package/varnel_*.deb
(cd "$build" && cpack -G DEB --config CPackConfig.cmake) >"$work/cpack.log" 2>&1 ||
  { cat "$work/cpack.log"; fail "cpack could not build the package"; }
deb=$(ls "$build"/package/varnel_*.deb 2>/dev/null | head -1)
[ -f "$deb" ] || fail "no package in $build/package"
lintian --fail-on error --tag-display-limit 0 "$deb" >"$work/lintian.log" 2>&1
lintian_status=$?
cat "$work/lintian.log"
[ "$lintian_status" -eq 0 ] || fail "lintian reports errors"
echo "lintian: no errors ($(grep -c '^W:' "$work/lintian.log") warnings)"

# 2. Install it as a user would, dependencies and all.
cp "$deb" "$work/"
apt_run install "$work/$(basename "$deb")" >"$work/apt.log" 2>&1 ||
  { cat "$work/apt.log"; fail "apt could not install the package"; }
dpkg -L varnel >"$work/files"
for f in /usr/bin/varnel /usr/lib/varnel/varnel /usr/lib/varnel/branding/varnel_branding.ini \
         /usr/lib/varnel/settings/default_power_mode.ini /usr/share/applications/varnel.desktop \
         /usr/share/icons/hicolor/scalable/apps/varnel.svg; do
  grep -qx "$f" "$work/files" || fail "$f is not in the package"
done
[ -x "$(readlink -f /usr/bin/varnel)" ] || fail "/usr/bin/varnel does not lead to the program"

# 3. Start the installed program as an ordinary user, from the menu's command line.
# A user left by an interrupted run is taken over.
id "$user" >/dev/null 2>&1 && userdel -r "$user" >/dev/null 2>&1
useradd --create-home --home-dir "$work/home" --shell /bin/bash "$user" || fail "useradd"
chmod 755 "$work"
# No session bus: nothing may be started on the user's behalf that outlives the test.
runuser -u "$user" -- env -i HOME="$work/home" PATH=/usr/bin:/bin LANG=C.UTF-8 \
  DBUS_SESSION_BUS_ADDRESS=disabled: \
  xvfb-run -a -s "-screen 0 1280x1024x24" sh -c \
  'cd /; varnel >"$HOME/varnel.log" 2>&1 & app=$!
   for i in $(seq 1 200); do
     if xwininfo -root -tree 2>/dev/null | grep -q "\"Varnel\""; then
       echo shown >"$HOME/window"; break
     fi
     sleep 0.1
   done
   sleep 1
   kill -0 $app 2>/dev/null && echo running >"$HOME/alive"
   kill $app; wait $app' >"$work/run.log" 2>&1
[ -f "$work/home/window" ] || { cat "$work/home/varnel.log" "$work/run.log"; fail "no window"; }
[ -f "$work/home/alive" ] || { cat "$work/home/varnel.log"; fail "the program ended early"; }
data="$work/home/.local/share/varnel"
[ -d "$data/settings" ] && [ -d "$data/updates" ] || fail "no per-user working folder in $data"
[ -f "$data/branding/varnel_branding.ini" ] || fail "the shipped branding is not reachable"
[ -f "$data/settings/varnel.ini" ] || fail "the program wrote no settings of its own"
grep -q '^Unable to set stylesheet' "$work/home/varnel.log" && fail "style sheet missing"
echo "installed program: window shown to user $user, settings in ~/.local/share/varnel"

# 4. Remove it: nothing of the package is left behind.
apt_run purge varnel >"$work/apt-remove.log" 2>&1 ||
  { cat "$work/apt-remove.log"; fail "apt could not remove the package"; }
dpkg -s varnel >/dev/null 2>&1 && fail "still installed after purge"
while read -r f; do
  [ -f "$f" ] || [ -L "$f" ] || continue
  fail "$f is left after removal"
done <"$work/files"
[ -e /usr/lib/varnel ] && fail "/usr/lib/varnel is left after removal"
echo "package built, installed, started and removed cleanly"
exit 0
