#!/usr/bin/env bash
# Makes the Debian packages of a build with cpack (into a temporary folder) and
# checks them as Debian would take them:
#   - lintian reports no error, and no warning but the ones README explains;
#   - the library is in a package named after its SONAME, with a shlibs file,
#     under the multiarch library folder; the plug-ins are there too, never in bin/;
#   - triggerio-dev needs the library package and not the viewer's: an install
#     of it (simulated by apt, recommended packages included) brings no viewer,
#     and the CMake package and triggerio.pc work from it and the library alone;
#   - the viewer runs from its package.
#   debian-packages.sh BUILD_DIR SOURCE_DIR LIBDIR   (LIBDIR as the build chose it)
set -euo pipefail
build=$(realpath "$1")
source=$(realpath "$2")
libdir=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "FAIL: $*" >&2; exit 1; }

# The warnings that stay, each with its reason in README ("Debian packages").
allowed_warnings='maintscript-calls-ldconfig'

multiarch=$(dpkg-architecture -qDEB_HOST_MULTIARCH)
[ "$libdir" = "lib/$multiarch" ] ||
    fail "the build installs libraries into $libdir, not lib/$multiarch (configure a new build folder," \
         "or this one with -DCMAKE_INSTALL_LIBDIR=lib/$multiarch)"

(cd "$build" && cpack -G DEB -B "$work" > "$work/cpack.log" 2>&1) || { cat "$work/cpack.log"; fail "cpack"; }
lib=$(echo "$work"/libtriggerio-genicam1_*.deb)
app=$(echo "$work"/triggerio_*.deb)
dev=$(echo "$work"/triggerio-dev_*.deb)
for deb in "$lib" "$app" "$dev"; do [ -f "$deb" ] || fail "no package $deb"; done

lintian_status=0
lintian --fail-on error "$lib" "$app" "$dev" > "$work/lintian.txt" 2>&1 || lintian_status=$?
cat "$work/lintian.txt"
[ "$lintian_status" = 0 ] || fail "lintian reports errors"
unexplained=$(grep '^W: ' "$work/lintian.txt" | awk '{ print $3 }' | grep -vxE "$allowed_warnings" || true)
[ -z "$unexplained" ] || fail "lintian warnings that README does not explain: $unexplained"

# Where the files are. (Outputs are read whole before grep -q looks at them:
# a writer cut off by grep's early exit would fail the pipe.)
files() { dpkg-deb -c "$1" | awk '{ print $6 }' | sed 's|^\./||'; }
lib_files=$(files "$lib")
app_files=$(files "$app")
dev_files=$(files "$dev")
grep -qx "usr/$libdir/libtriggerio-genicam.so.1" <<<"$lib_files" || fail "the library is not in $lib"
[ -z "$(grep -vE "^usr/(|lib/|$libdir/|$libdir/libtriggerio-genicam\.so\.1(\.[0-9.]+)?|share/(|doc/.*))$" <<<"$lib_files")" ] ||
    fail "$lib holds more than the library: $(tr '\n' ' ' <<<"$lib_files")"
[ "$(dpkg-deb -I "$lib" shlibs)" = "libtriggerio-genicam 1 libtriggerio-genicam1 (>= $(dpkg-deb -f "$lib" Version))" ] ||
    fail "shlibs of $lib: $(dpkg-deb -I "$lib" shlibs)"
[ "$(grep '^usr/bin/.' <<<"$app_files")" = usr/bin/triggerio-viewer ] || fail "bin/ holds more than the viewer"
for plugin in tabextensiontriggerio tabextensioniomonitor; do
    grep -qx "usr/$libdir/triggerio/plugins/lib$plugin.so" <<<"$app_files" || fail "no plug-in $plugin in $app"
done
! grep -q 'libtriggerio-genicam\.so\.' <<<"$app_files$dev_files" || fail "the library is in a second package"
grep -qx "usr/$libdir/pkgconfig/triggerio.pc" <<<"$dev_files" || fail "no triggerio.pc in $dev"

# What triggerio-dev brings along.
relations=$(dpkg-deb -f "$dev" Pre-Depends Depends Recommends)
grep -q 'libtriggerio-genicam1 (= ' <<<"$relations" || fail "triggerio-dev does not depend on the library: $relations"
! grep -qE '(^|[ ,|])triggerio([ ,(|]|$)' <<<"$relations" || fail "triggerio-dev brings the viewer: $relations"
grep -q 'libtriggerio-genicam1 (= ' <<<"$(dpkg-deb -f "$app" Depends)" || fail "triggerio does not depend on the library"
apt-get install --simulate -o APT::Install-Recommends=true "$lib" "$dev" > "$work/apt.txt" 2>&1 ||
    { cat "$work/apt.txt"; fail "apt-get cannot install triggerio-dev"; }
grep -q '^Inst triggerio-dev ' "$work/apt.txt" || { cat "$work/apt.txt"; fail "apt-get would not install triggerio-dev"; }
! grep -q '^Inst triggerio ' "$work/apt.txt" || { cat "$work/apt.txt"; fail "installing triggerio-dev installs the viewer"; }

# A host is configured against triggerio-dev and the library alone.
root=$work/root
dpkg-deb -x "$lib" "$root"
dpkg-deb -x "$dev" "$root"
flags=$(PKG_CONFIG_PATH="$root/usr/$libdir/pkgconfig" pkg-config --cflags --libs triggerio)
for flag in $flags; do
    case $flag in -L*) test -e "${flag#-L}/libtriggerio-genicam.so" || fail "pkg-config: no library in ${flag#-L}" ;; esac
    case $flag in -I*/triggerio) test -f "${flag#-I}/TabExtensionInterface.h" || fail "pkg-config: no headers in ${flag#-I}" ;; esac
done
grep -q -- "-I$root/" <<<"$flags" || fail "pkg-config does not name the headers' folder: $flags"
cp -r "$source/examples/host" "$work/host"
cmake -S "$work/host" -B "$work/host-build" -DCMAKE_PREFIX_PATH="$root/usr" > "$work/host.log" 2>&1 ||
    { cat "$work/host.log"; fail "the CMake package does not work from triggerio-dev"; }
grep -q "^TriggerIO_DIR:PATH=$root/usr/$libdir/cmake/TriggerIO$" "$work/host-build/CMakeCache.txt" ||
    fail "the host found another TriggerIO: $(grep TriggerIO_DIR "$work/host-build/CMakeCache.txt")"

# The viewer runs from its package, with the package's library and plug-ins.
dpkg-deb -x "$app" "$root"
grep -q "libtriggerio-genicam.so.1 => $root/" <<<"$(ldd "$root/usr/bin/triggerio-viewer")" ||
    fail "the packaged viewer does not load the packaged library"
cd /
for page in "Trigger IO" "I/O Monitor"; do
    rm -f "$work/shot.png"
    LC_ALL=C.UTF-8 QT_QPA_PLATFORM=offscreen "$root/usr/bin/triggerio-viewer" --page "$page" \
        --camera "fake:$root/usr/share/triggerio/cameras/line-camera.xml" --screenshot "$work/shot.png" --after 300 || fail "the packaged viewer on the page $page"
    test -s "$work/shot.png" || fail "no screenshot of the page $page"
done
echo "packages checked: $(basename "$lib") $(basename "$app") $(basename "$dev")"
