#!/usr/bin/python3
"""gui.py <quorl> startup|menus|panels: the interactive program under a private Xvfb,
driven with xdotool and seen through ImageMagick's import. Each visible behaviour is checked
once, for its wiring (the command layer's unit tests pin the values). Exit status 77
(skipped) only when no X server can be started; every other problem is a failure."""
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
from harness import DATA, FROZEN_SECONDS, picture  # noqa: E402

SCREEN_W, SCREEN_H = 1280, 1024
MAIN_MENU = ["Open new TGA file", "Invert image (i)", "Options (o)", "Processing",
             "Show graph (g)", "Save results (s)", "Quit (ESC)"]
PROCESS_MENU = ["Start (p)", "Stop (P)"]
# Panel layouts in form coordinates: (x, y, w, h).
OPTIONS_SIZE, END_INPUT, FACTOR_INPUT, OPTIONS_HIDE = (331, 211), (250, 80, 50, 30), (170, 120, 50, 30), (240, 160, 60, 30)
GRAPH_SIZE, GRAPH_PLOT, GRAPH_SLOPE, GRAPH_HIDE = (421, 461), (20, 30, 380, 370), (130, 410, 110, 30), (340, 415, 60, 30)
FSEL_INPUT = (150, 300)   # the name field of the XForms file selector
TMP, PROGRAMS = tempfile.mkdtemp(prefix="quorl-gui-"), []


def check(cond, what):   # a failure stops the scenario
    if not cond:
        raise AssertionError(what)
    print("ok   " + what)


def wait(pred, what, timeout=10):   # polls pred until it gives a true value, which is returned
    end = time.monotonic() + timeout
    while not (v := pred()):
        if time.monotonic() > end:
            raise AssertionError("timed out after %.0f s waiting for %s" % (timeout, what))
        time.sleep(0.05)
    return v


def inside(win, rect, margin=0):   # a rectangle in a window, in screen coordinates
    return (win[2] + rect[0] + margin, win[3] + rect[1] + margin, rect[2] - 2 * margin, rect[3] - 2 * margin)


