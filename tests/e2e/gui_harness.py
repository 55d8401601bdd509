"""Drives the interactive program under a private virtual X server.

Each test script makes one Session: it starts Xvfb (with GLX) on a display
number the server picks itself, runs the program against it, and stops both
on exit. Windows are found and driven with xdotool, screenshots are taken
with ImageMagick's import and read as PPM, so nothing beyond the Debian
packages named in scripts/setup.sh is needed.

A script calls skip() (exit 77) only when no X server can be started; every
other problem is a failure.
"""
import atexit
import ctypes
import ctypes.util
import os
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from tgafile import rgb_image  # noqa: E402

SCREEN_W, SCREEN_H = 1280, 1024
MAIN_MENU = ["Open new TGA file", "Invert image (i)", "Options (o)", "Processing",
             "Show graph (g)", "Save results (s)", "Quit (ESC)"]
PROCESS_MENU = ["Start (p)", "Stop (P)"]

# Panel layouts in form coordinates: (x, y, w, h).
OPTIONS_SIZE = (331, 211)
OPTIONS_FIELDS = {"samples": (170, 40, 50, 30), "start": (170, 80, 50, 30),
                  "end": (250, 80, 50, 30), "factor": (170, 120, 50, 30)}
OPTIONS_HIDE = (240, 160, 60, 30)
GRAPH_SIZE = (421, 461)
GRAPH_PLOT = (20, 30, 380, 370)
GRAPH_SLOPE = (130, 410, 110, 30)
GRAPH_HIDE = (340, 415, 60, 30)
FSEL_INPUT = (150, 300)     # the file name input of the XForms file selector
FSEL_CANCEL = (250, 216)


class TestFailure(Exception):
    pass


def _die_with_parent():
    """Run in the child before exec: if the test itself is killed, the server
    and the program it started are ended too."""
    try:
        ctypes.CDLL(None).prctl(1, signal.SIGTERM)  # PR_SET_PDEATHSIG
    except (OSError, AttributeError):
        pass


def skip(reason):
    print("SKIP: " + reason)
    sys.exit(77)


def check(cond, what):
    if not cond:
        raise TestFailure(what)
    print("ok   " + what)


def wait_until(pred, timeout, what, interval=0.02):
    """Polls pred until it returns a true value, which is returned."""
    end = time.monotonic() + timeout
    while True:
        v = pred()
        if v:
            return v
        if time.monotonic() > end:
            raise TestFailure("timed out after %.1f s waiting for %s" % (timeout, what))
        time.sleep(interval)


def center(rect):
    x, y, w, h = rect
    return x + w // 2, y + h // 2


# ---------------------------------------------------------------- images

write_tga = rgb_image  # pixel(x, y) -> (r, g, b), y up from the bottom row


