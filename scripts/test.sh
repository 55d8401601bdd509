#!/bin/sh
# Sets everything up, builds, and runs the whole test suite; builds, installs
# and runs the Debian package; runs the static analysis; then builds again
# with AddressSanitizer and UndefinedBehaviorSanitizer and reruns every test
# that needs neither a display, nor an installed tree, nor gigabytes of
# memory, nor the Python interpreter (which is not built with the sanitizers
# and so cannot load a module that is); last, a short fuzzing run. Any failure, finding or sanitizer report
# fails it.
set -e
cd "$(dirname "$0")/.."
./scripts/build.sh
ctest --test-dir build --output-on-failure -j2

# The Debian package: built, installed with dpkg, run, removed again.
./scripts/package-test.sh build-package

./scripts/lint.sh

cmake -S . -B build-asan -DCMAKE_BUILD_TYPE=Debug -DQUORL_SANITIZE=ON >/dev/null
cmake --build build-asan -j"$(nproc)"
# A sanitizer report must fail the run even when it comes from a program that
# a test runs and expects to fail. Address and leak reports are also written
# to files, checked below; undefined behaviour stops the program at once
# (halt_on_error) with the status 86, which no test expects (this combined
# runtime writes those reports to standard error only). Test output that
# shows a report fails the run as well.
# faketime preloads itself ahead of the sanitizer runtime; that order is fine here.
reports="$(pwd)/build-asan/sanitizer-reports"
rm -rf "$reports"
mkdir -p "$reports"
failed=0
LSAN_OPTIONS=print_suppressions=0 \
ASAN_OPTIONS=verify_asan_link_order=0:detect_leaks=1:check_initialization_order=1:exitcode=86:log_path="$reports/report" \
UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1:exitcode=86:log_path="$reports/report" \
    ctest --test-dir build-asan --output-on-failure -j2 -LE 'gui|heavy|install|python|browser' || failed=1
if [ -n "$(ls "$reports")" ] ||
    grep -qE "runtime error:|ERROR: (Address|Leak)Sanitizer" build-asan/Testing/Temporary/LastTest.log; then
    cat "$reports"/* 2>/dev/null || true
    grep -E -A3 "runtime error:|ERROR: (Address|Leak)Sanitizer" build-asan/Testing/Temporary/LastTest.log || true
    echo "sanitizer reports above (files kept in build-asan/sanitizer-reports/)" >&2
    failed=1
fi
[ "$failed" -eq 0 ]

./scripts/fuzz.sh 60
