#!/bin/sh
# Builds the libFuzzer targets with clang into build-fuzz/ and runs each in
# turn, one process at a time and at low priority, for a share of the given
# number of seconds (default 60): half to the TGA reader, a quarter to the
# loading of every format, the rest to the command line. Each starts from the
# committed seeds in fuzz/corpus/ plus what earlier runs found (kept in build-fuzz/corpus/). Any crash, sanitizer
# report, leak, timeout or memory blow-up fails the script and leaves the
# input in build-fuzz/findings/ (rerun it with build-fuzz/fuzz_<name> <file>).
set -e
cd "$(dirname "$0")/.."
total=${1:-60}

CC=clang CXX=clang++ cmake -S . -B build-fuzz -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DQUORL_FUZZ=ON -DQUORL_GUI=OFF -DQUORL_TESTS=OFF >/dev/null
cmake --build build-fuzz -j2 --target fuzz_tga fuzz_cmdline fuzz_load >/dev/null

mkdir -p build-fuzz/findings
export ASAN_OPTIONS=detect_leaks=1:allocator_may_return_null=1
export UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1

run() {
    name=$1
    seconds=$2
    shift 2
    mkdir -p "build-fuzz/corpus/$name"
    echo "fuzz_$name: $seconds s"
    # -rss_limit_mb and -malloc_limit_mb bound one input; -timeout catches hangs.
    if ! nice -n 10 "build-fuzz/fuzz_$name" -max_total_time="$seconds" -timeout=10 \
        -rss_limit_mb=2560 -malloc_limit_mb=512 -print_final_stats=1 \
        -artifact_prefix="build-fuzz/findings/$name-" "$@" \
        "build-fuzz/corpus/$name" "fuzz/corpus/$name" >"build-fuzz/fuzz_$name.log" 2>&1; then
        tail -n 60 "build-fuzz/fuzz_$name.log"
        echo "fuzz_$name found a problem; the input is in build-fuzz/findings/" >&2
        exit 1
    fi
    grep -E "^stat::number_of_executed_units|^stat::new_units_added" "build-fuzz/fuzz_$name.log" || true
}

run tga $((total / 2))
# libvips may set aside a whole image on opening a small file whose header
# claims a large one (WebP does): a bounded allocation, not a fault.
run load $((total / 4)) -malloc_limit_mb=2048
run cmdline $((total - total / 2 - total / 4)) -dict=fuzz/cmdline.dict
