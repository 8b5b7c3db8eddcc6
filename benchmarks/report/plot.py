# SPDX-License-Identifier: Apache-2.0
"""Draws the cost of peers against a growing number, on logarithmic axes, as SVG.

The colours are of middling lightness, so that they can be told apart on white and on black alike;
text and paper follow the reader's scheme.
"""

import math
from typing import NamedTuple
from xml.sax.saxutils import escape

WIDTH, HEIGHT = 860, 540
LEFT, RIGHT, TOP, BOTTOM = 70, 600, 48, 456
LEGEND_X, LABEL_X, LABEL_STEP = 618, 640, 17

STYLE = """
  .paper { fill: #ffffff } .ink { fill: #24292f } .faint { fill: #57606a }
  .grid { stroke: #d0d7de; stroke-width: 1 } .axis { stroke: #57606a; stroke-width: 1 }
  @media (prefers-color-scheme: dark) {
    .paper { fill: #0d1117 } .ink { fill: #e6edf3 } .faint { fill: #9aa4af }
    .grid { stroke: #30363d } .axis { stroke: #9aa4af }
  }
  text { font: 13px system-ui, "DejaVu Sans", sans-serif }
  .title { font-size: 16px; font-weight: 600 }
""".strip("\n")


class Line(NamedTuple):
    label: str
    points: list     # (x, y); both above 0, but for an x of 0, which stands where 1 would
    colour: str
    dash: str = ""   # as SVG has it
    marker: int = 0
    width: float = 1.8


class Axis:
    """Maps the logarithm of values to a length of the drawing."""

    def __init__(self, low, high, start, end):
        self.low, self.high = math.log10(low), math.log10(high)
        self.start, self.end = start, end

    def __call__(self, value):
        part = (math.log10(value) - self.low) / (self.high - self.low)
        return self.start + part * (self.end - self.start)


def marker(kind, x, y, colour):
    """One of six shapes around a point."""
    shapes = [
        f'<circle cx="{x:.1f}" cy="{y:.1f}" r="4"',
        f'<rect x="{x - 3.5:.1f}" y="{y - 3.5:.1f}" width="7" height="7"',
        f'<path d="M{x:.1f} {y - 5:.1f}l5 9h-10z"',
        f'<path d="M{x:.1f} {y - 5:.1f}l5 5l-5 5l-5-5z"',
        f'<path d="M{x:.1f} {y + 5:.1f}l5-9h-10z"',
        f'<path d="M{x - 4:.1f} {y - 4:.1f}l8 8m0-8l-8 8" stroke="{colour}" stroke-width="2"',
    ]
    return f'{shapes[kind % len(shapes)]} fill="{colour}"/>'


def quantity(value, unit):
    """A tick of the vertical axis: 100 ns, 10 µs."""
    steps = [(1e6, "ms"), (1e3, "µs"), (1, "ns")] if unit == "ns" else \
            [(1024 ** 2, "MiB"), (1000, "kB"), (1, "B")]
    scale, name = next((step for step in steps if value >= step[0]), (1, steps[-1][1]))
    return f"{value / scale:g} {name}"


def spread_out(wanted, step, low, high):
    """Places as near as possible to the wanted ones, in their order, at least a step apart."""
    order = sorted(range(len(wanted)), key=lambda i: wanted[i])
    places = dict(zip(order, (wanted[i] for i in order)))
    for _ in range(200):
        for first, second in zip(order, order[1:]):
            overlap = step - (places[second] - places[first])
            if overlap > 0:
                places[first] -= overlap / 2
                places[second] += overlap / 2
        places = {i: min(max(place, low), high) for i, place in places.items()}
    return [places[i] for i in range(len(wanted))]


