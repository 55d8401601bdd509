#!/usr/bin/python3
"""The installed tree as another program sees it: every file in its place, the
installed program runs, its manual page lints clean and documents every switch,
and after the tree is moved the example program builds against it with
find_package and with pkg-config, then reads, measures and writes an image.
Arguments: cmake, the build directory, whether it is sanitized."""
import glob
import os
import re
import shutil
import subprocess
import sys

sys.path.insert(0, os.path.dirname(__file__))
from harness import DATA, check, equal, finish, picture, run, workdir  # noqa: E402

cmake, build, sanitized = sys.argv[1], sys.argv[2], sys.argv[3]
if sanitized not in ("", "0"):   # its libraries would need the sanitizer runtime
    print("skipped: a sanitized build is not installed for other programs")
    sys.exit(77)

src = os.getcwd()
tmp = workdir()
env = {k: v for k, v in os.environ.items() if k not in ("DESTDIR", "PKG_CONFIG_PATH", "CMAKE_PREFIX_PATH")}


def sh(case_id, cmd, cwd=None, extra_env=None):
    p = subprocess.run(cmd, cwd=cwd, capture_output=True, text=True, env=dict(env, **(extra_env or {})))
    check(case_id, p.returncode == 0, f"{' '.join(cmd)}\n{p.stdout}{p.stderr}")
    return p


# install-1: the tree.
staged = os.path.join(tmp, "staged")
sh("install-1.1", [cmake, "--install", build, "--prefix", staged])
libdir = os.path.dirname((glob.glob(os.path.join(staged, "lib*", "**", "libquorl-util.a"), recursive=True)
                          or [os.path.join(staged, "lib", "libquorl-util.a")])[0])
files = [os.path.join(staged, r) for r in ("bin/quorl", "share/man/man1/quorl.1", "share/doc/quorl/examples/carpet.tga")]
files += [os.path.join(libdir, r) for r in ("libquorl-bitmap.a", "libquorl-util.a", "pkgconfig/quorl-bitmap.pc",
                                            "pkgconfig/quorl-util.pc", "cmake/Quorl/QuorlConfig.cmake")]
equal("install-1.2 files missing", [f for f in files if not os.path.isfile(f)], [])
check("install-1.4 no bare libutil/libbitmap", not glob.glob(os.path.join(libdir, "lib[bu][it]*")))
for lib in ("bitmap", "util"):
    want = sorted(os.path.basename(h) for h in glob.glob(os.path.join(src, lib, "*.h")))
    got = sorted(os.listdir(os.path.join(staged, "include", "quorl", lib)))
    equal("install-1.5 " + lib + " headers", got, want)

# install-2: the installed program gives the built one's output.
with open(os.path.join(DATA, "quiet-carpet.out")) as f:
    equal("install-2.1 quiet run", run(os.path.join(staged, "bin", "quorl"), "-q", "-i", "examples/carpet.tga",
                                       "-b2", "3", "-bf", "1.5", frozen=True), (0, f.read(), ""))

# install-3: the manual page lints clean with mandoc and groff, and documents every
# switch that the usage text lists (and -d, which it leaves out).
page = os.path.join(staged, "share", "man", "man1", "quorl.1")
for lint in (["mandoc", "-T", "lint", "-W", "style", page], ["groff", "-ww", "-man", "-z", page]):
    p = subprocess.run(lint, capture_output=True, text=True)
    equal("install-3.1 " + lint[0], (p.returncode, p.stdout + p.stderr), (0, ""))
with open(page, encoding="utf-8") as f:
    text = f.read()
switches = re.findall(r"^\s+(-\w+)", run(os.path.join(staged, "bin", "quorl"), "-h")[2], re.M) + ["-d"]
check("install-3.2 usage parsed", len(switches) == 14, switches)
equal("install-3.3 switches not documented",
      [s for s in switches if not re.search(r"^\.(?:B|BI|OP) \\" + s + r"\b", text, re.M)], [])

# Moved after installing: nothing may point back at the build or the first prefix.
prefix = os.path.join(tmp, "moved")
os.rename(staged, prefix)
libdir = libdir.replace(staged, prefix)
example = os.path.join(tmp, "imagestats")
shutil.copytree(os.path.join(src, "examples", "imagestats"), example)
# Bottom row black, red; top row green, blue.
four = picture(os.path.join(tmp, "four.tga"), (2, 2), ("#f00", "point 1,1"), ("#0f0", "point 0,0"),
               ("#00f", "point 1,0"), background="black")
want = ["image:      %s, 2 x 2, 24 bits per pixel" % four, "black:      1 pixels (25.0%)",
        "mean RGB:   0.250 0.250 0.250", "luma:       0.250", "saturation: 0.750", "lightness:  0.375"]


def check_example(case_id, program, base):
    p = sh(case_id + ".1 run", [program, four, base])
    equal(case_id + ".2 statistics", p.stdout.splitlines(), want + ["written:    %s.tiff, %s.eps" % (base, base)])
    for ext, magic in ((".tiff", b"MM\0*"), (".eps", b"%!PS-Adobe-3.0 EPSF-3.0\n")):
        with open(base + ext, "rb") as f:
            data = f.read()
        check(case_id + ".4 " + ext, data.startswith(magic) and len(data) > 2 * 2 * 3, repr(data[:30]))


# install-4: CMake's find_package.
cm = os.path.join(tmp, "cmake-build")
sh("install-4.0 configure", [cmake, "-S", example, "-B", cm, "-DCMAKE_PREFIX_PATH=" + prefix])
sh("install-4.0 build", [cmake, "--build", cm])
check_example("install-4", os.path.join(cm, "imagestats"), os.path.join(tmp, "cm"))

# install-5: pkg-config, through the example's Makefile.
pc = {"PKG_CONFIG_PATH": os.path.join(libdir, "pkgconfig")}
flags = sh("install-5.0 pkg-config", ["pkg-config", "--cflags", "--libs", "quorl-bitmap", "quorl-util"],
           extra_env=pc).stdout.split()
equal("install-5.1 paths outside the moved tree", [f for f in flags if f.startswith(("-I", "-L"))
      and not os.path.realpath(f[2:]).startswith(os.path.realpath(prefix))], [])
sh("install-5.0 make", ["make", "-s"], cwd=example, extra_env=pc)
check_example("install-5", os.path.join(example, "imagestats"), os.path.join(tmp, "pc"))

shutil.rmtree(tmp, ignore_errors=True)
finish()
