"""Draws times over counts, both by their logarithms, as SVG that suits light and dark pages."""

import math
from xml.sax.saxutils import escape

WIDTH, HEIGHT = 640, 400
LEFT, RIGHT, TOP, BOTTOM = 78, 44, 46, 56  # around the plot

STYLE = """
  text { font: 13px sans-serif; fill: #24292f }
  .page { fill: #fff }
  .axis { stroke: #57606a; stroke-width: 1; fill: none }
  .grid { stroke: #d0d7de; stroke-width: 1 }
  .linear { stroke: #8c959f; stroke-width: 1; stroke-dasharray: 5 4 }
  .line { stroke-width: 2; fill: none }
  .c0 { stroke: #0969da } .f0 { fill: #0969da }
  .c1 { stroke: #bc4c00 } .f1 { fill: #bc4c00 }
  @media (prefers-color-scheme: dark) {
    text { fill: #d1d7e0 }
    .page { fill: #0d1117 }
    .axis { stroke: #9198a1 }
    .grid { stroke: #3d444d }
    .linear { stroke: #6e7681 }
    .c0 { stroke: #4493f8 } .f0 { fill: #4493f8 }
    .c1 { stroke: #f0883e } .f1 { fill: #f0883e }
  }
"""


class Axis:
    """A logarithmic scale over all values, drawn from `begin` to `end`, with ticks at those steps of each decade."""

    def __init__(self, values, begin, end, steps):
        possible = [step * 10.0**decade for decade in range(-5, 9) for step in steps]
        self.low = max(tick for tick in possible if tick <= min(values) * 1.0001)
        self.high = min(tick for tick in possible if tick >= max(values) * 0.9999 and tick > self.low)
        self.ticks = [tick for tick in possible if self.low <= tick <= self.high]
        self.begin, self.end = begin, end

    def at(self, value):
        share = math.log(value / self.low) / math.log(self.high / self.low)
        return self.begin + share * (self.end - self.begin)


def time_label(seconds):
    if seconds >= 0.9999:
        return f"{seconds:.0f} s"
    return f"{seconds * 1000:.0f} ms" if seconds >= 0.0009999 else f"{seconds * 1000:.1f} ms"


def steps_for(values):
    return (1,) if max(values) / min(values) > 50 else (1, 2, 5)


def linear_line(points, slope, x, y):
    """The part inside the plot of the line of that slope through the longest time, which shows what linear would be."""
    count_there, longest = max(points, key=lambda point: point[1])
    time_of = lambda count: longest * (count / count_there) ** slope
    count_of = lambda time: count_there * (time / longest) ** (1 / slope)
    ends = sorted((count_of(y.low), count_of(y.high)))
    begin, end = max(ends[0], x.low), min(ends[1], x.high)
    return f'<line class="linear" x1="{x.at(begin):.1f}" y1="{y.at(time_of(begin)):.1f}" x2="{x.at(end):.1f}" y2="{y.at(time_of(end)):.1f}"/>'


def draw(path, series, over, what, slope):
    """`series`: [count, seconds] points by the names of their lines."""
    counts = sorted({count for points in series.values() for count, _ in points})
    times = [time for points in series.values() for _, time in points]
    x = Axis(counts, LEFT, WIDTH - RIGHT, steps_for(counts))
    y = Axis(times, HEIGHT - BOTTOM, TOP, steps_for(times))
    parts = [f'<rect class="page" width="{WIDTH}" height="{HEIGHT}"/>']
    for tick in x.ticks:
        parts.append(f'<line class="grid" x1="{x.at(tick):.1f}" y1="{TOP}" x2="{x.at(tick):.1f}" y2="{HEIGHT - BOTTOM}"/>')
        parts.append(f'<text x="{x.at(tick):.1f}" y="{HEIGHT - BOTTOM + 18}" text-anchor="middle">{round(tick):,}</text>')
    for tick in y.ticks:
        parts.append(f'<line class="grid" x1="{LEFT}" y1="{y.at(tick):.1f}" x2="{WIDTH - RIGHT}" y2="{y.at(tick):.1f}"/>')
        parts.append(f'<text x="{LEFT - 8}" y="{y.at(tick) + 4:.1f}" text-anchor="end">{time_label(tick)}</text>')
    parts.append(f'<path class="axis" d="M{LEFT} {TOP}V{HEIGHT - BOTTOM}H{WIDTH - RIGHT}"/>')
    parts.append(f'<text x="{(LEFT + WIDTH - RIGHT) / 2:.0f}" y="{HEIGHT - 14}" text-anchor="middle">{escape(over)}</text>')
    parts.append(f'<text x="12" y="20">{escape(what)}</text>')
    for number, (name, points) in enumerate(series.items()):
        parts.append(linear_line(points, slope, x, y))
        places = [f"{x.at(count):.1f},{y.at(time):.1f}" for count, time in points]
        parts.append(f'<polyline class="line c{number}" points="{" ".join(places)}"/>')
        parts += [f'<circle class="f{number}" cx="{place.split(",")[0]}" cy="{place.split(",")[1]}" r="3.5"/>' for place in places]
        parts.append(f'<rect class="f{number}" x="{LEFT + 100 + 190 * number}" y="14" width="14" height="3"/>')
        parts.append(f'<text x="{LEFT + 120 + 190 * number}" y="20">{escape(name)}</text>')
    parts.append(f'<line class="linear" x1="{WIDTH - RIGHT - 76}" y1="16" x2="{WIDTH - RIGHT - 50}" y2="16"/>')
    parts.append(f'<text x="{WIDTH - RIGHT - 44}" y="20">linear</text>')
    title = f"{what} over {over}"
    with open(path, "w") as file:
        file.write(f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {HEIGHT}" role="img" aria-label="{escape(title)}">\n')
        file.write(f"<style>{STYLE}</style>\n" + "\n".join(parts) + "\n</svg>\n")
