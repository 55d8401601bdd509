"""Running the built program in end-to-end tests, writing test images, and reporting checks by id."""
import os
import struct
import subprocess
import sys
import tempfile

FROZEN = "2020-01-01 00:00:00"   # under faketime the clock stands still here: a fixed seed
FROZEN_SECONDS = 1577836800      # the same instant in seconds, as --seed takes it
DATA = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "data")

failures = []


def run(prog, *args, frozen=False, timeout=60, argv0=None):
    """Runs the program without a display; returns (status, stdout, stderr) as text."""
    cmd = ["faketime", "-f", FROZEN] * frozen + [argv0 or prog, *args]
    env = {k: v for k, v in os.environ.items() if k != "DISPLAY"}
    env["TZ"] = "UTC"
    if argv0:  # the program's own name as given, through a directory on PATH
        env["PATH"] = os.path.dirname(os.path.abspath(prog)) + os.pathsep + env["PATH"]
    p = subprocess.run(cmd, capture_output=True, timeout=timeout, env=env)
    return p.returncode, p.stdout.decode("latin-1"), p.stderr.decode("latin-1")


def picture(path, size, *shapes, background="white"):
    """Writes a 24-bit TGA with ImageMagick: a background, then each shape, a (colour, primitive)
    pair such as ("black", "rectangle 0,0 9,4") in ImageMagick's coordinates (y down from the top)."""
    cmd = ["convert", "-size", "%dx%d" % size, "xc:" + background, "+antialias"]
    for colour, primitive in shapes:
        cmd += ["-fill", colour, "-draw", primitive]
    subprocess.run(cmd + ["-orient", "TopLeft", "-type", "TrueColor", "-compress", "None", path], check=True)
    return path


def mask(path, width, height, black):
    """Writes a binary PGM, black where black(x, y) holds (y counts up from the
    bottom row, as in the program), white elsewhere."""
    rows = (bytes(0 if black(x, y) else 255 for x in range(width)) for y in reversed(range(height)))
    with open(path, "wb") as f:
        f.write(b"P5 %d %d 255\n" % (width, height) + b"".join(rows))
    return path


def tga_header(imagetype=2, bits=24, width=4, height=3, maptype=0, maplen=0, mapbits=0):
    """The 18 header bytes of a TGA, for files whose bytes are the point of a test."""
    return struct.pack("<BBBHHBHHHHBB", 0, maptype, imagetype, 0, maplen, mapbits, 0, 0,
                       width, height, bits, 0)


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
