#!/bin/sh
# Sets everything up, builds, and runs a quiet analysis of the bundled
# Sierpinski carpet: the results table, then the estimated dimension.
set -e
cd "$(dirname "$0")/.."
./scripts/build.sh >/dev/null
exec build/quorl -q -i examples/carpet.tga "$@"
