#!/usr/bin/python3
"""Reporting a result: --seed against a frozen clock, --offsets all against a
brute force over every offset, --sizes, --crop, --fit-range, the JSON report
against scipy's fit and the plot through outside readers."""
import json
import os
import random
import subprocess
import sys

sys.path.insert(0, os.path.dirname(__file__))
from harness import FROZEN_SECONDS, check, equal, finish, mask, run, workdir  # noqa: E402

import numpy as np  # noqa: E402
from scipy import stats  # noqa: E402

prog = sys.argv[1]
tmp = workdir()
rng = random.Random(16)


def quorl_json(*args):
    status, out, err = run(prog, "-q", *args, "--json", "-")
    check("json status " + " ".join(args), status == 0, err)
    return json.loads(out)


def min_count(a, s):
    """Smallest occupied-box count of size s over every offset of the region a."""
    h, w = a.shape
    best = None
    for oy in range(s):
        rows = np.logical_or.reduceat(a, [0] + list(range(s - oy if oy else s, h, s)), axis=0)
        for ox in range(s):
            cols = [0] + list(range(s - ox if ox else s, w, s))
            c = int(np.logical_or.reduceat(rows, cols, axis=1).sum())
            best = c if best is None else min(best, c)
    return best


# --- 1. --seed N prints what a run under a clock frozen at N prints ----------
dots = os.path.join(tmp, "dots.pgm")
mask(dots, 90, 70, lambda x, y: (x * 7 + y * 13) % 11 == 0 or x == y)
for i, args in enumerate([[], ["-n", "3"], ["-sl", "10", "-sr", "80"], ["-b1", "20", "-bf", "2", "-b2", "3"],
                          ["-bw", "-n", "1"], ["-sb", "5", "-st", "60", "-n", "4"]]):
    frozen = run(prog, "-q", "-i", dots, *args, frozen=True)
    seeded = run(prog, "-q", "-i", dots, *args, "--seed", str(FROZEN_SECONDS))
    equal(f"seed-1.{i} {args}", seeded, frozen)

