#!/usr/bin/python3
"""The right-button menu, entry by entry, and the letter keys that share its
commands: open (readable, unreadable, cancelled), invert, options, start and
stop, graph, save, quit."""
import os

from gui_harness import (GRAPH_SIZE, OPTIONS_SIZE, check, is_dark, is_white, main, wait_until,
                         write_halves, write_tga)


def test(s, quorl):
    first = s.path("halves.tga")
    write_halves(first, 320, 240)
    second = s.path("second.tga")
    write_tga(second, 200, 100, lambda x, y: (0, 0, 0) if y < 50 else (255, 255, 255))
    p = s.run(quorl, "-i", first, "-b2", "4", "-n", "100000")
    w = p.window()

    # Processing: Start and Stop.
    p.menu("Processing", "Start (p)")
    start = p.wait_line(r"^Processing starting")
    p.wait_line(r"Box size:.*\[\s*5\]", start)
    check(True, "Processing > Start (p) starts the analysis")
    p.menu("Processing", "Stop (P)")
    check(wait_until(lambda: p.wait_still(0.4), 5, "the stop"), "Processing > Stop (P) stops it")
    p.menu("Processing", "Start (p)")
    p.wait_line(r"^Processing starting", start + 1)
    check(True, "Start (p) again restarts the analysis")

    # Open: cancel changes nothing, even while processing.
    title = p.title()
    mark = len(p.lines())
    p.menu("Open new TGA file")
    s.choose_file(None)
    check(p.title() == title and "Reading file" not in "\n".join(p.lines()[mark:]),
          "Open, cancelled: same image and title")
    check("Processing starting" not in "\n".join(p.lines()[mark:]),
          "Open, cancelled: the analysis goes on unreset")

    # Open a readable file: new image, title, window size; the running
    # analysis restarts on it.
    mark = len(p.lines())
    p.menu("Open new TGA file")
    s.choose_file(second)
    p.wait_title("Quorl : %s (1:1)" % second)
    p.wait_line(r"^Processing starting", mark)
    w = p.window()
    check((w[4], w[5]) == (200, 100), "Open: window takes the new image's 200 x 100")
    s.expect_shot(lambda sh: sh.count((w[2] + 10, w[3] + 60, 180, 30), is_dark) > 0 and
                  sh.count((w[2] + 10, w[3] + 10, 180, 30), is_white) == 180 * 30,
                  "Open: the new image is on screen")
    check('Reading file "%s"' % second in p.lines()[mark:], "Open: the file is read")
    p.key("P")
    wait_until(lambda: p.wait_still(0.3), 5, "the stop")

    # Invert, by menu and by keys: black and white swap; twice restores.
    before = s.screenshot()
    inner = (w[2] + 2, w[3] + 2, w[4] - 4, w[5] - 4)
    p.menu("Invert image (i)")
    after = wait_until(lambda: _changed(s, before, inner), 5, "the inverted image")
    check(after.count((w[2] + 10, w[3] + 10, 180, 30), is_dark) == 180 * 30,
          "Invert: the white top half turns black")
    for key in ("i", "I"):
        prev = s.screenshot()
        p.key(key)
        wait_until(lambda: _changed(s, prev, inner), 5, "inversion by key %s" % key)
    s.expect_shot(lambda sh: sh.crop(inner) == after.crop(inner), "i then I: back to the inverted image")

    # Open a file that cannot be read: blank image, "No Image", reset.
    missing = s.path("missing.tga")
    mark = len(p.lines())
    p.menu("Open new TGA file")
    s.choose_file(missing)
    p.wait_title("Quorl : No Image (1:1)")
    w = p.window()
    check((w[4], w[5]) == (400, 300), "unreadable file: blank 400 x 300 window")
    err = "\n".join(p.lines()[mark:])
    check('Failed to open file "%s"' % missing in err and "Creating blank image" in err,
          "unreadable file: message and blank image")
    s.expect_shot(lambda sh: sh.count((w[2] + 2, w[3] + 2, 390, 290),
                                      lambda px: not is_white(px)) == 0,
                  "unreadable file: the window is white")

    # Options and graph panels.
    p.menu("Options (o)")
    s.wait_window("", OPTIONS_SIZE)
    check(True, "Options (o) shows the options panel")
    p.menu("Show graph (g)")
    s.wait_window("", GRAPH_SIZE)
    check(True, "Show graph (g) shows the graph panel")

    # Save: after an analysis with enough entries the selector writes the file.
    p.menu("Open new TGA file")
    s.choose_file(first)
    p.wait_title("Quorl : %s (1:1)" % first)
    p.key("p")
    p.wait_line(r"Box size:.*\[\s*6\]")
    p.key("P")
    wait_until(lambda: p.wait_still(0.3), 5, "the stop")
    saved = s.path("saved.txt")
    p.menu("Save results (s)")
    s.choose_file(saved)
    wait_until(lambda: os.path.exists(saved) and os.path.getsize(saved) > 0, 5, "the saved file")
    rows = [l.split() for l in open(saved)]
    check(len(rows) >= 5 and all(len(r) == 4 for r in rows), "Save results (s) writes the table")

    p.menu("Quit (ESC)")
    check(p.wait_exit() == 0, "Quit (ESC) exits with status 0")


def _changed(s, before, rect):
    shot = s.screenshot()
    return shot if shot.crop(rect) != before.crop(rect) else None


main(test)
