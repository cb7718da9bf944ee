#!/usr/bin/env python3
# SPDX-FileCopyrightText: Velmora
# SPDX-License-Identifier: LicenseRef-Commercial-Usage
"""Makes the table, results.json and chart.svg from the benchmarks' rows.

    report.py FOLDER ROWS ...    exits with 1 when a limit was missed; files of rows that are not there are passed over
    report.py --runs FILE ...    puts the results.json of several runs side by side, as a table in Markdown
"""

import html
import json
import math
import os
import platform
import sys


def number(value):
    return f"{value:.1f}" if abs(value) >= 10 else f"{value:.2f}" if abs(value) >= 0.1 or value == 0 else f"{value:.2g}"


def times(row, way):
    if way not in row:
        return ""
    figures = row[way]
    return f"{number(figures['median'])} ({number(figures['least'])}–{number(figures['most'])})"


def limit(row):
    return f"{'≥' if row['sign'] == '>=' else '≤'} {row['limit']:g}" if "limit" in row else ""


def distance(row):
    """The margin to the limit: above 1 is better than required."""
    if not row.get("limit") or not row["value"]:
        return None
    return row["value"] / row["limit"] if row["sign"] == ">=" else row["limit"] / row["value"]


def table(rows):
    lines = [("what", "plain way", "plain, ms", "ours, ms", "ratio", "limit", "against limit")]
    for row in rows:
        against = distance(row)
        verdict = "" if against is None else f"{against:.2f} {'reached' if row['met'] else 'MISSED'}"
        lines.append((row["what"], row.get("plainWay", ""), times(row, "plain"), times(row, "ours"),
                      f"{number(row['value'])} {row.get('unit', '')}".strip(), limit(row), verdict))
    widths = [max(len(line[column]) for line in lines) for column in range(len(lines[0]))]
    return "\n".join("  ".join(cell.ljust(width) for cell, width in zip(line, widths)).rstrip() for line in lines)


class Drawing:
    def __init__(self, width):
        self.width = width
        self.parts = []

    def text(self, x, y, text, size=12, colour="#1f2328", anchor="start", weight="normal"):
        self.parts.append(f'<text x="{x:.1f}" y="{y:.1f}" font-size="{size}" fill="{colour}" '
                          f'text-anchor="{anchor}" font-weight="{weight}">{html.escape(text)}</text>')

    def box(self, x, y, width, height, colour):
        self.parts.append(f'<rect x="{x:.1f}" y="{y:.1f}" width="{max(width, 1):.1f}" height="{height:.1f}" '
                          f'rx="2" fill="{colour}"/>')

    def line(self, points, colour, width=1.0, dash=""):
        path = " ".join(f"{x:.1f},{y:.1f}" for x, y in points)
        self.parts.append(f'<polyline points="{path}" fill="none" stroke="{colour}" stroke-width="{width}" '
                          f'stroke-dasharray="{dash}"/>')

    def dot(self, x, y, colour):
        self.parts.append(f'<circle cx="{x:.1f}" cy="{y:.1f}" r="3" fill="{colour}"/>')

    def svg(self, height):
        return (f'<svg xmlns="http://www.w3.org/2000/svg" width="{self.width}" height="{height:.0f}" '
                f'viewBox="0 0 {self.width} {height:.0f}" font-family="DejaVu Sans, Arial, sans-serif">\n'
                f'<rect width="100%" height="100%" fill="#ffffff"/>\n' + "\n".join(self.parts) + "\n</svg>\n")


def bars(drawing, rows, top):
    """One bar for each row with a limit; its length is the margin, on a logarithmic scale."""
    left, right, height = 440, drawing.width - 150, 24
    judged = [row for row in rows if distance(row)]
    names = [row["what"] for row in judged]
    longest = max(10.0, max(distance(row) for row in judged))
    shortest = min(0.5, min(distance(row) for row in judged))

    def place(value):
        return left + (right - left) * math.log(value / shortest) / math.log(longest / shortest)

    for index, row in enumerate(judged):
        y = top + index * height
        end, start = place(distance(row)), place(1)
        against = f" ({row['plainWay']})" if names.count(row["what"]) > 1 and row.get("plainWay") else ""
        drawing.text(left - 10, y + 15, row["what"].strip() + against, anchor="end")
        drawing.box(min(start, end), y + 4, abs(end - start), 15, "#2f7d4f" if row["met"] else "#b3382c")
        drawing.text(right + 10, y + 15, f"{number(row['value'])} {row.get('unit', '')} ({limit(row)})", colour="#57606a")
    bottom = top + len(judged) * height
    drawing.line([(place(1), top), (place(1), bottom)], "#1f2328", 1.5)
    drawing.text(place(1), bottom + 16, "the limit", 11, anchor="middle")
    drawing.text(right, bottom + 16, "better →", 11, "#57606a", "end")
    return bottom + 40


