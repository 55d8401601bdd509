#!/bin/sh
# Installs what building and testing Quorl needs on a Debian machine.
# Run as root (or through sudo). Packages already present are left alone.
set -e

PKGS="build-essential cmake pkg-config libgtest-dev googletest \
freeglut3-dev libgl-dev libglu1-mesa-dev libforms-dev \
imagemagick netpbm libtiff-tools ghostscript faketime \
xvfb xdotool x11-utils python3-numpy python3-scipy python3-ezdxf sox \
clang libclang-rt-14-dev cppcheck clang-tidy mandoc groff-base dpkg-dev \
libvips-dev libgif-dev python3-skimage python3-pil python3-tifffile webp \
libboost-dev nlohmann-json3-dev libcairo2-dev librsvg2-bin parallel \
pybind11-dev python3-dev \
libcpp-httplib-dev nodejs chromium"
command -v npm >/dev/null 2>&1 || PKGS="$PKGS npm"  # a nodejs from elsewhere may bring its own

missing=""
for p in $PKGS; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing="$missing $p"
done

if [ -n "$missing" ]; then
    echo "Installing:$missing"
    SUDO=""
    [ "$(id -u)" -ne 0 ] && SUDO=sudo
    $SUDO apt-get update
    DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y --no-install-recommends $missing
fi

# The page of quorl --serve bundles its chart library (uPlot) at build time,
# and the browser test drives Debian's chromium with playwright-core: both
# from npm, at the versions of package-lock.json, into node_modules/.
cd "$(dirname "$0")/.."
if [ ! -d node_modules/uplot ] || [ ! -d node_modules/playwright-core ] ||
   [ package-lock.json -nt node_modules/.package-lock.json ]; then
    npm ci --no-audit --no-fund
fi
