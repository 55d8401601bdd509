#!/bin/sh
# Boxes tested per second by the interactive program, with its window, redraws
# and panel polling, against the quiet mode on the same image and seed.
#
#   scripts/bench_interactive.sh [path of quorl] [TGA image] [extra switches...]
#
# Defaults: build/quorl, examples/triangle.tga, "-b2 1 -n 3". Runs the
# program on a private Xvfb (needs xvfb, xdotool, imagemagick, x11-utils and
# faketime, see scripts/setup.sh). Both runs start their clock at the same
# second, so the interactive analysis started by -p at start-up and the quiet
# one draw the same grid offsets and test the same boxes. The number of boxes
# is worked out from the progress lines (every grid's size and offset).
set -e
cd "$(dirname "$0")/.."
QUORL=${1:-build/quorl}
IMAGE=${2:-examples/triangle.tga}
[ $# -ge 2 ] && shift 2 || set --
[ $# -eq 0 ] && set -- -b2 1 -n 3
exec /usr/bin/python3 - "$QUORL" "$IMAGE" "$@" <<'EOF'
import math
import os
import re
import subprocess
import sys
import time

sys.path.insert(0, os.path.join("tests", "e2e"))
import gui  # noqa: E402

quorl, image, extra = os.path.abspath(sys.argv[1]), sys.argv[2], sys.argv[3:]
clock = ["faketime", "-f", "@2024-01-01 00:00:00"]   # '@': starts there, then runs

gui.quorl = quorl
gui.XVFB, gui.ENV = gui.start_xvfb()
try:
    p = gui.Program("-p", "-i", image, *extra, prefix=clock)
    start = p.wait_line(r"^Processing starting", timeout=60)
    t0 = time.monotonic()
    fin = p.wait_line(r"^Processing finished", start, timeout=3600)
    t1 = time.monotonic()
    frames = 0
    lines = p.lines()
    w, h = map(int, re.search(r"Image dimensions: (\d+) x (\d+)", "\n".join(p.lines())).groups())
    boxes = 0
    for line in lines[start:fin]:
        m = re.search(r"Box size:\s+(\d+) \[\s*\d+\](?:, Offset\s+\d+ of\s+\d+: \(\s*(\d+),\s*(\d+)\))?",
                      line)
        if m:
            size, ox, oy = int(m.group(1)), int(m.group(2) or 0), int(m.group(3) or 0)
            boxes += math.ceil((w + ox) / size) * math.ceil((h + oy) / size)
    p.key("Escape")
    p.exits()
finally:
    gui.XVFB.kill()

q0 = time.monotonic()
quiet = subprocess.run(clock + [quorl, "-q", "-i", image] + extra, capture_output=True, text=True)
q1 = time.monotonic()
est_i = [l for l in lines if l.startswith("Estimated")][-1]
est_q = quiet.stdout.splitlines()[-1]

rate_i = boxes / (t1 - t0)
rate_q = boxes / (q1 - q0)
print("image %s (%d x %d), switches: %s" % (image, w, h, " ".join(extra)))
print("boxes tested:        %d" % boxes)
print("interactive:         %.2f s  %.2f million boxes/s  (%.2f us per idle call)"
      % (t1 - t0, rate_i / 1e6, 1e6 / rate_i))
print("quiet (whole run):   %.2f s  %.2f million boxes/s" % (q1 - q0, rate_q / 1e6))
print("same estimate:       %s" % ("yes" if est_i == est_q else "NO: %r vs %r" % (est_i, est_q)))
EOF
