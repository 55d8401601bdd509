#!/bin/sh
# Sets everything up, builds, and runs the whole test suite; then builds again
# with AddressSanitizer and UndefinedBehaviorSanitizer and reruns every test
# that needs no display.
set -e
cd "$(dirname "$0")/.."
./scripts/build.sh
ctest --test-dir build --output-on-failure -j2

cmake -S . -B build-asan -DCMAKE_BUILD_TYPE=Debug -DQUORL_SANITIZE=ON >/dev/null
cmake --build build-asan -j"$(nproc)"
# faketime preloads itself ahead of the sanitizer runtime; that order is fine here.
ASAN_OPTIONS=verify_asan_link_order=0:detect_leaks=1 UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1 \
    ctest --test-dir build-asan --output-on-failure -j2 -LE gui
