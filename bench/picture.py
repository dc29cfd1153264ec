#!/usr/bin/env python3
"""Draws what report.py has measured: picture.py FOLDER reads its CSV files and writes speed.svg beside them."""

import csv
import math
import sys
from html import escape
from pathlib import Path

NAME = "speed.svg"
WIDTH, TOP = 960, 80
# Of the decoders too, in the order of their bars.
COLOURS = {"px": "#8c959f", "e9": "#3a86d0", "v3": "#e0862a", "ffmpeg SSE4.1": "#a58ad2", "ffmpeg": "#7d55c7"}
# A card of its own colour, so that it can be read on any page.
STYLE = """
text { font: 11px sans-serif; fill: #24292f } .title { font-size: 14px; font-weight: bold } .note { fill: #57606a }
.number { font-size: 9px }
.end { text-anchor: end } .middle { text-anchor: middle }
.card { fill: #fff; stroke: #d0d7de } .grid { stroke: #d8dee4 } .one { stroke: #8c959f }
@media (prefers-color-scheme: dark) {
  text { fill: #e6edf3 } .note { fill: #9ba5b0 } .card { fill: #161b22; stroke: #30363d } .grid { stroke: #343b44 }
}
"""


def draw(folder):
    kernels, streams = ([*csv.DictReader(open(folder / file, newline=""))] for file in ("kernels.csv", "streams.csv"))
    (folder / NAME).write_text(svg(kernels, streams, processor()))


def svg(kernels, streams, where):
    families = speedups(kernels)
    left, bottom = kernel_panel(families)
    right, other_bottom = stream_panel(streams)
    height = max(bottom, other_bottom) + 26
    return "\n".join([
        f'<svg xmlns="http://www.w3.org/2000/svg" width="{WIDTH}" height="{height}" viewBox="0 0 {WIDTH} {height}">',
        f"<style>{STYLE}</style>",
        f'<rect class="card" x="0.5" y="0.5" width="{WIDTH - 1}" height="{height - 1}" rx="6"/>',
        *left, *right, text(WIDTH - 16, height - 10, where, "note end"), "</svg>", ""])


def processor():
    lines = Path("/proc/cpuinfo").read_text().splitlines()
    return next((line.split(": ")[1] for line in lines if line.startswith("model name")), "")


def speedups(kernels):
    """The speed-ups over px of each family's rows by generation, families in the order of their first row."""
    families = {}
    for row in kernels:
        if row["counted"] == "1":
            family = families.setdefault(row["family"], {})
            for generation in ("e9", "v3"):
                if row["px"] and row[generation]:
                    family.setdefault(generation, []).append(float(row["px"]) / float(row[generation]))
    return families


def geometric_mean(values):
    return math.exp(sum(map(math.log, values)) / len(values))


def text(x, y, content, kind=""):
    return f'<text x="{x:g}" y="{y:g}" class="{kind}">{escape(content)}</text>'


def line(x1, y1, x2, y2, colour="", kind=""):
    stroke = f'stroke="{colour}" stroke-width="2"' if colour else f'class="{kind}"'
    return f'<line x1="{x1:.1f}" y1="{y1:.1f}" x2="{x2:.1f}" y2="{y2:.1f}" {stroke}/>'


def legend(x, y, names):
    parts = []
    for name in names:
        parts += [f'<rect x="{x}" y="{y - 8}" width="9" height="9" fill="{COLOURS[name]}"/>', text(x + 13, y, name)]
        x += 28 + 6.2 * len(name)
    return parts


def kernel_panel(families):
    left, right, row = 270, 510, 16
    speeds = [s for family in families.values() for values in family.values() for s in values]
    low = math.floor(math.log2(min(speeds, default=1)))
    high = max(low + 1, math.ceil(math.log2(max(speeds, default=1))))

    def x(speedup):
        return left + (right - left) * (math.log2(speedup) - low) / (high - low)

    bottom = TOP + row * len(families)
    parts = [text(16, 26, "Kernels: times faster than px", "title"),
             text(16, 43, "dot: geometric mean of a family; line: from its slowest row to its fastest", "note"),
             *legend(16, 62, ["e9", "v3"])]
    for power in range(low, high + 1):
        parts.append(line(x(2**power), TOP - 4, x(2**power), bottom, kind="grid" if power else "one"))
        if power % 2 == 0 or high - low < 8:
            parts.append(text(x(2**power), TOP - 8, f"{2**power:g}", "note middle"))
    for i, (name, generations) in enumerate(families.items()):
        y = TOP + row * i + row / 2
        parts.append(text(left - 10, y + 4, name.replace("_", " "), "end"))
        for generation, values in generations.items():
            at, colour = y + (-2.5 if generation == "e9" else 2.5), COLOURS[generation]
            parts += [line(x(min(values)), at, x(max(values)), at, colour),
                      f'<circle cx="{x(geometric_mean(values)):.1f}" cy="{at:.1f}" r="3" fill="{colour}"/>']
    return parts, bottom


def stream_panel(streams):
    left, right, bar = 550, 910, 9
    decoders = [name for name in COLOURS if any(row.get(name) for row in streams)]
    parts = [text(left, 26, "moxdec: pictures a second of processor time", "title"),
             text(left, 43, "one thread; bars are to scale within a stream", "note"), *legend(left, 62, decoders)]
    y = TOP
    for row in streams:
        rates = {name: float(row[name]) for name in decoders if row.get(name)}
        parts.append(text(left, y + 4, f"{row['stream']}, {row['size']}"))
        for name, rate in rates.items():
            width = (right - left) * rate / max(rates.values())
            parts += [f'<rect x="{left}" y="{y + 7}" width="{width:.1f}" height="{bar - 1}" fill="{COLOURS[name]}"/>',
                      text(left + width + 3, y + 14.5, f"{rate:.0f}", "note number")]
            y += bar
        y += 18
    return parts, y - 8


if __name__ == "__main__":
    draw(Path(sys.argv[1]))