def curves(drawing, growths, top):
    """The growth of cost on logarithmic axes; the dashed line is linear growth."""
    columns, gap, height = 2, 60, 170
    width = (drawing.width - 80 - gap * (columns - 1)) / columns
    for index, growth in enumerate(growths):
        x0 = 60 + (index % columns) * (width + gap)
        y0 = top + (index // columns) * (height + 70) + 20
        points = [(max(point[0], 1), max(point[1], 0.01)) for point in growth["points"]]
        xs, ys = [math.log10(x) for x, _ in points], [math.log10(y) for _, y in points]
        low, high = math.floor(min(ys)), math.ceil(max(ys) + 0.01)
        span = max(xs) - min(xs) or 1

        def at(x, y):
            return (x0 + (x - min(xs)) / span * width, y0 + height - (y - low) / (high - low) * height)

        drawing.text(x0, y0 - 8, growth["growth"], 12, weight="bold")
        drawing.line([(x0, y0), (x0, y0 + height), (x0 + width, y0 + height)], "#8c959f")
        for power in range(low, high + 1):
            drawing.text(x0 - 6, at(min(xs), power)[1] + 4, f"{10.0 ** power:g}", 10, "#57606a", "end")
        for x, (size, _) in zip(xs, points):
            drawing.text(at(x, low)[0], y0 + height + 14, f"{size:g}", 10, "#57606a", "middle")
        drawing.text(x0 + width, y0 + height + 28, f"{growth['unit']}; ms upwards", 10, "#57606a", "end")
        start = min(high, max(low, ys[-1] - span))
        drawing.line([at(max(xs) - (ys[-1] - start), start), at(max(xs), ys[-1])], "#8c959f", 1, "4 3")
        drawing.line([at(x, y) for x, y in zip(xs, ys)], "#1f6feb", 2)
        for x, y in zip(xs, ys):
            drawing.dot(*at(x, y), "#1f6feb")
    return top + math.ceil(len(growths) / columns) * (height + 70)


def first_line(path, name):
    """The value of `name` in a file of "name: value" lines; empty if there is none."""
    if not os.path.exists(path):
        return ""
    with open(path, encoding="utf-8") as file:
        return next((line.split(":", 1)[1].strip() for line in file if line.startswith(name)), "")


def machine():
    return {"cores": os.cpu_count(), "machine": platform.machine(), "system": platform.platform(),
            "processor": first_line("/proc/cpuinfo", "model name"), "memory": first_line("/proc/meminfo", "MemTotal")}


def by_name(rows):
    """The rows with a limit. An indented one belongs to the last that is not, and its name is unique only below it."""
    named = {}
    owner = ""
    for row in rows:
        if not row["what"].startswith(" "):
            owner = row["what"]
        if "limit" in row:
            named[owner, row["what"], row.get("plainWay", "")] = row
    return named


def cell(row):
    if row is None:
        return ""
    value = f"{row['value']:.3g}" if row["value"] < 10 else f"{row['value']:.0f}"
    return value if row["met"] else f"**{value}** missed"


def side_by_side(paths):
    results = []
    for path in paths:
        with open(path, encoding="utf-8") as file:
            results.append(json.load(file))
    runs = [by_name(result["rows"]) for result in results]
    columns = [f"run {number}" for number in range(1, len(runs) + 1)]
    print("| what | against | limit | " + " | ".join(columns) + " |")
    print("|---" * (3 + len(columns)) + "|")
    for key in dict.fromkeys(key for run in runs for key in run):
        found = [run.get(key) for run in runs]
        row = next(filter(None, found))
        sign = f"{limit(row)} {row.get('unit', '')}".strip()
        what = row["what"] if row["what"] == key[0] else f"{key[0]}: {row['what'].strip()}"
        print(f"| {what} | {row.get('plainWay', '')} | {sign} | " + " | ".join(map(cell, found)) + " |")
    print()
    for column, result in zip(columns, results):
        orders = ", ".join(f"{order['order']} --seed {order['seed']}" for order in result.get("orders", []))
        print(f"{column}: {result['processor']}, {result['cores']} cores, {result['memory']}, {result['system']}; "
              f"{orders}  ")


def main():
    if sys.argv[1] == "--runs":
        side_by_side(sys.argv[2:])
        return 0
    folder, *paths = sys.argv[1:]
    everything = []
    for path in filter(os.path.exists, paths):
        with open(path, encoding="utf-8") as file:
            everything += [json.loads(line) for line in file]
    rows = [row for row in everything if "what" in row]
    growths = [row for row in everything if "growth" in row]

    print(table(rows))
    with open(os.path.join(folder, "results.json"), "w", encoding="utf-8") as file:
        json.dump({**machine(), "orders": [row for row in everything if "order" in row], "rows": rows,
                   "growth": growths}, file, indent=2, ensure_ascii=False)

    drawing = Drawing(1020)
    drawing.text(20, 30, "Each work against its limit", 16, weight="bold")
    bottom = bars(drawing, rows, 50)
    if growths:
        drawing.text(20, bottom + 10, "How cost grows (dashed: as the size does)", 16, weight="bold")
        bottom = curves(drawing, growths, bottom + 30)
    with open(os.path.join(folder, "chart.svg"), "w", encoding="utf-8") as file:
        file.write(drawing.svg(bottom + 20))

    missed = [row["what"].strip() for row in rows if not row["met"]]
    print(f"\n{len(rows)} rows, {len(missed)} missed. {folder}/results.json, {folder}/chart.svg")
    return 1 if missed else 0


if __name__ == "__main__":
    sys.exit(main())
