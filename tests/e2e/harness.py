"""Running the built program in end-to-end tests, and reporting checks by id."""
import os
import subprocess
import sys
import tempfile

FROZEN = "2020-01-01 00:00:00"   # calendar time seen by the program under faketime
FROZEN_SECONDS = 1577836800      # the same instant, seconds since the epoch (UTC)

failures = []


def run(prog, *args, frozen=False, timeout=60):
    """Runs the program; returns (status, stdout, stderr) as text."""
    cmd = [prog, *args]
    env = dict(os.environ, TZ="UTC")
    if frozen:
        cmd = ["faketime", "-f", FROZEN] + cmd
    p = subprocess.run(cmd, capture_output=True, timeout=timeout, env=env)
    return p.returncode, p.stdout.decode("latin-1"), p.stderr.decode("latin-1")


def check(case_id, ok, detail=""):
    if not ok:
        failures.append(case_id)
        print(f"FAIL {case_id}: {detail}", file=sys.stderr)


def equal(case_id, got, want):
    check(case_id, got == want, f"\n  got:  {got!r}\n  want: {want!r}")


def workdir():
    return tempfile.mkdtemp(prefix="quorl-e2e-")


def finish():
    if failures:
        print(f"{len(failures)} failed: {' '.join(failures)}", file=sys.stderr)
        sys.exit(1)
    print("all passed")
    sys.exit(0)