def write_halves(path, width, height):
    """Black left half, white right half: boxes may only appear on the left."""
    white, black = (255, 255, 255), (0, 0, 0)
    row = [black if x < width // 2 else white for x in range(width)]
    write_tga(path, width, height, lambda x, y: row[x])


class Shot:
    """An RGB screenshot of the whole screen."""

    def __init__(self, data, width, height):
        self.data, self.width, self.height = data, width, height

    def px(self, x, y):
        i = 3 * (y * self.width + x)
        return tuple(self.data[i:i + 3])

    def count(self, rect, pred):
        x0, y0, w, h = rect
        n = 0
        for y in range(max(y0, 0), min(y0 + h, self.height)):
            for x in range(max(x0, 0), min(x0 + w, self.width)):
                if pred(self.px(x, y)):
                    n += 1
        return n

    def crop(self, rect):
        x0, y0, w, h = rect
        return b"".join(self.data[3 * (y * self.width + x0):3 * (y * self.width + x0 + w)]
                        for y in range(y0, y0 + h))



def is_green(p):
    return p[1] > p[0] + 60 and p[1] > p[2] + 60


def is_red(p):
    return p[0] > 180 and p[1] < 90 and p[2] < 90


def is_dark(p):
    return sum(p) < 3 * 96


def is_white(p):
    return min(p) > 240


# ---------------------------------------------------------------- session

class Session:
    def __init__(self, name):
        for tool in ("Xvfb", "xdotool", "import", "xdpyinfo", "xwininfo"):
            if not shutil.which(tool):
                skip("%s is not installed (scripts/setup.sh installs it)" % tool)
        self.name = name
        self.tmp = tempfile.mkdtemp(prefix="quorl-%s-" % name)
        self.programs = []
        self.xvfb = None
        atexit.register(self.close)
        signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))
        self._start_xvfb()
        self.env = dict(os.environ, DISPLAY=self.display)
        self.env.pop("XAUTHORITY", None)

    def _start_xvfb(self):
        rfd, wfd = os.pipe()
        log = open(os.path.join(self.tmp, "xvfb.log"), "w")
        try:
            self.xvfb = subprocess.Popen(
                ["Xvfb", "-displayfd", str(wfd), "-screen", "0", "%dx%dx24" % (SCREEN_W, SCREEN_H),
                 "+extension", "GLX", "-nolisten", "tcp", "-noreset"],
                pass_fds=(wfd,), stdout=log, stderr=log, preexec_fn=_die_with_parent)
        except OSError as e:
            skip("cannot run Xvfb: %s" % e)
        os.close(wfd)
        number = b""
        end = time.monotonic() + 15
        while time.monotonic() < end and not number.endswith(b"\n"):
            chunk = os.read(rfd, 16)
            if not chunk:
                break
            number += chunk
        os.close(rfd)
        if not number.strip().isdigit():
            skip("Xvfb did not start (see %s)" % log.name)
        self.display = ":" + number.decode().strip()
        info = subprocess.run(["xdpyinfo", "-display", self.display, "-queryExtensions"],
                              capture_output=True, text=True)
        if info.returncode != 0:
            skip("Xvfb on %s does not answer" % self.display)
        if not re.search(r"^\s+GLX\b", info.stdout, re.M):
            skip("Xvfb on %s has no GLX extension" % self.display)

    def close(self):
        for p in self.programs:
            p.kill()
        if self.xvfb and self.xvfb.poll() is None:
            self.xvfb.terminate()
            try:
                self.xvfb.wait(5)
            except subprocess.TimeoutExpired:
                self.xvfb.kill()
        self.xvfb = None
        shutil.rmtree(self.tmp, ignore_errors=True)

    def path(self, name):
        return os.path.join(self.tmp, name)

    def x(self, *args, check_rc=True):
        """Runs an X client (xdotool, xwininfo, ...) on this display."""
        r = subprocess.run(list(args), env=self.env, capture_output=True, text=True, timeout=30)
        if check_rc and r.returncode != 0:
            raise TestFailure("%s failed: %s" % (" ".join(args), r.stderr.strip()))
        return r.stdout

    def run(self, program, *args, prefix=()):
        p = Program(self, program, args, prefix)
        self.programs.append(p)
        return p

    # -- windows ---------------------------------------------------------

    def toplevels(self, name=None, size=None):
        """Mapped top-level windows, optionally only those of the given name
        and size: list of (id, name, x, y, w, h)."""
        out = self.x("xwininfo", "-root", "-children")
        wins = []
        for m in re.finditer(r"^\s+(0x[0-9a-f]+) (.*?): \(.*\)\s+(\d+)x(\d+)\+(-?\d+)\+(-?\d+)",
                             out, re.M):
            wid, title = m.group(1), m.group(2)
            title = title[1:-1] if title.startswith('"') else ""
            w = (wid, title, int(m.group(5)), int(m.group(6)), int(m.group(3)), int(m.group(4)))
            if name is not None and title != name:
                continue
            if size is not None and (w[4], w[5]) != tuple(size):
                continue
            if "IsViewable" in self.x("xwininfo", "-id", wid, check_rc=False):
                wins.append(w)
        return wins

    def find(self, name=None, size=None):
        wins = self.toplevels(name, size)
        return wins[0] if wins else None

    def wait_window(self, name=None, size=None, timeout=10):
        return wait_until(lambda: self.find(name, size), timeout,
                          "window %s" % (name if name is not None else size))

    def wait_gone(self, name=None, size=None, timeout=10):
        wait_until(lambda: not self.find(name, size), timeout,
                   "window %s to close" % (name if name is not None else size))

    def wm_close(self, wid):
        """Asks a window to close as a window manager's close button does
        (WM_DELETE_WINDOW); the test server has no window manager."""
        class ClientMessage(ctypes.Structure):
            _fields_ = [("type", ctypes.c_int), ("serial", ctypes.c_ulong),
                        ("send_event", ctypes.c_int), ("display", ctypes.c_void_p),
                        ("window", ctypes.c_ulong), ("message_type", ctypes.c_ulong),
                        ("format", ctypes.c_int), ("data", ctypes.c_long * 5)]

        class Event(ctypes.Union):
            _fields_ = [("xclient", ClientMessage), ("pad", ctypes.c_long * 24)]

        x11 = ctypes.CDLL(ctypes.util.find_library("X11"))
        x11.XOpenDisplay.restype = ctypes.c_void_p
        dpy = ctypes.c_void_p(x11.XOpenDisplay(self.display.encode()))
        if not dpy.value:
            raise TestFailure("cannot open %s" % self.display)
        ev = Event()
        ev.xclient.type = 33  # ClientMessage
        ev.xclient.window = int(wid, 16)
        ev.xclient.message_type = x11.XInternAtom(dpy, b"WM_PROTOCOLS", 0)
        ev.xclient.format = 32
        ev.xclient.data[0] = x11.XInternAtom(dpy, b"WM_DELETE_WINDOW", 0)
        x11.XSendEvent(dpy, ctypes.c_ulong(int(wid, 16)), 0, ctypes.c_long(0), ctypes.byref(ev))
        x11.XFlush(dpy)
        x11.XCloseDisplay(dpy)

    def screenshot(self):
        ppm = subprocess.run(["import", "-window", "root", "-depth", "8", "ppm:-"],
                             env=self.env, capture_output=True, timeout=30).stdout
        m = re.match(rb"P6\s+(\d+)\s+(\d+)\s+255\s", ppm)
        if not m:
            raise TestFailure("screenshot failed")
        w, h = int(m.group(1)), int(m.group(2))
        return Shot(ppm[m.end():], w, h)

    def shot_when(self, pred, what, timeout=5):
        """The first screenshot for which pred(shot) holds, reported as a
        check. A window shows its content a little after it is mapped, so
        checks on pixels poll."""
        def good():
            shot = self.screenshot()
            return shot if pred(shot) else None
        shot = wait_until(good, timeout, what, interval=0.05)
        check(True, what)
        return shot

    # -- input -----------------------------------------------------------

    def move(self, x, y):
        self.x("xdotool", "mousemove", str(x), str(y))

    def click(self, x, y, button=1):
        self.x("xdotool", "mousemove", str(x), str(y), "click", str(button))

    def key(self, *keys):
        self.x("xdotool", "key", *keys)

    def type(self, text):
        self.x("xdotool", "type", "--delay", "8", "--", text)

    def fill_input(self, form, rect, text):
        """Replaces the text of an XForms input and presses Return."""
        cx, cy = center(rect)
        self.click(form[2] + cx, form[3] + cy)
        self.key("End", *["BackSpace"] * 12)
        if text:
            self.type(text)
        self.key("Return")

    def choose_file(self, path):
        """Answers the XForms file selector with a typed path (None cancels)."""
        fsel = self.wait_window("FileSelector")
        if path is None:
            self.click(fsel[2] + FSEL_CANCEL[0], fsel[3] + FSEL_CANCEL[1])
        else:
            self.move(fsel[2] + FSEL_INPUT[0], fsel[3] + FSEL_INPUT[1])
            self.type(path)
            self.key("Return")
        self.wait_gone("FileSelector")


