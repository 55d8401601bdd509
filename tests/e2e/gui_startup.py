#!/usr/bin/python3
"""Interactive start-up: banner and progress lines, window size and title with
the screen scale, the image on screen, the blank image, and the quit keys."""
import os
import subprocess

from gui_harness import check, is_dark, is_white, main, write_tga, SCREEN_W, SCREEN_H

BANNER = ["Quorl - Veskan", "Version 1.01", "Initialising GLUT", "Creating windows",
          "Creating menus (Right mouse button)"]


def quadrants(path, width, height):
    """Black lower-left quadrant (y counts up from the bottom row), white
    elsewhere: shows whether the window keeps the image upright."""
    write_tga(path, width, height,
              lambda x, y: (0, 0, 0) if x < width // 2 and y < height // 2 else (255, 255, 255))


def test(s, quorl):
    # -- No arguments: the blank white 400 x 300 image, no "Creating blank image".
    p = s.run(quorl)
    w = p.window()
    check(w[1] == "Quorl : No Image (1:1)", "no arguments: title %r" % w[1])
    check((w[4], w[5]) == (400, 300), "no arguments: 400 x 300 window")
    lines = p.lines()
    check(lines[:5] == BANNER, "banner lines in order")
    check("Creating blank image" not in p.err(), "no 'Creating blank image' without -i")
    check("   Display size:     400 x 300" in lines, "display size line for the blank image")
    inner = (max(w[2], 0) + 2, max(w[3], 0) + 2, w[4] - 6, w[5] - 6)
    s.expect_shot(lambda sh: sh.count(inner, lambda px: not is_white(px)) == 0,
                  "blank image is white on screen")
    p.key("Escape")
    check(p.wait_exit() == 0, "Escape quits with status 0")

    # -- A small image is shown at 1:1, upright.
    img = s.path("quadrants.tga")
    quadrants(img, 240, 160)
    p = s.run(quorl, "-i", img)
    w = p.window()
    check(w[1] == "Quorl : %s (1:1)" % img, "title names the file at 1:1")
    check((w[4], w[5]) == (240, 160), "window takes the image size")
    lines = p.lines()
    for expected in ['Reading file "%s"' % img, "   Image dimensions: 240 x 160 x 24",
                     "Creating screen version",
                     "   Full screen size: %d x %d" % (SCREEN_W, SCREEN_H),
                     "   Display size:     240 x 160", "   Scale factor:     1"]:
        check(expected in lines, "start-up line %r" % expected)
    ox, oy = w[2], w[3]
    lower_left = (ox + 20, oy + 100, 80, 40)   # screen y grows downward
    upper_left = (ox + 20, oy + 20, 80, 40)
    lower_right = (ox + 140, oy + 100, 80, 40)
    s.expect_shot(lambda sh: sh.count(lower_left, is_dark) == 80 * 40 and
                  sh.count(upper_left, is_white) == 80 * 40 and
                  sh.count(lower_right, is_white) == 80 * 40,
                  "image upright on screen: lower-left quadrant black, the others white")
    s.save("startup-quadrants", (w[2], w[3], w[4], w[5]))
    p.key("q")
    check(p.wait_exit() == 0, "q quits with status 0")

    # -- A 2000 x 1000 image on a 1280 x 1024 screen is shown at 1:4.
    big = s.path("wide.tga")
    quadrants(big, 2000, 1000)
    p = s.run(quorl, "-i", big)
    w = p.window()
    check(w[1] == "Quorl : %s (1:4)" % big, "2000 x 1000 image: title ends in (1:4)")
    check((w[4], w[5]) == (500, 250), "2000 x 1000 image: 500 x 250 window")
    check("   Scale factor:     4" in p.lines(), "scale factor line 4")
    s.expect_shot(lambda sh: sh.mean((w[2] + 20, w[3] + 150, 200, 80)) < 40 and
                  sh.mean((w[2] + 280, w[3] + 20, 200, 80)) > 215,
                  "scaled image on screen: lower left dark, upper right light")
    p.key("Q")
    check(p.wait_exit() == 0, "Q quits with status 0")

    # -- A file that cannot be read gives the blank image and goes on.
    missing = s.path("missing.tga")
    p = s.run(quorl, "-i", missing)
    p.wait_title("Quorl : No Image (1:1)")
    err = p.err()
    check('Failed to open file "%s"' % missing in err and "Creating blank image" in err,
          "unreadable -i file: message and blank image")
    p.key("Escape")
    check(p.wait_exit() == 0, "Escape quits the blank-image window")

    # -- The quiet mode needs no display at all.
    env = dict(os.environ)
    env.pop("DISPLAY", None)
    r = subprocess.run([quorl, "-q", "-n", "1", "-i", img], env=env, capture_output=True,
                       text=True, timeout=60)
    check(r.returncode == 0 and "Estimated fractal dimension:" in r.stdout,
          "quiet mode runs without DISPLAY")
    check("Quorl - Veskan" not in r.stderr, "quiet mode prints no banner")


main(test)
