"""The plot of how a full read grows with its folder: an SVG with the time and the memory an item against the number of items,
which is on a logarithmic axis. Its colours follow the reader's choice of light or dark."""

import math
from collections import namedtuple
from xml.sax.saxutils import escape

from measurements import KINDS

WIDTH, HEIGHT = 860, 430
TOP, BOTTOM = 62, 300
PANEL_WIDTH = 330
LEFTS = (70, 500)
MARGIN = 18

STYLE = """
  .ground { fill: #ffffff; } .grid { stroke: #d8dee4; } .axis { stroke: #57606a; } .text { fill: #24292f; }
  .line { fill: none; stroke-width: 2; }
  .kind0 { stroke: #0969da; } .kind1 { stroke: #bc4c00; } .kind2 { stroke: #1a7f37; } .kind3 { stroke: #8250df; }
  .mark { fill: #ffffff; stroke-width: 2; } .pale { stroke-opacity: 0.45; }
  text { font: 13px sans-serif; } .title { font-weight: bold; }
  @media (prefers-color-scheme: dark) {
    .ground { fill: #0d1117; } .grid { stroke: #30363d; } .axis { stroke: #8b949e; } .text { fill: #e6edf3; }
    .kind0 { stroke: #58a6ff; } .kind1 { stroke: #f0883e; } .kind2 { stroke: #3fb950; } .kind3 { stroke: #bc8cff; }
    .mark { fill: #0d1117; }
  }
"""
# Kinds are told apart by their dashes too, not by their colour alone.
DASHES = ("", "8 4", "2 4", "10 4 2 4")

# One plot of the two: its title, where it begins, the points of each kind, and those of it that are drawn paler.
Panel = namedtuple("Panel", "title left lines pale", defaults=({},))


def element(name, content=None, **attributes):
    words = "".join(f' {key.replace("_", "-")}="{escape(str(value))}"' for key, value in attributes.items() if value != "")
    return f"<{name}{words}/>" if content is None else f"<{name}{words}>{escape(content)}</{name}>"


def text(x, y, words, anchor="middle", kind="text", **more):
    return element("text", words, x=f"{x:.1f}", y=f"{y:.1f}", text_anchor=anchor, **{"class": kind}, **more)


def steps_up_to(most):
    """Round numbers from 0 on, the last of which is not below the greatest value; some five of them."""
    if most <= 0:
        return [0, 1]
    size = 10 ** math.floor(math.log10(most / 4))
    step = next(factor * size for factor in (1, 2, 2.5, 5, 10) if factor * size * 5 >= most)
    return [number * step for number in range(math.ceil(most / step - 1e-9) + 1)]


class Scale:
    """Where a point stands in a panel."""

    def __init__(self, panel, sizes):
        points = [value for lines in (panel.lines, panel.pale) for line in lines.values() for _, value in line]
        self.left = panel.left
        self.steps = steps_up_to(max(points, default=0))
        self.least, self.most = math.log10(sizes[0]), math.log10(sizes[-1])

    def x(self, items):
        part = 0.5 if self.most == self.least else (math.log10(items) - self.least) / (self.most - self.least)
        return self.left + MARGIN + part * (PANEL_WIDTH - 2 * MARGIN)

    def y(self, value):
        return BOTTOM - (BOTTOM - TOP) * value / self.steps[-1]


def draw_axes(panel, scale, sizes):
    yield text(panel.left + PANEL_WIDTH / 2, TOP - 20, panel.title, kind="text title")
    for step in scale.steps:
        y = f"{scale.y(step):.1f}"
        yield element("line", x1=panel.left, x2=panel.left + PANEL_WIDTH, y1=y, y2=y, **{"class": "grid"})
        yield text(panel.left - 8, scale.y(step) + 4, f"{step:g}", anchor="end")
    for items in sizes:
        x = f"{scale.x(items):.1f}"
        yield element("line", x1=x, x2=x, y1=BOTTOM, y2=BOTTOM + 5, **{"class": "axis"})
        yield text(scale.x(items), BOTTOM + 20, f"{items:,}")
    yield element("line", x1=panel.left, x2=panel.left + PANEL_WIDTH, y1=BOTTOM, y2=BOTTOM, **{"class": "axis"})
    yield text(panel.left + PANEL_WIDTH / 2, BOTTOM + 40, "items in the folder (logarithmic)")


