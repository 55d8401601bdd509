#!/bin/sh
# Sets everything up, builds, and runs a quiet analysis of the bundled
# Sierpinski carpet: the results table, then the estimated dimension.
#
# Each stage says what it is doing, and the installer's and the compiler's
# progress show as they go, all on standard error, so that standard output
# holds only the table and the estimate.
set -e
cd "$(dirname "$0")/.."
echo "run-sample: 1/3 installing what is missing (scripts/setup.sh; apt-get may take a few minutes the first time)" >&2
./scripts/setup.sh >&2
echo "run-sample: 2/3 configuring and building into build/" >&2
cmake -S . -B build -DCMAKE_BUILD_TYPE=Release >&2
cmake --build build -j"$(nproc)" >&2
echo "run-sample: 3/3 analysing examples/carpet.tga (quorl -q)" >&2
exec build/quorl -q -i examples/carpet.tga "$@"
