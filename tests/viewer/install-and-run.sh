#!/usr/bin/env bash
# Installs the build into a temporary prefix and runs the installed viewer
# there, from another folder, with the build tree out of its sight.
#   install-and-run.sh BUILD_DIR LIBDIR   (LIBDIR as GNUInstallDirs chose it, e.g. lib/x86_64-linux-gnu)
set -euo pipefail
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
cmake --install "$1" --prefix "$prefix" > /dev/null
cd /
QT_QPA_PLATFORM=offscreen "$prefix/bin/triggerio-viewer" --screenshot "$prefix/shot.png" --after 300
test -s "$prefix/shot.png"
# Its translations are found under share/triggerio/.
LANG=de_DE.UTF-8 "$prefix/bin/triggerio-viewer" --help | grep -q "Zeigt den Trigger-IO-Tab"
# The plug-in lives in a folder of our own, nothing under bin/ but the viewer.
test "$(ls "$prefix/bin")" = triggerio-viewer
test -f "$prefix/$2/triggerio/plugins/libtabextensiontriggerio.so"
test -f "$prefix/share/triggerio/plugins/tabextensiontriggerio_de.qm"
test -f "$prefix/share/triggerio/translations/triggerio-viewer_de.qm"
test -f "$prefix/share/triggerio/cameras/line-camera.xml"
test -f "$prefix/include/triggerio/TabExtensionInterface.h"
test -f "$prefix/include/triggerio/OrvCPP/OrvCPP.h"
# The backend is a shared library with a SONAME.
readelf -d "$prefix/$2/libtriggerio-genicam.so.1" | grep -q 'SONAME.*libtriggerio-genicam\.so\.1\]'
# triggerio.pc names this prefix (found from the file's own folder).
test "$(realpath "$(PKG_CONFIG_PATH="$prefix/$2/pkgconfig" pkg-config --variable=pluginsdir triggerio)")" = \
    "$prefix/$2/triggerio/plugins"
echo "installed viewer ran from $prefix"