def draw_lines(lines, scale, how=""):
    for place, kind in enumerate(KINDS):
        points = [(scale.x(items), scale.y(value)) for items, value in lines.get(kind, [])]
        path = " ".join(f"{x:.1f},{y:.1f}" for x, y in points)
        if points:
            yield element("polyline", points=path, stroke_dasharray=DASHES[place], **{"class": f"line kind{place}{how}"})
        for x, y in points:
            yield element("circle", cx=f"{x:.1f}", cy=f"{y:.1f}", r=4, **{"class": f"mark kind{place}{how}"})


def draw_panel(panel, sizes):
    if not panel.lines:
        yield text(panel.left + PANEL_WIDTH / 2, TOP - 20, panel.title, kind="text title")
        yield text(panel.left + PANEL_WIDTH / 2, (TOP + BOTTOM) / 2, "not measured")
        return
    scale = Scale(panel, sizes)
    yield from draw_axes(panel, scale, sizes)
    yield from draw_lines(panel.pale, scale, " pale")
    yield from draw_lines(panel.lines, scale)


def draw_legend(kinds):
    for row, kind in enumerate(kinds):
        place = list(KINDS).index(kind)
        x, y = LEFTS[row % 2], BOTTOM + 75 + 25 * (row // 2)
        yield element("line", x1=x, x2=x + 36, y1=y, y2=y, stroke_dasharray=DASHES[place],
                      **{"class": f"line kind{place}"})
        yield element("circle", cx=x + 18, cy=y, r=4, **{"class": f"mark kind{place}"})
        yield text(x + 46, y + 4, KINDS[kind], anchor="start")


def plotted_kinds(found):
    """Those that were measured in several sizes, which alone show growth; if there are none, all."""
    return [kind for kind in KINDS if len(found.sizes(kind, "full")) > 1] or list(KINDS)


def lines_of(found, value_of):
    """The points of each kind that has any: pairs of a number of items and a value."""
    lines = {}
    for kind in plotted_kinds(found):
        points = [(items, value_of(kind, items)) for items in found.sizes(kind, "full")]
        points = [point for point in points if point[1] is not None]
        if points:
            lines[kind] = points
    return lines


def plot(found):
    """The text of the SVG file."""
    times = lines_of(found, lambda kind, items: milliseconds_or_none(found.median_per_item("full", kind, items)))
    first = lines_of(found, lambda kind, items: milliseconds_or_none(found.median_per_item("grown-first", kind, items)))
    title = "Time an item, in ms" + (" (paler: first read)" if first else "")
    memory = lines_of(found, lambda kind, items: kb_or_none(found.bytes_an_item(kind, items)))
    sizes = sorted({items for kind in KINDS for items in found.sizes(kind, "full")})
    shapes = [element("title", "A full read: time and memory an item, by the number of items"),
              element("style", STYLE), element("rect", width=WIDTH, height=HEIGHT, **{"class": "ground"}),
              *draw_panel(Panel(title, LEFTS[0], times, first), sizes),
              *draw_panel(Panel("Memory an item beyond the store's own, in KB", LEFTS[1], memory), sizes),
              *draw_legend(times)]
    head = f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {HEIGHT}" width="{WIDTH}" height="{HEIGHT}" role="img">'
    return "\n".join([head, *shapes, "</svg>"]) + "\n"


def milliseconds_or_none(seconds):
    return None if seconds is None else seconds * 1000


def kb_or_none(count):
    return None if count is None else count / 1024