def click_in(win, rect, button=1):   # at the centre of a rectangle in a window
    x("xdotool", "mousemove", str(win[2] + rect[0] + rect[2] // 2), str(win[3] + rect[1] + rect[3] // 2),
      "click", str(button))


def green(p): return p[1] > p[0] + 60 and p[1] > p[2] + 60
def red(p): return p[0] > 180 and p[1] < 90 and p[2] < 90
def dark(p): return sum(p) < 3 * 96
def white(p): return min(p) > 240


def die_with_parent():   # PR_SET_PDEATHSIG: nothing is left behind when the test is killed
    ctypes.CDLL(None).prctl(1, signal.SIGTERM)


def start_xvfb():
    """Starts the server on a display number it picks itself; returns it and the environment for clients."""
    rfd, wfd = os.pipe()
    xvfb = subprocess.Popen(["Xvfb", "-displayfd", str(wfd), "-screen", "0", "%dx%dx24" % (SCREEN_W, SCREEN_H),
                             "+extension", "GLX", "-nolisten", "tcp", "-noreset"], pass_fds=(wfd,),
                            stderr=subprocess.DEVNULL, preexec_fn=die_with_parent)
    os.close(wfd)
    with os.fdopen(rfd) as f:
        number = f.readline().strip()
    if not number.isdigit():
        print("SKIP: Xvfb did not start")
        sys.exit(77)
    env = {k: v for k, v in os.environ.items() if k != "XAUTHORITY"}
    return xvfb, dict(env, DISPLAY=":" + number, TZ="UTC")   # TZ: the frozen clock's instant


def x(*args):   # an X client (xdotool, xwininfo, ...) on the test display
    r = subprocess.run(args, env=ENV, capture_output=True, text=True, timeout=30)
    if r.returncode != 0 and args[1] != "search":   # a search that finds nothing fails
        raise AssertionError("%s failed: %s" % (" ".join(args), r.stderr.strip()))
    return r.stdout


def windows(name, size=None):
    """Mapped top-level windows whose name matches, of the given size: a list of (id, name, x, y, w, h)."""
    found = []
    for wid in x("xdotool", "search", "--onlyvisible", "--maxdepth", "1", "--name", name).split():
        r = subprocess.run(["xwininfo", "-id", wid], env=ENV, capture_output=True, text=True, timeout=30)
        if r.returncode != 0:   # closed between the search and the look: not there any more
            continue
        info = r.stdout
        g = tuple(int(re.search(k + r":\s+(-?\d+)", info).group(1))
                  for k in ("Absolute upper-left X", "Absolute upper-left Y", "Width", "Height"))
        if size in (None, g[2:]):
            found.append((wid, re.search(r'Window id: \S+ "?(.*?)"?$', info, re.M).group(1), *g))
    return found


def window(name, size=None, gone=False):
    """The first such window once there is one, or, with gone, once there is none."""
    found = lambda: windows(name, size)   # noqa: E731
    return wait(lambda: not found() if gone else (found() or [None])[0], "window /%s/ %s%s" % (name, size, " gone" * gone))


def wm_close(wid):
    """Asks a window to close as a window manager's close button would (WM_DELETE_WINDOW)."""
    class Event(ctypes.Structure):   # XClientMessageEvent in an XEvent; int fields padded to a long (64 bits)
        _fields_ = [(f, ctypes.c_long) for f in ("type", "serial", "send_event", "display", "window",
                                                 "message_type", "format")] + [("data", ctypes.c_long * 17)]
    x11 = ctypes.CDLL(ctypes.util.find_library("X11"))
    x11.XOpenDisplay.restype = ctypes.c_void_p
    dpy = ctypes.c_void_p(x11.XOpenDisplay(ENV["DISPLAY"].encode()))
    ev = Event(type=33, window=int(wid), format=32, message_type=x11.XInternAtom(dpy, b"WM_PROTOCOLS", 0))
    ev.data[0] = x11.XInternAtom(dpy, b"WM_DELETE_WINDOW", 0)
    x11.XSendEvent(dpy, ctypes.c_ulong(int(wid)), 0, ctypes.c_long(0), ctypes.byref(ev))
    x11.XCloseDisplay(dpy)


class Shot:   # an RGB screenshot of the whole screen; crop() gives a rectangle's pixels, row by row
    def __init__(self):
        ppm = subprocess.run(["import", "-window", "root", "-depth", "8", "ppm:-"], env=ENV, capture_output=True).stdout
        self.data = ppm[re.match(rb"P6\s+\d+\s+\d+\s+255\s", ppm).end():]

    def crop(self, rect):
        x0, y0, w, h = rect
        return [self.data[3 * i:3 * i + 3] for y in range(y0, y0 + h)
                for i in range(y * SCREEN_W + x0, y * SCREEN_W + x0 + w)]

    def count(self, rect, pred):
        return sum(map(pred, self.crop(rect)))


def shot_when(pred, what, timeout=5):
    """The first screenshot for which pred holds: a window shows its content a little after it is mapped."""
    shot = wait(lambda: (lambda sh: pred(sh) and sh)(Shot()), what, timeout)
    print("ok   " + what)
    return shot


def edit_input(form, rect, *keys):   # clicks into an input field, presses the keys, then Return
    click_in(form, rect)
    x("xdotool", "key", "End", *keys, "Return")


def choose_file(path):
    """Answers the XForms file selector with a typed path."""
    fsel = window("^FileSelector$")
    x("xdotool", "mousemove", str(fsel[2] + FSEL_INPUT[0]), str(fsel[3] + FSEL_INPUT[1]), "type", path)
    x("xdotool", "key", "Return")   # type takes every word after it as text
    window("^FileSelector$", gone=True)


class Program:   # the program under test, its standard error kept in a file
    def __init__(self, *args, prefix=()):
        self.errpath = os.path.join(TMP, "stderr-%d.txt" % len(PROGRAMS))
        with open(self.errpath, "w") as err:
            self.proc = subprocess.Popen([*prefix, quorl, *args], env=ENV, stdout=subprocess.DEVNULL, stderr=err,
                                         stdin=subprocess.DEVNULL, preexec_fn=die_with_parent)
        PROGRAMS.append(self)

    def lines(self):
        with open(self.errpath, errors="replace") as f:
            return f.read().splitlines()

    def wait_line(self, pattern, after=0, timeout=20):   # index of the first match from index `after` on
        found = lambda: [i + 1 for i, l in enumerate(self.lines()) if i >= after and re.search(pattern, l)]  # noqa
        return wait(found, "/%s/ on standard error" % pattern, timeout)[0] - 1

    def window(self):   # the image window, once it has the display size the program last reported
        def ready():
            if self.proc.poll() is not None:
                raise AssertionError("program ended with status %s" % self.proc.returncode)
            sizes = re.findall(r"^   Display size:\s+(\d+) x (\d+)$", "\n".join(self.lines()), re.M)
            return sizes and (windows("^Quorl : ", tuple(map(int, sizes[-1]))) or [None])[0]
        return wait(ready, "the image window", 15)

    def key(self, *keys):   # with the pointer in the image window's top-left corner, where no panel lies
        w = self.window()
        x("xdotool", "mousemove", str(w[2] + 6), str(w[3] + 6), "key", *keys)

    def menu(self, *path):   # right-clicks the image window and follows entries such as "Processing", "Start (p)"
        click_in(self.window(), (20, 20, 0, 0), 3)
        for depth, label in enumerate(path):
            entries = MAIN_MENU if depth == 0 else PROCESS_MENU
            menus = wait(lambda: (lambda m: len(m) == depth + 1 and m)(windows("^freeglut menu$")), "a menu")
            m = (min if depth else max)(menus, key=lambda m: m[5])   # a sub-menu is the shorter one
            mx, my = m[2] + m[4] // 2, m[3] + int((entries.index(label) + 0.5) * m[5] / len(entries))
            # A second motion makes the menu repaint at its size.
            x("xdotool", "mousemove", str(mx - 5), str(my), "mousemove", str(mx), str(my))
        time.sleep(0.05)
        x("xdotool", "click", "1")
        wait(lambda: not windows("^freeglut menu$"), "the menu to close")

    def boxes(self):   # the result numbers of the progress lines so far, one per grid counted
        return [int(n) for n in re.findall(r"Box size:\s*\d+ \[\s*(\d+)\]", "\n".join(self.lines()))]

    def still(self):   # no grid counted in half a second
        before = len(self.boxes())
        time.sleep(0.5)
        return len(self.boxes()) == before

    def exits(self):
        return self.proc.wait(10) == 0


def startup():
    # A file that cannot be read: the banner, its message and the blank white 400 x 300 image;
    # closing the window ends the program.
    missing = os.path.join(TMP, "missing.tga")
    p = Program("-i", missing)
    w = p.window()
    check(w[1] == "Quorl : No Image (1:1)" and w[4:] == (400, 300), "unreadable -i: 400 x 300, titled %r" % w[1])
    check(p.lines()[:5] == ["Quorl - Veskan", "Version 1.01", "Initialising GLUT", "Creating windows",
                            "Creating menus (Right mouse button)"] and
          {'Failed to open file "%s"' % missing, "Creating blank image"} <= set(p.lines()),
          "banner lines in order, then the file's message and the blank image")
    shot_when(lambda sh: sh.count(inside(w, (2, 2, 394, 294)), lambda px: not white(px)) == 0, "white on screen")
    wm_close(w[0])
    check(p.exits(), "closing the image window ends the program with status 0")

    # 2000 x 1000, black lower-left quadrant: upright at 1:4 on 1280 x 1024; -p starts the analysis.
    img = picture(os.path.join(TMP, "quadrants.tga"), (2000, 1000), ("black", "rectangle 0,500 999,999"))
    p = Program("-p", "-i", img, "-b2", "4", "-n", "100000")
    w = p.window()
    check(w[1] == "Quorl : %s (1:4)" % img and w[4:] == (500, 250), "title names the file at 1:4, 500 x 250")
    shot_when(lambda sh: sh.count(inside(w, (20, 150, 200, 80)), dark) == 200 * 80 and
              sh.count(inside(w, (20, 20, 200, 80)), white) == sh.count(inside(w, (280, 150, 200, 80)), white)
              == 200 * 80, "image upright on screen")
    x("xdotool", "windowsize", w[0], "600", "400")
    wait(lambda: windows("^Quorl : ", (500, 250)), "the window to snap back to 500 x 250")

    p.wait_line(r"Box size:.*\[\s*10\]")
    x("xdotool", "windowunmap", "--sync", w[0])   # what iconifying does
    time.sleep(0.2)   # the step in flight
    check(p.still(), "hidden window: the analysis pauses")
    paused_at = p.boxes()[-1]
    x("xdotool", "windowmap", "--sync", w[0])
    wait(lambda: p.boxes()[-1] > paused_at, "the analysis to resume")
    check(p.boxes() == list(range(1, len(p.boxes()) + 1)), "shown again: resumes where it stopped")
    p.key("Escape")
    check(p.exits(), "Escape quits with status 0")


def menus():
    # 800 x 600, black left half. End size 8 keeps every box wider than 4
    # window pixels (so outlined); 100000 passes keep the analysis running.
    first = picture(os.path.join(TMP, "halves.tga"), (800, 600), ("black", "rectangle 0,0 399,599"))
    second = picture(os.path.join(TMP, "second.tga"), (200, 100), ("black", "rectangle 0,50 199,99"))
    p = Program("-d", "-i", first, "-b2", "8", "-n", "100000")
    w = p.window()
    p.menu("Processing", "Start (p)")
    p.wait_line(r"Box size:.*\[\s*20\]", p.wait_line(r"^Processing starting"))
    left, right = inside(w, (1, 1, 398, 598)), inside(w, (521, 1, 278, 598))   # right: beyond the widest box
    shot = shot_when(lambda sh: sh.count(left, green) > 1000, "Start (p): boxes on screen")
    check(shot.count(left, red) > 100, "red outlines on boxes wider than 4 pixels")
    check(shot.count(right, green) + shot.count(right, red) == 0, "no boxes over the white half")
    check(any(re.match(r"Display update, nbox = [1-9]", l) for l in p.lines()), "-d logs redraws with boxes")

    mark = len(p.lines())
    p.menu("Open new TGA file")
    choose_file(second)
    p.wait_line(r"^Processing starting", mark)
    w = window(r"^Quorl : %s \(1:1\)$" % re.escape(second), (200, 100))
    shot_when(lambda sh: sh.count(inside(w, (10, 60, 180, 30)), dark) == 180 * 30 and
              sh.count(inside(w, (10, 10, 180, 30)), white) == 180 * 30, "Open: the new image, analysed")

    p.menu("Processing", "Stop (P)")
    wait(p.still, "Processing > Stop (P) to stop the analysis")
    saved = os.path.join(TMP, "saved.txt")
    p.menu("Save results (s)")
    choose_file(saved)
    wait(lambda: os.path.exists(saved) and os.path.getsize(saved), "the saved file")
    check(all(len(l.split()) == 4 for l in open(saved)), "Save results (s) writes the table")
    p.menu("Invert image (i)")
    shot_when(lambda sh: sh.count(inside(w, (10, 10, 180, 30)), dark) == 180 * 30, "Invert: white turns black")
    for entry, size in (("Options (o)", OPTIONS_SIZE), ("Show graph (g)", GRAPH_SIZE)):
        p.menu(entry)
        window("^$", size)
    p.menu("Quit (ESC)")
    check(p.exits(), "Options, Show graph show their panels; Quit exits with status 0")


def panels():
    # The options panel opens showing the settings (a blank added to the factor's field keeps -bf 1.5)
    # and the end size typed into it is used: the run under the seed of the quiet run's frozen clock
    # then saves (s, through the file selector) the quiet run's table.
    with open(os.path.join(DATA, "quiet-carpet.out")) as f:
        table = f.read().splitlines(True)[:-1]
    p = Program("-i", os.path.join("examples", "carpet.tga"), "-b2", "8", "-bf", "1.5", "--seed", str(FROZEN_SECONDS))
    p.key("O")
    form = window("^$", OPTIONS_SIZE)
    edit_input(form, FACTOR_INPUT, "space")   # first: every input read refreshes all four fields
    edit_input(form, END_INPUT, *["BackSpace"] * 12, "3")
    click_in(form, OPTIONS_HIDE)   # handled after the Return: once hidden, the input has been read
    window("^$", OPTIONS_SIZE, gone=True)

    p.key("g")
    graph = window("^$", GRAPH_SIZE)
    plot, slope = inside(graph, GRAPH_PLOT), inside(graph, GRAPH_SLOPE, 2)
    empty = shot_when(lambda sh: sh.count(inside(graph, GRAPH_HIDE), dark) > 10, "the graph panel")
    check(empty.count(plot, red) == 0, "no line below four results")
    p.key("p")
    p.wait_line(r"^Processing finished", timeout=60)
    shot = shot_when(lambda sh: sh.count(plot, red) > 100 and sh.crop(slope) != empty.crop(slope),
                     "the fitted line in red and the slope")
    check(shot.count(plot, dark) > empty.count(plot, dark) + 20, "points are plotted")
    saved = os.path.join(TMP, "carpet.txt")
    p.key("s")
    choose_file(saved)
    wait(lambda: os.path.exists(saved) and open(saved).read().endswith("\n"), "the results file")
    check(open(saved).read() == "".join(table), "the panel showed -bf 1.5 and took end size 3; s saves the quiet table")

    click_in(graph, GRAPH_HIDE)
    window("^$", GRAPH_SIZE, gone=True)
    for key, size in (("o", OPTIONS_SIZE), ("g", GRAPH_SIZE)):
        p.key(key)
        wm_close(window("^$", size)[0])
        window("^$", size, gone=True)
        p.key(key)
        window("^$", size)
    check(p.proc.poll() is None, "Hide hides the graph; closing a panel from its frame hides it; the program goes on")
    p.key("Q")
    check(p.exits(), "Q quits with status 0")


if __name__ == "__main__":   # importable for scripts that drive the program on their own display
    quorl = os.path.abspath(sys.argv[1])
    XVFB, ENV = start_xvfb()
    try:
        {"startup": startup, "menus": menus, "panels": panels}[sys.argv[2]]()
    except AssertionError as e:
        print("FAIL: %s" % e)
        for prog in PROGRAMS:
            print("---- standard error of %s (last lines)\n%s" % (" ".join(prog.proc.args), "\n".join(prog.lines()[-25:])))
        sys.exit(1)
    finally:
        for prog in PROGRAMS:
            prog.proc.kill()
        XVFB.kill()
        shutil.rmtree(TMP, ignore_errors=True)
    print("PASS")
