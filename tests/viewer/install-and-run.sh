#!/usr/bin/env bash
# Installs the build into a temporary prefix and runs the installed viewer there.
#   install-and-run.sh BUILD_DIR
set -euo pipefail
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
cmake --install "$1" --prefix "$prefix" > /dev/null
cd /
QT_QPA_PLATFORM=offscreen "$prefix/bin/triggerio-viewer" --screenshot "$prefix/shot.png" --after 300
test -s "$prefix/shot.png"
test -f "$prefix/bin/plugins/libtabextensiontriggerio.so"
test -f "$prefix/bin/plugins/tabextensiontriggerio_de.qm"
test -f "$prefix/bin/translations/triggerio-viewer_de.qm"
test -f "$prefix/include/TabExtensionInterface.h"
test -f "$prefix/include/OrvCPP/OrvCPP.h"
echo "installed viewer ran from $prefix"
