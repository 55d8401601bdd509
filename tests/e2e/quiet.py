#!/usr/bin/python3
"""Whole quiet runs without a display: the exact output of runs with the clock held still (the
grid offsets are seeded from it) against tests/data, the usage text, runs with nothing to count.
With --update as second argument the files are rewritten: only after checking the output by hand."""
import os
import re
import shutil
import sys

sys.path.insert(0, os.path.dirname(__file__))
from harness import DATA, equal, finish, picture, run, workdir  # noqa: E402

prog = sys.argv[1]
update = sys.argv[2:] == ["--update"]
carpet, triangle, dust = (os.path.join("examples", n + ".tga") for n in ("carpet", "triangle", "dust"))

# Expected output file (tests/data/quiet-<name>.out), arguments.
GOLDEN = [
    ("carpet", ["-q", "-i", carpet, "-b2", "3", "-bf", "1.5"]),   # also the GUI's saved results
    ("triangle", ["-q", "-i", triangle]),
    ("dust", ["-q", "-i", dust]),
    ("dust-inverted", ["-q", "-bw", "-i", dust, "-n", "2"]),
    # The region as typed is printed, not as clamped, and the output ends in an empty line.
    ("region", ["-sl", "10", "-sr", "200", "-q", "-i", triangle, "-n", "3"]),
    # The word after a region value is looked at as a switch: 7 is ignored...
    ("region-words", ["-q", "-i", dust, "-sl", "5", "7", "-n", "1"]),
    # ... and a region value that is a switch both reads as 0 and acts.
    ("region-switch", ["-i", dust, "-st", "-q", "-n", "1"]),
    # Start size 1 is automatic, end size 0 counts down to 1, factor 1 is 1.1, 0 samples one pass.
    ("clamped", ["-q", "-i", triangle, "-sr", "120", "-st", "120", "-b1", "20", "-b2", "0", "-bf", "1", "-n", "0"]),
    # Region edges at the int limits: the grid corners must not overflow.
    ("region-beyond", ["-q", "-i", triangle, "-n", "2", "-sl", "2147483647", "-b1", "2147483647"]),
    ("region-wide", ["-q", "-i", triangle, "-n", "2", "-st", "2147483647", "-sb", "-2147483648", "-b1", "40"]),
]
for name, args in GOLDEN:
    status, out, err = run(prog, *args, frozen=True)
    path = os.path.join(DATA, "quiet-%s.out" % name)
    if update:
        with open(path, "w", encoding="latin-1") as f:
            f.write(out)
    with open(path, encoding="latin-1") as f:
        equal("quiet %s: status, output, no progress" % name, (status, out, err), (0, f.read(), ""))

# The usage text names the program as invoked; switches before -h show as the
# defaults (clamped as when they are used), switches after it are never read.
with open(os.path.join(DATA, "usage.txt")) as f:
    usage = f.read()
equal("usage-1.1 -h", run(prog, "-h", argv0="quorl"), (0, "", usage))
USAGE_DEFAULTS = [
    ("usage-1.2 kept", ["-n", "5", "-b1", "77", "-b2", "3", "-bf", "1.0001", "-h", "-n", "7"], ["5", "77", "3", "1.0001"]),
    ("usage-1.3 clamped", ["-n", "x", "-b1", "1", "-b2", "0", "-bf", "1", "-h"], ["1", "-1", "1", "1.1"]),
    ("usage-1.4 -q and -i do not matter", ["-q", "-i", "nothing.tga", "-b2", "-4", "-h"], ["10", "-1", "1", "1.2"]),
]
for cid, args, want in USAGE_DEFAULTS:
    status, out, err = run(prog, *args)
    equal(cid, (status, out, re.findall(r"default: (-?[\d.]+)", err)[:4]), (0, "", want))

# Nothing to count: the blank image when no file is named (also when -i is
# the last word) and a white file; the warning goes to standard error.
tmp = workdir()
white = picture(os.path.join(tmp, "white.tga"), (30, 20))
NO_BLACK = (0, "Estimated fractal dimension:  0.000\n", "Warning, image contains no black\n")
for cid, args in [("empty-1.1 no file", []), ("empty-1.2 trailing -i", ["-i"]), ("empty-1.3 white", ["-i", white])]:
    equal(cid, run(prog, "-q", *args), NO_BLACK)
shutil.rmtree(tmp)
finish()
