#!/usr/bin/python3
"""Saved results: with the clock held still (the seed is the calendar time),
an analysis started with -p and saved through the file selector gives exactly
the table the quiet mode prints for the same image, and the same estimate."""
import os
import shutil
import subprocess

from gui_harness import check, main, wait_until

CLOCK = "2024-01-01 00:00:00"   # faketime without '@': the clock stands still


def test(s, quorl):
    if not shutil.which("faketime"):
        raise SystemExit("FAIL: faketime is not installed (scripts/setup.sh installs it)")
    img, args = os.path.join("examples", "carpet.tga"), ["-b2", "3", "-bf", "1.5"]
    quiet = subprocess.run(["faketime", "-f", CLOCK, quorl, "-q", "-i", img] + args,
                           capture_output=True, text=True, timeout=120)
    check(quiet.returncode == 0, "quiet run")
    table, estimate = quiet.stdout.rsplit("\n", 2)[0] + "\n", quiet.stdout.splitlines()[-1]

    p = s.run(quorl, "-p", "-i", img, *args, prefix=["faketime", "-f", CLOCK])
    fin = p.wait_line(r"^Processing finished", timeout=60)
    line = p.lines()[p.wait_line(r"^Estimated fractal dimension", fin)]
    check(line == estimate, "interactive estimate %r equals the quiet one" % line)

    saved = s.path("carpet.txt")
    p.key("s")
    s.choose_file(saved)
    wait_until(lambda: os.path.exists(saved) and open(saved).read().endswith("\n"), 5,
               "the results file")
    with open(saved) as f:
        got = f.read()
    check(got == table, "saved file equals the quiet table (%d lines)" % got.count("\n"))
    p.key("Escape")
    check(p.wait_exit() == 0, "Escape quits")


main(test)
