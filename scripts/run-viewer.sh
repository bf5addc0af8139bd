#!/usr/bin/env bash
# Sets up a Debian 12 machine (only what is missing), builds the project and
# starts the viewer on the line-family demo camera. Without a display it
# renders a screenshot instead and says where.
#   scripts/run-viewer.sh [viewer arguments...]   e.g. --camera fake:cameras/syncout-camera.xml
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-deps.sh
cmake -S . -B build -DCMAKE_BUILD_TYPE=Release
cmake --build build -j"$(nproc)" --target triggerio-viewer

viewer=build/bin/triggerio-viewer
if [ -n "${DISPLAY:-}" ] || [ -n "${WAYLAND_DISPLAY:-}" ]; then
    exec "$viewer" "$@"
fi
shot=${SCREENSHOT:-$PWD/build/triggerio-viewer.png}
echo "No display: rendering the viewer to $shot"
QT_QPA_PLATFORM=offscreen "$viewer" "$@" --screenshot "$shot"
