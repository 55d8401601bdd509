#!/usr/bin/python3
"""Whole quiet runs of the program: exact output on images whose counts can be
worked out by hand, the command line and its usage text, and the estimates
for the bundled fractals."""
import math
import os
import shutil
import sys

sys.path.insert(0, os.path.dirname(__file__))
from harness import FROZEN_SECONDS, check, equal, finish, run, workdir  # noqa: E402
from tgafile import Drand48, image  # noqa: E402

import numpy as np  # noqa: E402

prog = sys.argv[1]
tmp = workdir()
f32 = np.float32


def expected_run(w, h, sizes, passes, black_count):
    """Table and estimate of a quiet run over a w x h image, with the size
    sequence and offsets that the frozen clock gives. black_count(s, ox, oy)
    is the number of occupied boxes of one grid."""
    rng = Drand48(FROZEN_SECONDS)
    rng(), rng()  # the second reset re-seeds and draws the first grid's offset
    rng = Drand48(FROZEN_SECONDS)
    entries = []
    for _ in range(passes):
        for s in sizes:
            ox, oy = int(s * rng()), int(s * rng())
            entries.append((s, black_count(s, ox, oy)))
    lines, best = [], {}
    for s, c in entries:
        best[s] = min(best.get(s, c), c)
    for s in dict.fromkeys(s for s, _ in entries):
        m = best[s]
        lines.append("%d %s %s %s\n" % (s, fmt(m), fmt(math.log(1.0 / s)), fmt(math.log(m))))
    # The fit in single precision, as the program makes it.
    xs = [f32(math.log(1.0 / float(f32(s)))) for s in best]
    ys = [f32(math.log(float(f32(best[s])))) for s in best]
    n = len(xs)
    sx = sum(float(v) for v in xs)
    sy = sum(float(v) for v in ys)
    sxx = sum(float(f32(v * v)) for v in xs)
    sxy = sum(float(f32(a * b)) for a, b in zip(xs, ys))
    slope = float(f32((sxy - sy * sx / n) / (sxx - sx * sx / n)))
    return "".join(lines), slope


def fmt(v):
    return "%g" % v


# --- 1. Exact output on an all-black image (each grid: every box occupied) --
img = os.path.join(tmp, "black.tga")
image(img, 40, 30, lambda x, y: True)
table, slope = expected_run(40, 30, [20, 10, 5], 2,
                            lambda s, ox, oy: math.ceil((40 + ox) / s) * math.ceil((30 + oy) / s))
status, out, err = run(prog, "-q", "-i", img, "-b1", "20", "-bf", "2", "-b2", "5", "-n", "2", frozen=True)
equal("quiet-1.1 status", status, 0)
equal("quiet-1.2 output", out, table + "Estimated fractal dimension: %6.3f\n" % slope)
equal("quiet-1.3 no progress in quiet mode", err, "")

# --- 2. One black pixel: every count 1, slope 0; the region suffix ----------
dot = os.path.join(tmp, "dot.tga")
image(dot, 300, 200, lambda x, y: (x, y) == (123, 45))
status, out, err = run(prog, "-sl", "10", "-sr", "200", "-q", "-i", dot, "-n", "3", frozen=True)
want = "".join("%d 1 %g 0\n" % (s, math.log(1.0 / s)) for s in [38, 31, 25, 20, 16, 13, 10, 8, 6])
# The region as typed is printed, not as clamped; the output ends in an empty line.
equal("quiet-2.1 region run", out, want + "Estimated fractal dimension:  0.000 in region: 10 0 to 200 100000\n\n")

# --- 3. Region words -----------------------------------------------------------
wide = os.path.join(tmp, "wide.tga")
image(wide, 400, 300, lambda x, y: x == 7)
# -sl 5 7: the word 7 is looked at as a switch and ignored.
status, out, err = run(prog, "-q", "-i", wide, "-sl", "5", "7", "-b1", "1")
check("quiet-3.3 region words", out.endswith(" in region: 5 0 to 100000 100000\n\n"), out[-60:])
# A region value that is itself a switch both sets 0 and acts.
status, out, err = run(prog, "-i", wide, "-st", "-q")
check("quiet-3.4 -st -q", status == 0 and out.endswith(" in region: 0 0 to 100000 0\n\n"), out[-60:])

# --- 4. The blank image when no file is named --------------------------------
status, out, err = run(prog, "-q")
equal("quiet-4.1 blank image", (status, out, err),
      (0, "Estimated fractal dimension:  0.000\n", "Warning, image contains no black\n"))

# --- 5. Usage text ------------------------------------------------------------
USAGE = """Usage: {prog} [options]
General options
     -h      this text (help)
     -i s    load input TGA file
     -bw     invert image
     -q      quiet, command line mode
     -p      start processing immediately
Box options
     -n  n   number of offset samples, default: {n}
     -b1 n   start box size (default: {b1})
     -b2 n   end box size (default: {b2})
     -bf n   box reduction factor (default: {bf})
Region options
     -sl     left boundary (default: 0)
     -sr     right boundary (default: image width)
     -sb     bottom boundary (default: 0)
     -st     top boundary (default: image height)
"""
cases = [
    ("usage-1.1", ["-h"], dict(n=10, b1=-1, b2=6, bf="1.2")),
    ("usage-1.4", ["-b1", "1", "-b2", "0", "-bf", "1", "-n", "x", "-h"], dict(n=1, b1=-1, b2=1, bf="1.1")),
    ("usage-1.6", ["-bf", "1.0001", "-b1", "77", "-b2", "-4", "-h"], dict(n=10, b1=77, b2=1, bf="1.0001")),
    ("usage-1.7", ["-q", "-i", "nothing.tga", "-h"], dict(n=10, b1=-1, b2=6, bf="1.2")),
]
for cid, args, vals in cases:
    status, out, err = run(prog, *args)
    equal(cid, (status, out, err), (0, "", USAGE.format(prog=prog, **vals)))

# --- 6. The bundled fractals come out near their known dimensions -----------
known = [("carpet.tga", math.log(8) / math.log(3), 0.1),
         ("triangle.tga", math.log(3) / math.log(2), 0.05),
         ("dust.tga", math.log(4) / math.log(3), 0.05)]
for name, dim, tol in known:
    status, out, err = run(prog, "-q", "-i", os.path.join("examples", name))
    last = out.splitlines()[-1]
    est = float(last.split(":")[1])
    check("fractal " + name, status == 0 and abs(est - dim) < tol, f"{last} (theory {dim:.4f})")

# -bw inverts the working image: the inverted dust is nearly all black, close to a plane.
status, out, err = run(prog, "-q", "-bw", "-i", os.path.join("examples", "dust.tga"))
est = float(out.splitlines()[-1].split(":")[1])
check("quiet-6.1 -bw", est > 1.85, out.splitlines()[-1])

shutil.rmtree(tmp)
finish()
