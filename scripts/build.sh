#!/bin/sh
# Installs what is missing, then configures and builds Quorl into build/.
set -e
cd "$(dirname "$0")/.."
./scripts/setup.sh
cmake -S . -B build -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build build -j"$(nproc)"