def grid(x_axis, y_axis, ticks, unit):
    parts = []
    for power in range(round(y_axis.low), round(y_axis.high) + 1):
        y = y_axis(10 ** power)
        parts.append(f'<line class="grid" x1="{LEFT}" x2="{RIGHT}" y1="{y:.1f}" y2="{y:.1f}"/>')
        parts.append(f'<text class="faint" x="{LEFT - 8}" y="{y + 4:.1f}" text-anchor="end">'
                     f'{quantity(10 ** power, unit)}</text>')
    for tick in ticks:
        x = x_axis(max(tick, 1))
        parts.append(f'<line class="grid" x1="{x:.1f}" x2="{x:.1f}" y1="{TOP}" y2="{BOTTOM}"/>')
        parts.append(f'<text class="faint" x="{x:.1f}" y="{BOTTOM + 20}" text-anchor="middle">'
                     f'{tick:,}</text>')
    parts.append(f'<path class="axis" fill="none" d="M{LEFT} {TOP}V{BOTTOM}H{RIGHT}"/>')
    return parts


def curve(line, x_axis, y_axis):
    places = [(x_axis(max(x, 1)), y_axis(y)) for x, y in line.points]
    path = "M" + "L".join(f"{x:.1f} {y:.1f}" for x, y in places)
    dash = f' stroke-dasharray="{line.dash}"' if line.dash else ""
    return [f'<path d="{path}" fill="none" stroke="{line.colour}" '
            f'stroke-width="{line.width}"{dash}/>',
            *[marker(line.marker, x, y, line.colour) for x, y in places]]


def labels(lines, y_axis):
    """The lines' names beside their ends, in the ends' order."""
    ends = [y_axis(line.points[-1][1]) for line in lines]
    parts = []
    for line, end, place in zip(lines, ends, spread_out(ends, LABEL_STEP, TOP, BOTTOM)):
        parts.append(f'<path d="M{RIGHT + 6} {end:.1f}L{LEGEND_X} {place:.1f}" fill="none" '
                     f'stroke="{line.colour}" stroke-width="0.8"/>')
        parts.append(marker(line.marker, LEGEND_X + 8, place, line.colour))
        weight = ' font-weight="700"' if line.width > 2 else ""
        parts.append(f'<text class="ink" x="{LABEL_X}" y="{place + 4.5:.1f}"{weight}>'
                     f"{escape(line.label)}</text>")
    return parts


def draw(title, x_name, unit, lines, legend):
    """The whole drawing. `legend` pairs the dashes with what they mean."""
    ticks = sorted({x for line in lines for x, _ in line.points})
    values = [y for line in lines for _, y in line.points]
    low, high = (10 ** round_to(math.log10(edge(values)))
                 for edge, round_to in ((min, math.floor), (max, math.ceil)))
    x_axis = Axis(max(min(ticks), 1), max(ticks), LEFT + 20, RIGHT - 12)
    y_axis = Axis(low, max(high, low * 10), BOTTOM, TOP)
    parts = [f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {HEIGHT}" '
             f'width="{WIDTH}" height="{HEIGHT}" role="img">',
             f"<title>{escape(title)}</title>", f"<style>\n{STYLE}\n</style>",
             f'<rect class="paper" width="{WIDTH}" height="{HEIGHT}"/>',
             f'<text class="ink title" x="{LEFT - 50}" y="26">{escape(title)}</text>',
             *grid(x_axis, y_axis, ticks, unit)]
    for line in lines:
        parts += curve(line, x_axis, y_axis)
    parts += labels(lines, y_axis)
    parts.append(f'<text class="ink" x="{(LEFT + RIGHT) / 2}" y="{BOTTOM + 42}" '
                 f'text-anchor="middle">N, {escape(x_name)}</text>')
    for number, (dash, meaning) in enumerate(legend):
        x, y = LEGEND_X + 2, BOTTOM + 8 + 18 * number
        parts.append(f'<path class="axis" fill="none" stroke-dasharray="{dash}" '
                     f'd="M{x} {y}h34"/>')
        parts.append(f'<text class="faint" x="{x + 42}" y="{y + 4}">{escape(meaning)}</text>')
    return "\n".join([*parts, "</svg>", ""])
