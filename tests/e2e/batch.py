#!/usr/bin/python3
"""Batch runs: rows in list order that equal single quiet runs, bad images as
error rows, the same rows whatever the number of jobs, a killed batch that
keeps only complete rows, and the GNU parallel recipe of the README."""
import csv
import io
import json
import os
import shutil
import signal
import subprocess
import sys
import time

sys.path.insert(0, os.path.dirname(__file__))
from harness import check, equal, finish, picture, run, workdir  # noqa: E402

prog = os.path.abspath(sys.argv[1])
tmp = workdir()
examples = os.path.abspath("examples")
white = picture(os.path.join(tmp, "white.tga"), (40, 30))
broken = os.path.join(tmp, "broken.tga")
with open(os.path.join(examples, "dust.tga"), "rb") as f:
    open(broken, "wb").write(f.read()[:300])  # a header and the start of the pixels
names = [os.path.join(examples, n) for n in ("carpet.tga", "dust.tga", "triangle.tga")]
listed = [names[0], os.path.join(tmp, "missing.tga"), names[1], white, "", broken, names[2]]
lst = os.path.join(tmp, "list")
open(lst, "w").write("\n".join(listed) + "\n")


def rows(text):
    return list(csv.DictReader(io.StringIO(text)))


status, out, err = run(prog, "--batch", lst, "--seed", "7", "--jobs", "2", "-n", "3")
equal("batch-1.1", status, 1)
table = rows(out)
equal("batch-1.2", [r["file"] for r in table], [n for n in listed if n])
equal("batch-1.3", [r["status"] for r in table], ["ok", "error", "ok", "error", "error", "ok"])
equal("batch-1.4", table[3]["error"], "no black pixels in the analysed region")
equal("batch-1.5", (table[1]["error"], table[4]["error"]), ('Failed to open file "%s"' % listed[1], "Image read failed"))
for r in table:
    if r["status"] != "ok":
        continue
    s, single, _ = run(prog, "-q", "-i", r["file"], "--seed", "7", "-n", "3", "--json", "-")
    report = json.loads(single)
    equal("batch-2.1 " + r["file"], float(r["dimension"]), report["fit"]["dimension"])
    equal("batch-2.2 " + r["file"], (int(r["width"]), int(r["black_pixels"]), float(r["r2"])),
          (report["width"], report["black_pixels"], report["fit"]["r2"]))

_, one, _ = run(prog, "--batch", lst, "--seed", "7", "--jobs", "1", "-n", "3")
equal("batch-3.1 the same rows with one job", one, out)
jl = os.path.join(tmp, "rows.jsonl")
run(prog, "--batch", lst, "--seed", "7", "-n", "3", "--jsonl", jl)
objs = [json.loads(line) for line in open(jl)]
equal("batch-3.2", [o["status"] for o in objs], [r["status"] for r in table])

for args, want in [(("--batch", os.path.join(tmp, "nolist")), 2), (("--batch", lst, "--jobs", "0"), 2)]:
    equal("batch-4 " + " ".join(args), run(prog, *args)[0], want)

# Killed midway: every row that made it out is whole, and they are the first rows.
many = os.path.join(tmp, "many")
open(many, "w").write((names[0] + "\n") * 400)
out_csv = os.path.join(tmp, "killed.csv")
p = subprocess.Popen([prog, "--batch", many, "--jobs", "1", "--seed", "1", "--csv", out_csv])
deadline = time.time() + 30
while time.time() < deadline and (not os.path.exists(out_csv) or open(out_csv).read().count("\n") < 4):
    time.sleep(0.02)
p.send_signal(signal.SIGKILL)
p.wait()
text = open(out_csv, newline="").read()
done = rows(text)
check("batch-5.1", 3 <= len(done) < 400 and text.endswith("\r\n"), "%d rows" % len(done))
check("batch-5.2", all(r["status"] == "ok" and r["error"] == "" for r in done), done[-1:])

# Across hosts with GNU parallel (here: jobs on this machine); one header kept.
recipe = ("parallel --will-cite --pipe -N 2 --keep-order %s --batch - --seed 7 -n 3 < %s "
          "| awk 'NR == 1 || !/^file,status,/'" % (prog, lst))
merged = subprocess.run(["sh", "-c", recipe], capture_output=True, text=True).stdout
equal("batch-6.1 the GNU parallel recipe", rows(merged), table)

shutil.rmtree(tmp)
finish()
