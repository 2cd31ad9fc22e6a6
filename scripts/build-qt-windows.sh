#!/bin/bash
# build-qt-windows.sh - cross-compile Qt 5.15.8 (qtbase: Core, Gui, Widgets, Network,
# Test, Concurrent, Xml, PrintSupport; "windows", "offscreen" and "minimal" platform
# plugins) for Windows x86_64 on Debian 12 with mingw-w64 (POSIX threads).
#
# Usage:   ./build-qt-mingw.sh PREFIX [WORKDIR]
#   PREFIX   where Qt is installed (created; must not exist or be empty)
#   WORKDIR  scratch space for sources and the build (default: PREFIX.work)
# Environment:
#   JOBS=2             parallel make jobs
#   QT_DSC=/path/x.dsc use an already downloaded Debian source package (.dsc with
#                      its .orig.tar.xz and .debian.tar.xz beside it) instead of
#                      `apt-get source`
#   SKIP_APT=1         do not run apt-get install (packages already present)
#
# Source: Debian's qtbase-opensource-src 5.15.8+dfsg (Debian patches applied by
# dpkg-source), plus the patch embedded below.
# Result: PREFIX/{bin,lib,include,mkspecs,plugins,doc}; bin/ holds the Windows DLLs
# and the Linux host tools (qmake, moc, rcc, uic, ...); lib/cmake/Qt5* are usable
# from CMake with a mingw toolchain file. The mingw runtime DLLs are copied to bin/.
set -euo pipefail

PREFIX=${1:?usage: $0 PREFIX [WORKDIR]}
PREFIX=$(realpath -m "$PREFIX")
WORKDIR=$(realpath -m "${2:-$PREFIX.work}")
JOBS=${JOBS:-2}
QT_VERSION=5.15.8
TRIPLE=x86_64-w64-mingw32

log() { printf '[%s] %s\n' "$(date +%H:%M:%S)" "$*"; }

if [ -e "$PREFIX" ] && [ -n "$(ls -A "$PREFIX" 2>/dev/null)" ]; then
    echo "error: $PREFIX exists and is not empty" >&2; exit 1
fi

# ---------------------------------------------------------------- packages
if [ "${SKIP_APT:-0}" != 1 ]; then
    log "installing build dependencies with apt-get"
    SUDO=; [ "$(id -u)" = 0 ] || SUDO=sudo
    export DEBIAN_FRONTEND=noninteractive
    $SUDO apt-get update
    # --no-upgrade: install what is missing, leave installed packages as they are
    $SUDO apt-get install -y --no-install-recommends --no-upgrade \
        build-essential perl python3 dpkg-dev xz-utils patch \
        g++-mingw-w64-x86-64-posix gcc-mingw-w64-x86-64-posix \
        binutils-mingw-w64-x86-64 mingw-w64-x86-64-dev
fi
for t in ${TRIPLE}-gcc-posix ${TRIPLE}-g++-posix ${TRIPLE}-windres ${TRIPLE}-ar g++ make perl dpkg-source; do
    command -v "$t" >/dev/null || { echo "error: $t not found" >&2; exit 1; }
done

mkdir -p "$WORKDIR"
cd "$WORKDIR"

# ---------------------------------------------------------------- sources
SRC="$WORKDIR/qtbase"
if [ ! -f "$SRC/configure" ]; then
    rm -rf "$SRC"
    if [ -n "${QT_DSC:-}" ]; then
        log "unpacking $QT_DSC"
        dpkg-source -x "$QT_DSC" "$SRC"
    else
        log "fetching Debian source with apt-get source (needs a deb-src entry)"
        # Without a deb-src entry, add one beside the binary entry of Debian's archive.
        if ! grep -rqs '^Types:.*deb-src\|^deb-src ' /etc/apt/sources.list /etc/apt/sources.list.d/; then
            src=/etc/apt/sources.list.d/debian.sources
            [ -f "$src" ] || { echo "error: no deb-src entry and no $src to copy" >&2; exit 1; }
            SUDO=; [ "$(id -u)" = 0 ] || SUDO=sudo
            sed -n '/^Types: deb$/,/^$/p' "$src" | sed 's/^Types: deb$/Types: deb-src/' |
                $SUDO tee /etc/apt/sources.list.d/varnel-deb-src.sources >/dev/null
            $SUDO apt-get update
        fi
        mkdir -p dl && (cd dl && apt-get source --download-only qtbase-opensource-src)
        dsc=$(ls dl/qtbase-opensource-src_${QT_VERSION}+dfsg-*.dsc | sort -V | tail -n1)
        dpkg-source -x "$dsc" "$SRC"
    fi
    log "applying local patches"
    apply_patch() { patch -d "$SRC" -p1 --forward --no-backup-if-mismatch; }
    apply_patch <<'PATCH_EOF'