# --- 2. --offsets all: the minimum over every offset, by brute force ----------
for i in range(24):
    w, h = rng.randint(12, 40), rng.randint(12, 40)
    density = rng.choice([0.02, 0.1, 0.4])
    px = [[rng.random() < density for x in range(w)] for y in range(h)]
    name = os.path.join(tmp, f"r{i}.pgm")
    mask(name, w, h, lambda x, y: px[y][x])
    l, b = rng.randint(0, w // 3), rng.randint(0, h // 3)
    r, t = rng.randint(l + 4, w), rng.randint(b + 4, h)
    sizes = sorted(rng.sample(range(1, 45), 5), reverse=True)  # some beyond the region
    rep = quorl_json("-i", name, "--offsets", "all", "--sizes", ",".join(map(str, sizes)),
                     "-sl", str(l), "-sr", str(r), "-sb", str(b), "-st", str(t))
    a = np.array(px)[b:t, l:r]
    want = [(s, min_count(a, s)) for s in sizes if min_count(a, s) > 0]
    equal(f"all-2.{i} {w}x{h} region {l},{b}-{r},{t}", [(p["size"], p["count"]) for p in rep["sizes"]], want)
    equal(f"all-2.{i} black", rep["black_pixels"], int(a.sum()))

# --- 3. --sizes, --fit-range and the fit statistics against scipy -----------
carpet = "examples/carpet.tga"
plain = run(prog, "-q", "-i", carpet, "--seed", "3")
ranged = run(prog, "-q", "-i", carpet, "--seed", "3", "--fit-range", ":")
equal("fit-3.1 an open range changes nothing", ranged, plain)
for i, fit in enumerate(["8:100", "10:", ":46", "6:8", "1:2"]):
    status, out, _ = run(prog, "-q", "-i", carpet, "--seed", "3", "--fit-range", fit)
    rep = quorl_json("-i", carpet, "--seed", "3", "--fit-range", fit)
    equal(f"fit-3.2.{i} table unchanged", out.splitlines()[:-1], plain[1].splitlines()[:-1])
    lo, hi = [int(v) if v else None for v in fit.split(":")]
    inside = [p for p in rep["sizes"] if (lo is None or p["size"] >= lo) and (hi is None or p["size"] <= hi)]
    equal(f"fit-3.3.{i} in_fit", [p["size"] for p in rep["sizes"] if p["in_fit"]], [p["size"] for p in inside])
    equal(f"fit-3.4.{i} dimension is the estimate", "%6.3f" % rep["fit"]["dimension"], out.split()[-1].rjust(6))
    if len(inside) >= 3:
        x, y = [p["ln_inv_size"] for p in inside], [p["ln_count"] for p in inside]
        ls = stats.linregress(x, y)
        half = stats.t.ppf(0.975, len(x) - 2) * ls.stderr
        got = rep["fit"]
        equal(f"fit-3.5.{i} estimate over the range", "%6.3f" % ls.slope, out.split()[-1].rjust(6))
        for key, want in [("r2", ls.rvalue ** 2), ("stderr", ls.stderr), ("intercept", ls.intercept),
                          ("ci95", [ls.slope - half, ls.slope + half])]:
            check(f"fit-3.5.{i} {key}", np.allclose(got[key], want, rtol=1e-9, atol=1e-12), f"{got[key]} {want}")
    else:
        equal(f"fit-3.6.{i} too few sizes", (rep["fit"]["ci95"], out.split()[-1]),
              (None, "0.000" if inside else "-1.000"))
rep = quorl_json("-i", carpet, "--sizes", "64,6,8,64,32,16,12", "-n", "2", "--seed", "1")
equal("sizes-3.7 distinct, largest first", [p["size"] for p in rep["sizes"]], [64, 32, 16, 12, 8, 6])
status, _, err = run(prog, "-q", "-i", carpet, "--sizes", "8,0")
check("sizes-3.8 a size below 1 is refused", status == 2 and "--sizes" in err, err)

# --- 4. --crop: as if the black pixels' bounding box had been given ----------
sil = os.path.join(tmp, "sil.pgm")
mask(sil, 300, 200, lambda x, y: 40 <= x < 141 and 30 <= y < 91 and (x - 90) ** 2 + (y - 60) ** 2 < 900)
cropped = run(prog, "-q", "-i", sil, "--crop", "--seed", "9")
region = run(prog, "-q", "-i", sil, "-sl", "61", "-sr", "120", "-sb", "31", "-st", "90", "--seed", "9")
equal("crop-4.1 equals the region switches", cropped, region)

# --- 5. The report and plot read by outside readers --------------------------
status, out, _ = run(prog, "-q", "-i", carpet, "--json", "-", "--seed", "5")
p = subprocess.run([sys.executable, "-m", "json.tool"], input=out.encode(), capture_output=True)
check("json-5.1 standard output is the JSON alone", status == 0 and p.returncode == 0, p.stderr)
rep = json.loads(out)
equal("json-5.2 seed kept", rep["settings"]["seed"], 5)
status, out, _ = run(prog, "-q", "-i", carpet, "--json", os.path.join(tmp, "r.json"), "--seed", "5")
equal("json-5.3 a file leaves standard output alone", out, run(prog, "-q", "-i", carpet, "--seed", "5")[1])
for kind, reader in [("svg", ["rsvg-convert", "-o"]), ("png", ["convert", "-"])]:
    plot = os.path.join(tmp, "plot." + kind)
    status, _, err = run(prog, "-q", "-i", carpet, "--plot", plot)
    png = os.path.join(tmp, kind + "-read.png")
    r = subprocess.run(reader[:1] + ([reader[1], png, plot] if kind == "svg" else [plot, png]), capture_output=True)
    size = subprocess.run(["identify", "-format", "%w %h", png], capture_output=True, text=True).stdout
    check(f"plot-5.4 {kind} read", status == 0 and r.returncode == 0 and size.split()[0] != "0", err + str(r.stderr))
status, _, err = run(prog, "-q", "-i", carpet, "--plot", os.path.join(tmp, "no", "dir.png"))
check("plot-5.5 an unwritable plot is reported", status != 0 and "plot" in err, err)

finish()
