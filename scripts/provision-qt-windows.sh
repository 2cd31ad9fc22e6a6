#!/usr/bin/env bash
# Provides Qt 5.15 for Windows (mingw-w64, x86_64) in a cache outside any build folder and
# prints its prefix. A clean rebuild finds it there and never unpacks or builds it again.
#
#   provision-qt-windows.sh [SHARED_TOOLCHAINS_DIR]
#
# With the team's prebuilt tarball (checked against its SHA256SUMS first) it is unpacked;
# without it, Qt is built from Debian's qtbase source by build-qt-windows.sh (20-35 min).
#   VARNEL_QT_WIN_CACHE   cache folder (default ${XDG_CACHE_HOME:-~/.cache}/varnel)
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
toolchains=${1:-$here/../../shared/toolchains}
cache=${VARNEL_QT_WIN_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/varnel}
name=qt5.15.8-mingw64
prefix=$cache/$name

if [ -f "$prefix/.varnel-ready" ]; then
    echo "$prefix"
    exit 0
fi
mkdir -p "$cache"
# Several checkouts share the cache: one of them provisions, the others wait for it.
exec 9>"$cache/$name.lock"
flock 9
if [ -f "$prefix/.varnel-ready" ]; then
    echo "$prefix"
    exit 0
fi
rm -rf "$prefix" "$prefix.partial"

if [ -f "$toolchains/$name.tar.xz" ] && [ -f "$toolchains/SHA256SUMS" ]; then
    (cd "$toolchains" && sha256sum --quiet -c SHA256SUMS) >&2 ||
        { echo "provision-qt-windows: $toolchains/$name.tar.xz fails its checksum" >&2; exit 1; }
    mkdir -p "$prefix.partial"
    tar -xJf "$toolchains/$name.tar.xz" -C "$prefix.partial"
    mv "$prefix.partial/$name" "$prefix"
    rmdir "$prefix.partial"
else
    echo "provision-qt-windows: no $name.tar.xz in $toolchains; building Qt from source" >&2
    "$here/build-qt-windows.sh" "$prefix.partial" "$cache/$name.work" >&2
    mv "$prefix.partial" "$prefix"
    rm -rf "$cache/$name.work"
fi
[ -f "$prefix/lib/cmake/Qt5/Qt5Config.cmake" ] ||
    { echo "provision-qt-windows: $prefix has no Qt5Config.cmake" >&2; exit 1; }
touch "$prefix/.varnel-ready"
echo "$prefix"
