#!/usr/bin/env bash
# Installs the build into a temporary prefix, builds examples/host against that
# prefix alone (a copy of it, outside the source tree) and runs it headless on
# a demo model: it must show both tabs, so the plug-ins were found where the
# CMake package says.
#   build-host-example.sh SOURCE_DIR BUILD_DIR [COMPILER_AND_LINKER_FLAGS]
set -euo pipefail
source=$(realpath "$1")
build=$(realpath "$2")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cmake --install "$build" --prefix "$work/prefix" > /dev/null
cp -r "$source/examples/host" "$work/host"
cd "$work"
flags=()
[ -z "${3:-}" ] || flags=(-DCMAKE_CXX_FLAGS="$3" -DCMAKE_EXE_LINKER_FLAGS="$3")
cmake -S host -B host-build -DCMAKE_PREFIX_PATH="$work/prefix" "${flags[@]}" > /dev/null
cmake --build host-build -j2 > /dev/null
grep -q "^TriggerIO_DIR:PATH=$work/prefix/" host-build/CMakeCache.txt
if grep -rlE "$source|$build" host-build --include=*.make --include=link.txt --include=*.cmake; then
    echo "the example was built with the source or build tree on a path" >&2
    exit 1
fi
tabs=$(QT_QPA_PLATFORM=offscreen host-build/triggerio-host \
    "fake:$work/prefix/share/triggerio/cameras/line-camera.xml" --quit)
echo "$tabs"
test "$tabs" = "$(printf 'tab: I/O Monitor\ntab: Trigger IO')"
