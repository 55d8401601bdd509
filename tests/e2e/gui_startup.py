#!/usr/bin/python3
"""Interactive start-up and the image window: banner and progress lines, title
and size with the screen scale, the image upright on screen, the blank image,
the quit keys; a resize snaps back, keys without a command do nothing, hiding
the window (what iconifying does) pauses the analysis and showing it resumes
where it stopped, closing the window ends the program."""
import os
import re
import subprocess
import time

from gui_harness import check, is_dark, is_white, main, wait_until, write_tga, SCREEN_W, SCREEN_H

BANNER = ["Quorl - Veskan", "Version 1.01", "Initialising GLUT", "Creating windows",
          "Creating menus (Right mouse button)"]


def quadrants(path, width, height):
    """Black lower-left quadrant (y counts up from the bottom row), white
    elsewhere: shows whether the window keeps the image upright."""
    write_tga(path, width, height,
              lambda x, y: (0, 0, 0) if x < width // 2 and y < height // 2 else (255, 255, 255))


def entries(p):
    return [int(x) for x in re.findall(r"\[\s*(\d+)\]", p.err())]


def test(s, quorl):
    # -- No arguments: the blank white 400 x 300 image, no "Creating blank image".
    p = s.run(quorl)
    w = p.window()
    check(w[1] == "Quorl : No Image (1:1)" and (w[4], w[5]) == (400, 300),
          "no arguments: 400 x 300 window titled %r" % w[1])
    check(p.lines()[:5] == BANNER, "banner lines in order")
    check("Creating blank image" not in p.err(), "no 'Creating blank image' without -i")
    inner = (max(w[2], 0) + 2, max(w[3], 0) + 2, w[4] - 6, w[5] - 6)
    s.shot_when(lambda sh: sh.count(inner, lambda px: not is_white(px)) == 0,
                "blank image is white on screen")
    p.key("Escape")
    check(p.wait_exit() == 0, "Escape quits with status 0")

    # -- A 2000 x 1000 image on a 1280 x 1024 screen is shown at 1:4.
    big = s.path("wide.tga")
    quadrants(big, 2000, 1000)
    p = s.run(quorl, "-i", big)
    w = p.window()
    check(w[1] == "Quorl : %s (1:4)" % big and (w[4], w[5]) == (500, 250),
          "2000 x 1000 image: 500 x 250 window, title ends in (1:4)")
    p.key("Q")
    check(p.wait_exit() == 0, "Q quits with status 0")

    # -- A small image at 1:1, upright; the analysis left running for the
    # window checks below.
    img = s.path("quadrants.tga")
    quadrants(img, 240, 160)
    p = s.run(quorl, "-i", img, "-b2", "4", "-n", "100000")
    w = p.window()
    check(w[1] == "Quorl : %s (1:1)" % img and (w[4], w[5]) == (240, 160),
          "title names the file at 1:1, window takes the image size")
    for expected in ['Reading file "%s"' % img, "   Image dimensions: 240 x 160 x 24",
                     "Creating screen version",
                     "   Full screen size: %d x %d" % (SCREEN_W, SCREEN_H),
                     "   Display size:     240 x 160", "   Scale factor:     1"]:
        check(expected in p.lines(), "start-up line %r" % expected)
    ox, oy = w[2], w[3]
    s.shot_when(lambda sh: sh.count((ox + 20, oy + 100, 80, 40), is_dark) == 80 * 40 and
                sh.count((ox + 20, oy + 20, 80, 40), is_white) == 80 * 40 and
                sh.count((ox + 140, oy + 100, 80, 40), is_white) == 80 * 40,
                "image upright on screen: lower-left quadrant black, the others white")

    s.x("xdotool", "windowsize", w[0], "500", "400")
    wait_until(lambda: (lambda g: g and (g[4], g[5]) == (240, 160))(p._main_window()), 5,
               "the window to return to 240 x 160")
    check(True, "a resize snaps back to the size of the screen copy")

    # Keys without a command, and W (recorded only), neither start nor stop.
    p.key("x", "w", "W", "F1", "space")
    time.sleep(0.3)
    check("Processing starting" not in p.err(), "keys without a command do nothing")

    p.key("p")
    p.wait_line(r"Box size:.*\[\s*10\]")
    s.x("xdotool", "windowunmap", "--sync", w[0])
    time.sleep(0.2)  # let the step in flight finish
    check(p.wait_still(0.5), "hidden window: the analysis pauses")
    paused_at = entries(p)[-1]
    s.x("xdotool", "windowmap", "--sync", w[0])
    wait_until(lambda: entries(p)[-1] > paused_at, 5, "the analysis to resume")
    after = entries(p)
    check(after == list(range(1, len(after) + 1)),
          "shown again: resumes where it stopped (entries %d..%d, none repeated)"
          % (paused_at, after[-1]))
    p.key("q")
    check(p.wait_exit() == 0, "q quits with status 0")

    # -- A file that cannot be read gives the blank image and goes on.
    missing = s.path("missing.tga")
    p = s.run(quorl, "-i", missing)
    p.wait_title("Quorl : No Image (1:1)")
    check('Failed to open file "%s"' % missing in p.err() and "Creating blank image" in p.err(),
          "unreadable -i file: message and blank image")
    s.wm_close(p.window()[0])
    check(p.wait_exit() == 0, "closing the image window ends the program with status 0")

    # -- The quiet mode needs no display at all.
    env = dict(os.environ)
    env.pop("DISPLAY", None)
    r = subprocess.run([quorl, "-q", "-n", "1", "-i", img], env=env, capture_output=True,
                       text=True, timeout=60)
    check(r.returncode == 0 and "Estimated fractal dimension:" in r.stdout
          and "Quorl - Veskan" not in r.stderr, "quiet mode runs without DISPLAY, no banner")


main(test)
