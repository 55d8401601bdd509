#!/bin/sh
# Builds the Debian package, installs it with dpkg -i, and checks what a user
# of the package gets: the program runs a quiet analysis of the bundled
# carpet, the manual page is in place, Debian's python3 imports the module
# from where the package put it and analyses the carpet, and the example
# program builds against the installed libraries with CMake and with
# pkg-config. Then removes the package again (also when a check fails).
#
#   scripts/package-test.sh [build directory]     (default: build-package)
#
# Runs dpkg as root, through sudo when not root. Stops at once if a package
# named quorl is already installed, so that it never removes one it did not
# install.
set -e
cd "$(dirname "$0")/.."
BUILD=${1:-build-package}
SUDO=""
[ "$(id -u)" -ne 0 ] && SUDO=sudo

if dpkg-query -W -f='${Status}' quorl 2>/dev/null | grep -q "install ok installed"; then
    echo "package-test: a quorl package is installed already; remove it first (dpkg -r quorl)" >&2
    exit 1
fi

cmake -S . -B "$BUILD" -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX=/usr -DQUORL_TESTS=OFF >/dev/null
cmake --build "$BUILD" -j"$(nproc)"
rm -rf "$BUILD/packages"
(cd "$BUILD" && cpack -G DEB >cpack.log 2>&1) || { cat "$BUILD/cpack.log" >&2; exit 1; }
DEB=$(ls "$BUILD"/packages/quorl_*.deb)
echo "Package $DEB:"
dpkg-deb -f "$DEB" Package Version Architecture Depends | sed 's/^/   /'
dpkg-deb -f "$DEB" Depends | grep -q 'libc6' || { echo "package-test: no dependencies declared" >&2; exit 1; }

WORK=$(mktemp -d)
trap '$SUDO dpkg -r quorl >/dev/null 2>&1 || true; rm -rf "$WORK"' EXIT
$SUDO dpkg -i "$DEB"

echo "Installed program:"
/usr/bin/quorl -q -i examples/carpet.tga > "$WORK/carpet.out"
tail -n 1 "$WORK/carpet.out" | sed 's/^/   /'
grep -q '^Estimated fractal dimension:  1\.8' "$WORK/carpet.out"
test -f /usr/share/man/man1/quorl.1
test -f /usr/share/doc/quorl/examples/carpet.tga

echo "Python module of the package:"
CARPET="$(pwd)/examples/carpet.tga"  # run from elsewhere, so that no module of the tree is found
(cd "$WORK" && env -u PYTHONPATH /usr/bin/python3 - "$CARPET") <<'PY'
import sys, quorl
assert quorl.__file__.startswith("/usr/lib/python3/dist-packages/"), quorl.__file__
dimension = quorl.analyse(sys.argv[1], seed=1)["fit"]["dimension"]
assert 1.8 < dimension < 1.9, dimension
print("   quorl", quorl.__version__, "from", quorl.__file__, "dimension %.3f" % dimension)
PY

echo "Example program against the installed libraries:"
cp -r examples/imagestats "$WORK/src"
cmake -S "$WORK/src" -B "$WORK/cmake" >/dev/null
cmake --build "$WORK/cmake" >/dev/null
make -s -C "$WORK/src"
"$WORK/cmake/imagestats" examples/carpet.tga "$WORK/c" | sed 's/^/   /'
"$WORK/src/imagestats" examples/carpet.tga "$WORK/p" > "$WORK/p.out"
cmp "$WORK/c.tiff" "$WORK/p.tiff"

$SUDO dpkg -r quorl >/dev/null
test ! -e /usr/bin/quorl
echo "Package installed, ran and removed cleanly"