class Program:
    """The program under test, its standard error kept in a file."""

    def __init__(self, session, program, args, prefix):
        self.s = session
        self.errpath = session.path("stderr-%d.txt" % len(session.programs))
        with open(self.errpath, "w") as err:
            self.proc = subprocess.Popen(list(prefix) + [program] + list(args), env=session.env,
                                         stdout=subprocess.DEVNULL, stderr=err,
                                         stdin=subprocess.DEVNULL, preexec_fn=_die_with_parent)
        self.win = None

    def kill(self):
        if self.proc.poll() is None:
            self.proc.kill()
            self.proc.wait()

    def wait_exit(self, timeout=10):
        try:
            return self.proc.wait(timeout)
        except subprocess.TimeoutExpired:
            raise TestFailure("program did not exit within %d s" % timeout)

    def err(self):
        with open(self.errpath, errors="replace") as f:
            return f.read()


    def lines(self):
        return self.err().splitlines()

    def wait_line(self, pattern, after=0, timeout=20):
        """Index of the first standard-error line from index `after` on that
        matches the regular expression."""
        rx = re.compile(pattern)

        def found():
            if self.proc.poll() is not None and not any(
                    rx.search(l) for l in self.lines()[after:]):
                raise TestFailure("program ended (status %s) before printing /%s/:\n%s"
                                  % (self.proc.returncode, pattern, self.err()[-2000:]))
            for i, l in enumerate(self.lines()[after:]):
                if rx.search(l):
                    return i + after + 1
            return 0
        return wait_until(found, timeout, "/%s/ on standard error" % pattern) - 1

    def window(self, timeout=15):
        """The image window, once it is mapped, titled and at the display
        size that the program last reported."""
        def ready():
            w = self._main_window()
            sizes = re.findall(r"^   Display size:\s+(\d+) x (\d+)$", self.err(), re.M)
            if w and sizes and (w[4], w[5]) == tuple(map(int, sizes[-1])):
                return w
            return None
        self.win = wait_until(ready, timeout, "the image window")
        return self.win

    def _main_window(self):
        if self.proc.poll() is not None:
            raise TestFailure("program ended (status %s):\n%s"
                              % (self.proc.returncode, self.err()[-2000:]))
        out = self.s.x("xwininfo", "-root", "-children")
        for title in re.findall(r'^\s+0x[0-9a-f]+ "(Quorl : .*)": \(', out, re.M):
            wins = self.s.toplevels(title)
            if wins:
                return wins[0]
        return None


    def wait_title(self, title, timeout=10):
        wait_until(lambda: (self._main_window() or [None, None])[1] == title, timeout,
                   "title %r" % title)

    def key(self, *keys):
        """Keys for the image window: the pointer goes to its top-left corner,
        where no panel lies, so the window gets them."""
        w = self.window()
        self.s.move(w[2] + 6, w[3] + 6)
        self.s.key(*keys)

    def menu(self, *path):
        """Right-clicks the image window and clicks the entry at the end of
        path, e.g. menu("Processing", "Start (p)")."""
        w = self.window()
        self.s.click(w[2] + 20, w[3] + 20, 3)
        entries = MAIN_MENU
        opened = 1
        for depth, label in enumerate(path):
            menu = wait_until(lambda: self._menus(opened), 5, "menu %d" % opened)[-1]
            x = menu[2] + menu[4] // 2
            y = menu[3] + int((entries.index(label) + 0.5) * menu[5] / len(entries))
            self.s.move(x - 5, y)
            self.s.move(x, y)  # a second motion makes the menu repaint at its size
            if depth + 1 < len(path):
                entries = PROCESS_MENU
                opened += 1
            else:
                time.sleep(0.05)
                self.s.click(x, y)
        wait_until(lambda: not self._menus(1, exact=False), 5, "the menu to close")

    def _menus(self, n, exact=True):
        """The mapped menu windows, largest (the main menu) first."""
        m = self.s.toplevels("freeglut menu")
        m.sort(key=lambda w: -w[5])
        if exact:
            return m if len(m) == n else None
        return m


    def progress_count(self):
        return sum(1 for l in self.lines() if "Box size:" in l)

    def wait_still(self, quiet=0.4):
        """1 when no progress line has come for `quiet` seconds."""
        before = self.progress_count()
        time.sleep(quiet)
        return self.progress_count() == before


def main(test):
    """Runs test(session, program_path), reporting failures as exit 1."""
    if len(sys.argv) < 2:
        print("usage: %s <path of quorl>" % sys.argv[0])
        sys.exit(2)
    name = os.path.splitext(os.path.basename(sys.argv[0]))[0]
    session = Session(name)
    try:
        test(session, os.path.abspath(sys.argv[1]))
    except TestFailure as e:
        print("FAIL: %s" % e)
        for p in session.programs:
            print("---- standard error of %s (last lines)" % " ".join(p.proc.args))
            print("\n".join(p.lines()[-25:]))
        sys.exit(1)
    finally:
        session.close()
    print("PASS")
