#!/usr/bin/env bash
# Installs what building, running and testing Varnel needs on Debian 12.
set -euo pipefail

packages=(
  # build
  build-essential cmake ninja-build pkg-config git
  qtbase5-dev qtbase5-dev-tools libqt5svg5-dev
  # Linux backends
  libpulse-dev libddcutil-dev libxcb1-dev
  # running and testing headless
  xvfb xauth x11-utils imagemagick dbus pulseaudio gsettings-desktop-schemas libglib2.0-bin
  # GNOME's power and window-manager settings, which the desktop backends' tests write
  gnome-settings-daemon-common mutter-common
  # the sanitizer lane: clang with its sanitizer and libFuzzer runtimes
  clang libclang-rt-14-dev
  # the Debian package and its checks
  lintian file
  # the system helper's bus tests: a stand-in polkit daemon
  python3-dbusmock
  # the Windows lane: cross compiler and Wine
  g++-mingw-w64-x86-64-posix gcc-mingw-w64-x86-64-posix wine wine64 nsis
  # the fonts Wine substitutes for the Windows ones, so that the window is laid out as tested
  fonts-wine
)

sudo_cmd=()
if [ "$(id -u)" -ne 0 ]; then
  sudo_cmd=(sudo)
fi

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ "${#missing[@]}" -gt 0 ]; then
  "${sudo_cmd[@]}" apt-get update -qq
  DEBIAN_FRONTEND=noninteractive "${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends \
    "${missing[@]}"
fi
