#!/usr/bin/python3
"""The right-button menu, each entry once: Start shows live boxes over black
only, outlined in red; Open (cancelled, then a new file, on which the
running analysis restarts); Stop; Save; Invert; Options; Show graph; Quit."""
import os

from gui_harness import (GRAPH_SIZE, OPTIONS_SIZE, check, is_dark, is_green, is_red, is_white,
                         main, wait_until, write_halves, write_tga)


def test(s, quorl):
    # 800 x 600, black left half. The end size 8 keeps every box wider than 4
    # window pixels (so outlined), 100000 passes keep the analysis running.
    first = s.path("halves.tga")
    write_halves(first, 800, 600)
    second = s.path("second.tga")
    write_tga(second, 200, 100, lambda x, y: (0, 0, 0) if y < 50 else (255, 255, 255))
    p = s.run(quorl, "-d", "-i", first, "-b2", "8", "-n", "100000")
    w = p.window()

    p.menu("Processing", "Start (p)")
    start = p.wait_line(r"^Processing starting")
    p.wait_line(r"Box size:.*\[\s*20\]", start)
    left = (w[2] + 1, w[3] + 1, 398, 598)
    right = (w[2] + 400 + 121, w[3] + 1, 800 - 400 - 122, 598)  # beyond the widest box (120)
    shot = s.shot_when(lambda sh: sh.count(left, is_green) > 1000, "Start (p): boxes on screen")
    check(shot.count(left, is_red) > 100, "red outlines on boxes wider than 4 pixels")
    check(shot.count(right, is_green) == 0 and shot.count(right, is_red) == 0,
          "no boxes over the white half")
    check(any(l.startswith("Display update, nbox = ") and not l.endswith(" 0") for l in p.lines()),
          "-d: redraws are logged with the boxes drawn")

    # Open, cancelled: the same image, the analysis goes on unreset.
    title = p.window()[1]
    mark = len(p.lines())
    p.menu("Open new TGA file")
    s.choose_file(None)
    later = "\n".join(p.lines()[mark:])
    check(p.window()[1] == title and "Reading file" not in later
          and "Processing starting" not in later, "Open, cancelled: nothing changes")

    # Open a readable file: new image, title, window size; the analysis restarts on it.
    mark = len(p.lines())
    p.menu("Open new TGA file")
    s.choose_file(second)
    p.wait_title("Quorl : %s (1:1)" % second)
    again = p.wait_line(r"^Processing starting", mark)
    w = p.window()
    check((w[4], w[5]) == (200, 100), "Open: window takes the new image's 200 x 100")
    top = (w[2] + 10, w[3] + 10, 180, 30)
    s.shot_when(lambda sh: sh.count((w[2] + 10, w[3] + 60, 180, 30), is_dark) > 0 and
                sh.count(top, is_white) == 180 * 30, "Open: the new image is on screen")
    p.wait_line(r"Box size:.*\[\s*6\]", again)

    p.menu("Processing", "Stop (P)")
    check(wait_until(lambda: p.wait_still(0.4), 5, "the stop"), "Processing > Stop (P) stops it")

    saved = s.path("saved.txt")
    p.menu("Save results (s)")
    s.choose_file(saved)
    wait_until(lambda: os.path.exists(saved) and os.path.getsize(saved) > 0, 5, "the saved file")
    rows = [l.split() for l in open(saved)]
    check(len(rows) >= 5 and all(len(r) == 4 for r in rows), "Save results (s) writes the table")

    p.menu("Invert image (i)")
    s.shot_when(lambda sh: sh.count(top, is_dark) == 180 * 30,
                "Invert: the white top half turns black")

    p.menu("Options (o)")
    s.wait_window("", OPTIONS_SIZE)
    check(True, "Options (o) shows the options panel")
    p.menu("Show graph (g)")
    s.wait_window("", GRAPH_SIZE)
    check(True, "Show graph (g) shows the graph panel")

    p.menu("Quit (ESC)")
    check(p.wait_exit() == 0, "Quit (ESC) exits with status 0")


main(test)
