#!/usr/bin/env python3
"""Prints what a run of fleet-load.sh has measured as a table, and draws it as an SVG.

usage: fleet-chart.py FIGURES.json CHART.svg
"""
import json
import sys
from html import escape
from pathlib import Path

lines = [json.loads(line) for line in Path(sys.argv[1]).read_text().splitlines()]
runs = {}
for line in lines:
    runs.setdefault(line["run"], []).append(line)

rows = []
for name, found in runs.items():
    own = [line for line in found if line.get("controller", "").startswith("controller-")]
    complete = [line for line in own if line["phase"] == "complete"]
    first = {}
    for line in complete:
        first.setdefault(line["controller"], line)
    again = [line for line in complete if line is not first[line["controller"]]]
    lost_at = min((line["at"] for line in own if line["phase"] == "lost"), default=1e9)
    steady = [line for line in own if line["phase"] == "steady"]
    # The first window of a controller is that in which a late one fills itself, the last ones follow the broker's end.
    calm = [line for line in steady if line["at"] < lost_at]
    calm = calm[len(first):] or calm
    late = [line for line in found if line.get("controller") == "late" and line["phase"] == "all"]
    memory = next(line for line in found if line["phase"] == "memory")
    windows = max(1, len(calm) // max(1, len(first)))
    rows.append({
        "run": name,
        "devices": memory["fleet"],
        "controllers": len(first),
        "asked": memory["rate"],
        "changes/s": sum(line["changesPerSecond"] for line in calm) / windows,
        "p50 ms": sorted(line["p50ms"] or 0 for line in calm)[len(calm) // 2] if calm else 0,
        "p99 ms": sorted(line["p99ms"] or 0 for line in calm)[len(calm) // 2] if calm else 0,
        "all at once s": max(line["seconds"] for line in own if line["phase"] == "all"),
        "late s": late[0]["seconds"] if late else 0,
        "again s": max((line["seconds"] for line in again), default=None),
        "doubled": max((line["doubled"] for line in steady), default=0),
        "B/parameter": max(line["bytesPerParameter"] for line in first.values()),
        "broker MB": memory["broker"] / 1e6,
        "B/device": memory["devices"] / memory["fleet"],
    })

names = list(rows[0])


def shown(value):
    return f"{value:.1f}" if isinstance(value, float) else "" if value is None else str(value)


cells = [names] + [[shown(row[name]) for name in names] for row in rows]
for cell in cells:
    print("| " + " | ".join(cell) + " |")
    if cell is names:
        print("|" + "---|" * len(names))

# One panel for each figure, one bar for each run: a light ground and dark text, readable without colours.
panels = (("changes/s", "changes in a second"), ("p50 ms", "delay of half of them, ms"), ("p99 ms", "delay of 99 %, ms"),
          ("late s", "a late controller has all, s"), ("again s", "after the broker's restart, s"),
          ("B/parameter", "controller's bytes for each parameter"))
width, bar, gap, left = 760, 18, 6, 210
parts = []
y = 34
for name, title in panels:
    measured = [row for row in rows if row[name] is not None]
    greatest = max((row[name] for row in measured), default=0) or 1
    parts.append(f'<text x="12" y="{y + 12}" font-weight="bold">{escape(title)}</text>')
    y += 22
    for row in measured:
        length = (width - left - 110) * row[name] / greatest
        label = f'{row["run"]}, {row["controllers"]} controller{"s" if row["controllers"] > 1 else ""}'
        parts.append(f'<text x="{left - 8}" y="{y + 13}" text-anchor="end">{escape(label)}</text>')
        parts.append(f'<rect x="{left}" y="{y}" width="{max(length, 1):.1f}" height="{bar}" fill="#1f5f8b"/>')
        parts.append(f'<text x="{left + length + 6:.1f}" y="{y + 13}">{row[name]:,.1f}</text>')
        y += bar + gap
    y += 18
title = f'{rows[0]["devices"]:,} devices of 50 parameters through one broker, on one machine'
Path(sys.argv[2]).write_text(
    f'<svg xmlns="http://www.w3.org/2000/svg" width="{width}" height="{y}" viewBox="0 0 {width} {y}" '
    f'font-family="sans-serif" font-size="12" role="img"><title>{escape(title)}</title>'
    f'<rect width="100%" height="100%" fill="#ffffff"/><text x="12" y="20" font-size="15">{escape(title)}</text>'
    + "".join(parts) + "</svg>\n")
