#!/usr/bin/python3
"""The manual page: lints clean with mandoc and groff, and documents every
switch that the program's usage text lists (and -d, which it leaves out)."""
import os
import re
import subprocess
import sys

sys.path.insert(0, os.path.dirname(__file__))
from harness import check, equal, finish, run  # noqa: E402

prog = sys.argv[1]
page = os.path.join("man", "quorl.1")
p = subprocess.run(["mandoc", "-T", "lint", "-W", "style", page], capture_output=True, text=True)
equal("man-1.1 mandoc", (p.returncode, p.stdout + p.stderr), (0, ""))
p = subprocess.run(["groff", "-ww", "-man", "-z", page], capture_output=True, text=True)
equal("man-1.2 groff", (p.returncode, p.stdout + p.stderr), (0, ""))

with open(page, encoding="utf-8") as f:
    text = f.read()
status, _, usage = run(prog, "-h")
switches = re.findall(r"^\s+(-\w+)", usage, re.M) + ["-d"]
check("man-2.1 usage parsed", len(switches) >= 14, usage)
for s in switches:
    check("man-2.2 " + s, re.search(r"^\.(?:B|BI|OP) \\" + s + r"\b", text, re.M), "not documented")
finish()
