#!/usr/bin/python3
"""The options panel: each input clamps what is typed, shows the value
stored, and the analysis uses it; the command-line values show when the
panel opens. The graph panel: points, the red fitted line and the slope
once there are four entries. Both Hide buttons."""
import re
import time

from gui_harness import (GRAPH_HIDE, GRAPH_PLOT, GRAPH_SIZE, GRAPH_SLOPE, OPTIONS_FIELDS,
                         OPTIONS_HIDE, OPTIONS_SIZE, center, check, is_dark, is_red, main,
                         wait_until, write_halves)

# field, typed text, text the field must then show (typed into the field
# itself as the reference picture of that text).
CLAMPS = [
    ("samples", "-3", "1"), ("samples", "0", "1"), ("samples", "abc", "1"),
    ("samples", "4", "4"),
    ("start", "1", None),   # None: "Auto", as the field shows it at start-up
    ("start", "2", "2"), ("start", "1", None),
    ("end", "0", "2"), ("end", "-5", "2"), ("end", "7", "7"),
    ("factor", "1", "1.1"), ("factor", "0.5", "1.1"), ("factor", "abc", "1.1"),
    ("factor", "1.25", "1.25"),
]


def field_rect(form, name):
    x, y, w, h = OPTIONS_FIELDS[name]
    return (form[2] + x + 3, form[3] + y + 3, w - 6, h - 6)


def test(s, quorl):
    img = s.path("halves.tga")
    write_halves(img, 300, 200)   # automatic start size: 200 / 5 = 40

    # -- Values given on the command line show when the panel opens.
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

    # -- Clamping, as stored and as shown.
    p = s.run(quorl, "-i", img)
    p.window()
    p.key("O")
    form = s.wait_window("", OPTIONS_SIZE)
    auto = s.shot_when(lambda sh: _has_text(sh, field_rect(form, "start")),
                       "the options panel").crop(field_rect(form, "start"))
    refs = {}
    for name, typed, want in CLAMPS:
        if want is not None and (name, want) not in refs:
            s.fill_input(form, OPTIONS_FIELDS[name], want)
            refs[(name, want)] = wait_until(lambda: _settled(s, form, name), 5,
                                            "the %s field" % name).crop(field_rect(form, name))
    for name, typed, want in CLAMPS:
        s.fill_input(form, OPTIONS_FIELDS[name], typed)
        expect = auto if want is None else refs[(name, want)]
        wait_until(lambda: _settled(s, form, name, expect), 5,
                   "the %s field to show %s after %r" % (name, want or "Auto", typed))
        check(True, "%s: %r is shown as %s" % (name, typed, want or "Auto"))

    # The last entries left samples 4, start automatic, end 7, factor 1.25;
    # now set the lower bounds through the panel and run the analysis.
    for name, typed, want in (("samples", "0", "1"), ("end", "0", "2"), ("factor", "1", "1.1")):
        s.fill_input(form, OPTIONS_FIELDS[name], typed)
        wait_until(lambda: _settled(s, form, name, refs[(name, want)]), 5, "the %s field" % name)
    p.key("p")
    fin = p.wait_line(r"^Processing finished", timeout=60)
    grids = [l for l in p.lines()[:fin] if "Box size:" in l]
    sizes = [int(re.search(r"Box size:\s+(\d+)", l).group(1)) for l in grids]
    check(not any("Offset" in l for l in grids), "samples 0 stored as 1: one pass, no offsets")
    check(sizes[0] == 40, "start 1 stored as automatic: first size 200 / 5 = 40")
    check(sizes[-1] == 2, "end 0 stored as 2: the pass ends at size 2 (got %d)" % sizes[-1])
    check(all(b in (a - 1, int(a / 1.1 - 1e-4), int(a / 1.1 + 1e-4)) for a, b in zip(sizes, sizes[1:])),
          "factor 1 stored as 1.1: sizes %s" % sizes[:8])

    # -- Hide.
    hx, hy = center(OPTIONS_HIDE)
    s.click(form[2] + hx, form[3] + hy)
    s.wait_gone("", OPTIONS_SIZE)
    check(True, "the options panel's Hide button hides it")
    p.key("Escape")
    p.wait_exit()

    # -- Graph: empty below four entries, then points, line and slope.
    p = s.run(quorl, "-i", img, "-b2", "2", "-n", "100000")
    p.window()
    p.key("g")
    graph = s.wait_window("", GRAPH_SIZE)
    plot = (graph[2] + GRAPH_PLOT[0], graph[3] + GRAPH_PLOT[1], GRAPH_PLOT[2], GRAPH_PLOT[3])
    slope = (graph[2] + GRAPH_SLOPE[0] + 2, graph[3] + GRAPH_SLOPE[1] + 2, GRAPH_SLOPE[2] - 4,
             GRAPH_SLOPE[3] - 4)
    empty = s.shot_when(lambda sh: _has_text(sh, _form_rect(graph, GRAPH_HIDE)), "the graph panel")
    check(empty.count(plot, is_red) == 0, "fewer than 4 entries: no line")
    p.key("p")
    p.wait_line(r"Box size:.*\[\s*12\]")

    def drawn():  # the panel draws plot, line and slope field one after another
        sh = s.screenshot()
        return sh if sh.count(plot, is_red) > 100 and sh.crop(slope) != empty.crop(slope) else None
    shot = wait_until(drawn, 5, "the fitted line and the slope")
    s.save("graph", (graph[2], graph[3], graph[4], graph[5]))
    check(shot.count(plot, is_red) > 100, "the fitted line is drawn in red")
    check(shot.count(plot, is_dark) > empty.count(plot, is_dark) + 20, "points are plotted")
    check(shot.crop(slope) != empty.crop(slope), "the slope estimate is shown")

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
    # and the menu shows it again.
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

    # -- One box size only (start below end): the fit fails, no line.
    p = s.run(quorl, "-i", img, "-b1", "3", "-b2", "6", "-n", "100000")
    p.window()
    p.key("G")
    graph = s.wait_window("", GRAPH_SIZE)
    s.shot_when(lambda sh: _has_text(sh, _form_rect(graph, GRAPH_HIDE)), "the graph panel")
    p.key("p")
    p.wait_line(r"Box size:.*\[\s*8\]")
    time.sleep(0.3)
    check(s.screenshot().count(plot, is_red) == 0, "a single box size: no fitted line")
    p.key("Escape")
    p.wait_exit()


def _has_text(shot, rect):
    return shot.count(rect, is_dark) > 10


def _form_rect(form, rect):
    return (form[2] + rect[0], form[3] + rect[1], rect[2], rect[3])


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
