#!/usr/bin/python3
"""The options panel: the command-line values show when it opens; what is
typed is clamped, shown as stored, and used by the analysis. The graph panel:
points, the red fitted line and the slope once there are four entries. Both
Hide buttons, and closing a panel from its frame."""
import re
import time

from gui_harness import (GRAPH_HIDE, GRAPH_PLOT, GRAPH_SIZE, GRAPH_SLOPE, OPTIONS_FIELDS,
                         OPTIONS_HIDE, OPTIONS_SIZE, center, check, is_dark, is_red, main,
                         wait_until, write_halves)


def field_rect(form, name):
    x, y, w, h = OPTIONS_FIELDS[name]
    return (form[2] + x + 3, form[3] + y + 3, w - 6, h - 6)


def test(s, quorl):
    img = s.path("halves.tga")
    write_halves(img, 300, 200)   # automatic start size: 200 / 5 = 40

    # -- Values given on the command line show when the panel opens: typing
    # the same text gives the same picture.
    p = s.run(quorl, "-i", img, "-n", "7", "-b1", "33", "-b2", "3", "-bf", "1.5")
    p.window()
    p.key("o")
    form = s.wait_window("", OPTIONS_SIZE)
    shown = s.shot_when(lambda sh: all(_has_text(sh, field_rect(form, f))
                                       for f in ("start", "end", "factor")), "the options panel")
    for name, text in (("start", "33"), ("end", "3"), ("factor", "1.5")):
        s.fill_input(form, OPTIONS_FIELDS[name], "")     # empty, then the reference text
        s.fill_input(form, OPTIONS_FIELDS[name], text)
        what = "panel opens showing %s = %s from the command line" % (name, text)
        wait_until(lambda: _settled(s, form, name, shown.crop(field_rect(form, name))), 5, what)
        check(True, what)
    p.key("Escape")
    p.wait_exit()

    # -- Values below the bounds: shown as the bound, and the analysis uses it.
    p = s.run(quorl, "-i", img)
    p.window()
    p.key("O")
    form = s.wait_window("", OPTIONS_SIZE)
    s.shot_when(lambda sh: _has_text(sh, field_rect(form, "start")), "the options panel")
    for name, typed, want in (("samples", "0", "1"), ("end", "0", "2"), ("factor", "1", "1.1")):
        s.fill_input(form, OPTIONS_FIELDS[name], want)
        ref = wait_until(lambda: _settled(s, form, name), 5, "the %s field" % name)
        s.fill_input(form, OPTIONS_FIELDS[name], typed)
        wait_until(lambda: _settled(s, form, name, ref.crop(field_rect(form, name))), 5,
                   "the %s field to show %s after %r" % (name, want, typed))
        check(True, "%s: %r is shown as %s" % (name, typed, want))
    p.key("p")
    fin = p.wait_line(r"^Processing finished", timeout=60)
    grids = [l for l in p.lines()[:fin] if "Box size:" in l]
    sizes = [int(re.search(r"Box size:\s+(\d+)", l).group(1)) for l in grids]
    check(not any("Offset" in l for l in grids), "samples 0 stored as 1: one pass, no offsets")
    check(sizes[-1] == 2, "end 0 stored as 2: the pass ends at size 2 (got %d)" % sizes[-1])
    check(all(b in (a - 1, int(a / 1.1 - 1e-4), int(a / 1.1 + 1e-4)) for a, b in zip(sizes, sizes[1:])),
          "factor 1 stored as 1.1: sizes %s" % sizes[:8])
    hx, hy = center(OPTIONS_HIDE)
    s.click(form[2] + hx, form[3] + hy)
    s.wait_gone("", OPTIONS_SIZE)
    check(True, "the options panel's Hide button hides it")
    p.key("Escape")
    p.wait_exit()

    # -- Graph: empty below four entries (and nothing to save), then points,
    # line and slope.
    p = s.run(quorl, "-i", img, "-b2", "2", "-n", "100000")
    p.window()
    p.key("s")
    time.sleep(0.5)
    check(s.find("FileSelector") is None, "fewer than 4 entries: s opens no selector")
    p.key("g")
    graph = s.wait_window("", GRAPH_SIZE)
    plot = (graph[2] + GRAPH_PLOT[0], graph[3] + GRAPH_PLOT[1], GRAPH_PLOT[2], GRAPH_PLOT[3])
    slope = (graph[2] + GRAPH_SLOPE[0] + 2, graph[3] + GRAPH_SLOPE[1] + 2, GRAPH_SLOPE[2] - 4,
             GRAPH_SLOPE[3] - 4)
    hide = (graph[2] + GRAPH_HIDE[0], graph[3] + GRAPH_HIDE[1], GRAPH_HIDE[2], GRAPH_HIDE[3])
    empty = s.shot_when(lambda sh: _has_text(sh, hide), "the graph panel")
    check(empty.count(plot, is_red) == 0, "fewer than 4 entries: no line")
    p.key("p")
    p.wait_line(r"Box size:.*\[\s*12\]")
    # The panel draws plot, line and slope field one after another.
    shot = s.shot_when(lambda sh: sh.count(plot, is_red) > 100 and sh.crop(slope) != empty.crop(slope),
                       "the fitted line in red and the slope estimate")
    check(shot.count(plot, is_dark) > empty.count(plot, is_dark) + 20, "points are plotted")

    # With the options panel open too (moved aside), the graph's Hide hides
    # only the graph.
    p.key("o")
    form = s.wait_window("", OPTIONS_SIZE)
    s.x("xdotool", "windowmove", form[0], "0", "700")
    hx, hy = center(GRAPH_HIDE)
    s.click(graph[2] + hx, graph[3] + hy)
    s.wait_gone("", GRAPH_SIZE)
    check(s.find("", OPTIONS_SIZE) is not None, "the graph's Hide hides only the graph")

    # Closing a panel from its window frame hides it; the program goes on
    # and the key shows it again.
    for key, size in (("o", OPTIONS_SIZE), ("g", GRAPH_SIZE)):
        p.key(key)
        panel = s.wait_window("", size)
        s.wm_close(panel[0])
        s.wait_gone("", size)
        mark = p.progress_count()
        wait_until(lambda: p.progress_count() > mark, 5, "the analysis to go on")
        p.key(key)
        s.wait_window("", size)
        check(p.proc.poll() is None, "closing the %s panel's window hides it; the program goes on"
              % ("options" if key == "o" else "graph"))
    p.key("Escape")
    p.wait_exit()


def _has_text(shot, rect):
    return shot.count(rect, is_dark) > 10


def _settled(s, form, name, expect=None):
    """A screenshot once the field has lost the text cursor (its Return was
    handled) and shows the picture expect, or, when expect is None, the same
    picture twice in a row."""
    rect = field_rect(form, name)
    shot = s.screenshot()
    if shot.count(rect, lambda px: px == (0, 0, 255)):   # the cursor is pure blue
        return None
    if expect is not None:
        return shot if shot.crop(rect) == expect else None
    time.sleep(0.1)
    again = s.screenshot()
    return again if again.crop(rect) == shot.crop(rect) else None


main(test)
