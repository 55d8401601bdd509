#!/usr/bin/python3
"""Processing in the window: live boxes over black only, outlined in red;
P stops, p restarts from the first size; redraws at most every 0.1 s while
processing and one "Display update" line per frame; the end of an analysis."""
import re
import time

from gui_harness import check, is_green, is_red, main, wait_until, write_halves

BOX = re.compile(r"Box size:\s+(\d+) \[\s*(\d+)\]")


def test(s, quorl):
    # 800 x 600, black left half. The end size 8 keeps every box wider than 4
    # window pixels (so outlined), 1000 passes keep the analysis running.
    img = s.path("halves.tga")
    write_halves(img, 800, 600)
    p = s.run(quorl, "-d", "-i", img, "-b2", "8", "-n", "1000")
    w = p.window()
    check((w[4], w[5]) == (800, 600), "800 x 600 image at 1:1")

    # Not processing: the window is redrawn continuously, one line per frame.
    n0 = p.err().count("Display update, nbox = 0")
    time.sleep(0.3)
    check(p.err().count("Display update, nbox = 0") > n0 + 3, "idle window is redrawn continuously")

    p.key("p")
    start = p.wait_line(r"^Processing starting")
    t0 = time.monotonic()
    p.wait_line(r"Box size:.*\[\s*20\]", start)
    shot = wait_until(lambda: _with_boxes(s, w), 5, "a frame with boxes")
    s.save("processing-halves", (w[2], w[3], w[4], w[5]))
    left = (w[2] + 1, w[3] + 1, 398, 598)
    right = (w[2] + 400 + 121, w[3] + 1, 800 - 400 - 122, 598)  # beyond the widest box (120)
    check(shot.count(left, is_green) > 1000, "green boxes over the black half")
    check(shot.count(left, is_red) > 100, "red outlines on boxes wider than 4 pixels")
    check(shot.count(right, is_green) == 0 and shot.count(right, is_red) == 0,
          "no boxes over the white half")

    # Throttled redraws: frames while processing come at most every 0.1 s.
    time.sleep(1.0)
    upto = len(p.lines())
    elapsed = time.monotonic() - t0
    p.key("P")
    check(wait_until(lambda: p.wait_still(0.4), 5, "processing to stop"), "P stops the analysis")
    frames = [l for l in p.lines()[start:upto] if l.startswith("Display update")]
    check(len(frames) <= elapsed / 0.1 + 3,
          "%d frames in %.2f s of processing: at most one per 0.1 s" % (len(frames), elapsed))
    check(any(not l.endswith("nbox = 0") for l in frames), "frames report the boxes drawn")
    sizes = [int(m.group(1)) for m in map(BOX.search, p.lines()[start:]) if m]
    check(len(sizes) > 20, "%d grids counted before the stop" % len(sizes))

    # p starts again from the first size, not where it stopped.
    mark = len(p.lines())
    p.key("p")
    again = p.wait_line(r"^Processing starting", mark)
    first = p.wait_line(r"Box size:", again)
    m = BOX.search(p.lines()[first])
    check(int(m.group(1)) == sizes[0] and int(m.group(2)) == 1,
          "p restarts at box size %d, entry 1" % sizes[0])
    p.key("P")
    wait_until(lambda: p.wait_still(0.3), 5, "processing to stop")
    p.key("Escape")
    check(p.wait_exit() == 0, "Escape quits while stopped")

    # A short analysis runs to its end by itself (-p starts it at once).
    p = s.run(quorl, "-p", "-i", img, "-n", "2")
    fin = p.wait_line(r"^Processing finished", timeout=60)
    nxt = p.lines()[fin + 1] if fin + 1 < len(p.lines()) else p.lines()[p.wait_line("Estim", fin)]
    check(re.match(r"^Estimated fractal dimension: [ \d.-]{6}$", nxt) is not None,
          "finish: %r follows 'Processing finished'" % nxt)
    p.key("q")
    check(p.wait_exit() == 0, "q quits after the analysis")


def _with_boxes(s, w):
    shot = s.screenshot()
    return shot if shot.count((w[2] + 1, w[3] + 1, 398, 598), is_green) > 1000 else None


main(test)