--- a/src/plugins/platforms/windows/windows.pri
+++ b/src/plugins/platforms/windows/windows.pri
@@ -104,7 +104,11 @@
     }
 }
 
-qtConfig(tabletevent) {
+# Debian's dfsg tarball drops src/3rdparty/wintab (wintab.h/pktdef.h): build the
+# Wintab tablet backend only when those headers are present. Pen input through the
+# WM_POINTER API (Windows 8+) and the tabletevent feature in QtGui are unaffected.
+qtConfig(tabletevent):exists($$QT_SOURCE_TREE/src/3rdparty/wintab/wintab.h) {
+    DEFINES += QT_WINDOWS_WINTAB
     INCLUDEPATH += $$QT_SOURCE_TREE/src/3rdparty/wintab
     HEADERS += $$PWD/qwindowstabletsupport.h
     SOURCES += $$PWD/qwindowstabletsupport.cpp
--- a/src/plugins/platforms/windows/qwindowscontext.cpp
+++ b/src/plugins/platforms/windows/qwindowscontext.cpp
@@ -49,7 +49,7 @@
 #include "qwindowsmenu.h"
 #include "qwindowsmime.h"
 #include "qwindowsinputcontext.h"
-#if QT_CONFIG(tabletevent)
+#if QT_CONFIG(tabletevent) && defined(QT_WINDOWS_WINTAB)
 #  include "qwindowstabletsupport.h"
 #endif
 #include "qwindowstheme.h"
@@ -266,7 +266,7 @@
     QWindowsMimeConverter m_mimeConverter;
     QWindowsScreenManager m_screenManager;
     QSharedPointer<QWindowCreationContext> m_creationContext;
-#if QT_CONFIG(tabletevent)
+#if QT_CONFIG(tabletevent) && defined(QT_WINDOWS_WINTAB)
     QScopedPointer<QWindowsTabletSupport> m_tabletSupport;
 #endif
     const HRESULT m_oleInitializeResult;
@@ -315,7 +315,7 @@
 
 QWindowsContext::~QWindowsContext()
 {
-#if QT_CONFIG(tabletevent)
+#if QT_CONFIG(tabletevent) && defined(QT_WINDOWS_WINTAB)
     d->m_tabletSupport.reset(); // Destroy internal window before unregistering classes.
 #endif
 
@@ -369,7 +369,7 @@
 bool QWindowsContext::initTablet(unsigned integrationOptions)
 {
     Q_UNUSED(integrationOptions);
-#if QT_CONFIG(tabletevent)
+#if QT_CONFIG(tabletevent) && defined(QT_WINDOWS_WINTAB)
     d->m_tabletSupport.reset(QWindowsTabletSupport::create());
     return true;
 #else
@@ -443,7 +443,7 @@
 
 void QWindowsContext::setTabletAbsoluteRange(int a)
 {
-#if QT_CONFIG(tabletevent)
+#if QT_CONFIG(tabletevent) && defined(QT_WINDOWS_WINTAB)
     if (!d->m_tabletSupport.isNull())
         d->m_tabletSupport->setAbsoluteRange(a);
 #else
@@ -890,7 +890,7 @@
 
 QWindowsTabletSupport *QWindowsContext::tabletSupport() const
 {
-#if QT_CONFIG(tabletevent)
+#if QT_CONFIG(tabletevent) && defined(QT_WINDOWS_WINTAB)
     return d->m_tabletSupport.data();
 #else
     return 0;
@@ -1412,7 +1412,7 @@
             *result = LRESULT(MA_NOACTIVATE);
             return true;
         }
-#if QT_CONFIG(tabletevent)
+#if QT_CONFIG(tabletevent) && defined(QT_WINDOWS_WINTAB)
         if (!d->m_tabletSupport.isNull())
             d->m_tabletSupport->notifyActivate();
 #endif // QT_CONFIG(tabletevent)
PATCH_EOF
fi

# ---------------------------------------------------------------- compilers
# Debian's x86_64-w64-mingw32-g{cc,++} are alternatives that may point at the
# win32-thread variants; Qt needs std::thread etc., so force the -posix ones.
TOOLBIN="$WORKDIR/toolbin"
mkdir -p "$TOOLBIN"
for t in gcc g++ c++ cpp gcc-ar gcc-nm gcc-ranlib; do
    ln -sf "/usr/bin/${TRIPLE}-$t-posix" "$TOOLBIN/${TRIPLE}-$t"
done
export PATH="$TOOLBIN:$PATH"

# ---------------------------------------------------------------- configure
BUILD="$WORKDIR/build"
mkdir -p "$BUILD"
cd "$BUILD"
CONFIGURE_ARGS=(
    -xplatform win32-g++ -device-option CROSS_COMPILE=${TRIPLE}-
    -prefix "$PREFIX"
    -release -shared -opensource -confirm-license
    -nomake examples -nomake tests
    -no-opengl -no-direct2d -no-dbus -no-icu -no-openssl
    -qt-zlib -qt-pcre -qt-libpng -qt-libjpeg -qt-freetype -qt-harfbuzz
    -no-feature-sql -no-sql-sqlite -no-sql-odbc -no-sql-mysql -no-sql-psql
    -no-fontconfig -no-vulkan -verbose
)
if [ ! -f "$BUILD/Makefile" ]; then
    log "configure ${CONFIGURE_ARGS[*]}"
    "$SRC/configure" "${CONFIGURE_ARGS[@]}" > "$WORKDIR/configure.log" 2>&1 \
        || { tail -40 "$WORKDIR/configure.log"; echo "configure failed, see $WORKDIR/configure.log" >&2; exit 1; }
fi

# ---------------------------------------------------------------- build
log "make -j$JOBS (log: $WORKDIR/make.log)"
t0=$(date +%s)
make -j"$JOBS" > "$WORKDIR/make.log" 2>&1 \
    || { grep -n -m20 -E '(error|Error) ' "$WORKDIR/make.log"; echo "make failed, see $WORKDIR/make.log" >&2; exit 1; }
t1=$(date +%s)
log "build took $((t1 - t0)) s"
make install > "$WORKDIR/install.log" 2>&1

# ---------------------------------------------------------------- runtime DLLs
# Put the mingw runtime DLLs next to the Qt DLLs (stripped: Debian's
# libstdc++-6.dll carries debug info, 23 MB -> 2 MB).
GCCDIR=$(ls -d /usr/lib/gcc/${TRIPLE}/*-posix | sort -V | tail -n1)
for dll in "$GCCDIR/libstdc++-6.dll" "$GCCDIR/libgcc_s_seh-1.dll" "/usr/${TRIPLE}/lib/libwinpthread-1.dll"; do
    install -m 0644 "$dll" "$PREFIX/bin/"
    ${TRIPLE}-strip --strip-unneeded "$PREFIX/bin/$(basename "$dll")"
done

# The host qmake is built with debug info (28 MB); strip it (3.5 MB).
strip "$PREFIX/bin/qmake"

cat > "$PREFIX/BUILDINFO.txt" <<INFO
Qt $QT_VERSION (Debian qtbase-opensource-src, $(ls "$SRC/debian/changelog" >/dev/null 2>&1 && head -n1 "$SRC/debian/changelog"))
cross-compiled for Windows x86_64 with $(${TRIPLE}-g++-posix --version | head -n1)
on $(. /etc/os-release; echo "$PRETTY_NAME"), $(date -u +%Y-%m-%dT%H:%M:%SZ)
configure ${CONFIGURE_ARGS[*]}
local patch: Wintab tablet backend of the windows plugin made optional (dfsg tarball lacks src/3rdparty/wintab)
bin/ holds Windows DLLs and Linux host tools (qmake moc rcc uic ...); mingw runtime DLLs copied from $GCCDIR and /usr/${TRIPLE}/lib
INFO

# ---------------------------------------------------------------- summary
log "installed into $PREFIX ($(du -sh "$PREFIX" | cut -f1))"
echo "DLLs:";    (cd "$PREFIX/bin" && ls *.dll)
echo "plugins:"; (cd "$PREFIX/plugins" && find . -name '*.dll' | sort)
echo "host tools:"; "$PREFIX/bin/moc" -v; "$PREFIX/bin/uic" -v; "$PREFIX/bin/rcc" -v
