#!/bin/sh
# The Python module against the box count people write in numpy today: one
# grid per box size, the mask padded to a whole number of boxes, reshaped
# and reduced with any().
#
#   scripts/bench_python.sh [runs] [side]
#
# Defaults: 5 runs, a side of 4096. The mask is the bundled triangle scaled
# up (nearest neighbour) to side x side, as a bool array. quorl.analyse runs
# with its defaults (10 passes, each size's smallest count over its grids)
# and with samples=1 (one grid per size, like the numpy code); the numpy
# code counts the very sizes that analyse chose. Prints the median wall time
# of each and the ratios. Builds the module in build-bench (Release, no GUI).
set -e
cd "$(dirname "$0")/.."
BUILD=${QUORL_BENCH_BUILD:-build-bench}
cmake -S . -B "$BUILD" -DCMAKE_BUILD_TYPE=Release -DQUORL_GUI=OFF -DQUORL_TESTS=OFF >/dev/null
cmake --build "$BUILD" -j2 --target quorl_python >/dev/null
PYTHONPATH="$BUILD/python" exec /usr/bin/python3 - "$@" <<'EOF_PY'
import statistics
import sys
import time

import numpy as np
import quorl

runs = int(sys.argv[1]) if len(sys.argv) > 1 else 5
side = int(sys.argv[2]) if len(sys.argv) > 2 else 4096
triangle = quorl.read_image("examples/triangle.tga")[..., 0] < 128
pick = np.arange(side) * triangle.shape[0] // side
mask = triangle[pick][:, pick]


def numpy_count(mask, sizes):
    """Occupied boxes of each size on one grid from the top-left corner."""
    counts = []
    for s in sizes:
        h, w = -(-mask.shape[0] // s) * s, -(-mask.shape[1] // s) * s
        padded = np.zeros((h, w), bool)
        padded[:mask.shape[0], :mask.shape[1]] = mask
        counts.append(int(padded.reshape(h // s, s, w // s, s).any(axis=(1, 3)).sum()))
    return counts


def median_time(f):
    times = []
    for _ in range(runs):
        t = time.perf_counter()
        f()
        times.append(time.perf_counter() - t)
    return statistics.median(times)


report = quorl.analyse(mask, seed=1)
sizes = [p["size"] for p in report["sizes"]]
ways = [("quorl.analyse, 10 passes", lambda: quorl.analyse(mask, seed=1)),
        ("quorl.analyse, samples=1", lambda: quorl.analyse(mask, seed=1, samples=1)),
        ("numpy, one grid per size", lambda: numpy_count(mask, sizes))]
print(f"{side} x {side} bool mask, {int(mask.sum())} black pixels, {len(sizes)} sizes {sizes[0]}..{sizes[-1]}, "
      f"median of {runs} runs")
seconds = [median_time(f) for _, f in ways]
for (name, _), s in zip(ways, seconds):
    print(f"   {name:28s} {s:8.3f} s   numpy / this: {seconds[2] / s:6.2f}")
EOF_PY
