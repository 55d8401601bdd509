#!/usr/bin/python3
"""Window behaviour: the size snaps back after a resize; hiding the window
(what iconifying does to it) pauses the analysis and showing it resumes
where it stopped; keys that are not commands change nothing; closing the
window ends the program."""
import re
import time

from gui_harness import check, main, wait_until, write_halves


def test(s, quorl):
    img = s.path("halves.tga")
    write_halves(img, 300, 200)
    p = s.run(quorl, "-i", img, "-b2", "4", "-n", "100000")
    w = p.window()
    wid = w[0]

    # Resizing snaps back to the size of the screen copy.
    for size in ((500, 400), (120, 90)):
        s.x("xdotool", "windowsize", wid, str(size[0]), str(size[1]))
        wait_until(lambda: (lambda g: g and (g[4], g[5]) == (300, 200))(p._main_window()), 5,
                   "the window to return to 300 x 200 after %d x %d" % size)
        check(True, "resize to %d x %d snaps back to 300 x 200" % size)

    # Keys without a command, and W (recorded only), neither start nor stop.
    p.key("x", "w", "W", "F1", "space")
    time.sleep(0.3)
    check("Processing starting" not in p.err(), "keys without a command do nothing")

    p.key("p")
    p.wait_line(r"Box size:.*\[\s*10\]")
    s.x("xdotool", "windowunmap", "--sync", wid)
    time.sleep(0.2)  # let the step in flight finish
    check(p.wait_still(0.5), "hidden window: the analysis pauses")
    paused_at = _last_entry(p)
    s.x("xdotool", "windowmap", "--sync", wid)
    wait_until(lambda: _last_entry(p) > paused_at, 5, "the analysis to resume")
    after = [int(x) for x in re.findall(r"\[\s*(\d+)\]", p.err())]
    check(after == list(range(1, len(after) + 1)),
          "shown again: resumes where it stopped (entries %d..%d, none repeated)"
          % (paused_at, after[-1]))
    s.wm_close(wid)
    check(p.wait_exit() == 0, "closing the image window ends the program with status 0")


def _last_entry(p):
    entries = re.findall(r"\[\s*(\d+)\]", p.err())
    return int(entries[-1]) if entries else 0


main(test)
