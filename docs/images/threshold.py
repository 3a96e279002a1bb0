"""Draws threshold.svg: what the threshold does to inliers and accuracy, measured on two bundled sets.

Usage: threshold.py ESTTFORM EXAMPLES_DATA > threshold.svg
"""
import json
import math
import pathlib
import statistics
import subprocess
import sys

esttform, data = sys.argv[1], pathlib.Path(sys.argv[2])
SETS = [("arches_panorama", "projective", "two photographs", "#0b559f", ""),
        ("scan_page_affine", "affine", "a scanned page", "#c44e00", "6 4")]
THRESHOLDS = [0.125 * 2 ** (k / 2) for k in range(21)]
SEEDS = range(1, 6)
WIDTH, LEFT, RIGHT, TOP, PANEL, GAP = 760, 78, 24, 44, 190, 62


def mapped(matrix, x, y):
    rows = [row[0] * x + row[1] * y + row[2] for row in matrix]
    return rows[0] / rows[2], rows[1] / rows[2]


def measured(name, kind, threshold):
    """Median share of inliers in percent, and median mean distance of the corners from the truth in pixels."""
    truth = json.loads((data / f"{name}.truth.json").read_text())
    width, height = truth["size1"]
    shares, errors = [], []
    for seed in SEEDS:
        run = subprocess.run([esttform, "estimate", data / f"{name}.csv", "--type", kind, "--seed", str(seed), "--format", "json",
                              "--threshold-px", str(threshold)], capture_output=True, text=True, check=True)
        result = json.loads(run.stdout)
        shares.append(100 * result["inlierNum"] / len(result["inliers"]))
        tform = result["tform"] + ([[0, 0, 1]] if len(result["tform"]) == 2 else [])
        errors.append(statistics.mean(math.dist(mapped(tform, x, y), mapped(truth["matrix"], x, y))
                                      for x in (0, width) for y in (0, height)))
    return statistics.median(shares), statistics.median(errors)


def x_of(threshold):
    low, high = math.log(THRESHOLDS[0]), math.log(THRESHOLDS[-1])
    return LEFT + (WIDTH - LEFT - RIGHT) * (math.log(threshold) - low) / (high - low)


def text(x, y, content, anchor="middle", more=""):
    return f'<text x="{x:.1f}" y="{y:.1f}" text-anchor="{anchor}" {more}>{content}</text>'


def panel(top, title, ticks, y_of):
    """Frame, grid and labels of one diagram."""
    parts = [text(LEFT, top - 10, title, "start", 'font-weight="bold"')]
    for tick in ticks:
        y = top + PANEL * (1 - y_of(tick))
        parts += [f'<line x1="{LEFT}" x2="{WIDTH - RIGHT}" y1="{y:.1f}" y2="{y:.1f}" stroke="#ddd"/>', text(LEFT - 8, y + 4, f"{tick:g}", "end")]
    for threshold in (0.125, 0.5, 1, 3, 10, 30, 128):
        x = x_of(threshold)
        parts += [f'<line x1="{x:.1f}" x2="{x:.1f}" y1="{top}" y2="{top + PANEL}" stroke="{"#888" if threshold == 3 else "#ddd"}"/>',
                  text(x, top + PANEL + 17, f"{threshold:g}")]
    return parts + [f'<rect x="{LEFT}" y="{top}" width="{WIDTH - LEFT - RIGHT}" height="{PANEL}" fill="none" stroke="#444"/>']


def share_height(percent):
    return percent / 100


def error_height(pixels):
    return min(1, max(0, (math.log10(pixels) + 2) / 4))          # 0.01 to 100 pixels


curves = {name: [measured(name, kind, threshold) for threshold in THRESHOLDS] for name, kind, *_ in SETS}
bottom = TOP + PANEL + GAP
height = bottom + PANEL + 78
parts = panel(TOP, "Inliers, percent of the pairs", (0, 25, 50, 75, 100), share_height)
parts += panel(bottom, "Error of the corners, pixels", (0.01, 0.1, 1, 10, 100), error_height)
parts.append(text(x_of(3) + 6, TOP + PANEL - 8, "default", "start", 'fill="#555"'))
parts.append(text((LEFT + WIDTH - RIGHT) / 2, bottom + PANEL + 38, "threshold, pixels (--threshold-px)"))
for index, (name, _, label, colour, dashes) in enumerate(SETS):
    truth = json.loads((data / f"{name}.truth.json").read_text())
    label += f", {100 * truth['pairs_within_3px'] / truth['pairs']:.0f} % right"
    stroke = f'fill="none" stroke="{colour}" stroke-width="2.5" stroke-dasharray="{dashes}"'
    for top, column, y_of in ((TOP, 0, share_height), (bottom, 1, error_height)):
        points = " ".join(f"{x_of(t):.1f},{top + PANEL * (1 - y_of(value[column])):.1f}" for t, value in zip(THRESHOLDS, curves[name]))
        parts.append(f'<polyline points="{points}" {stroke}/>')
    x = LEFT + 40 + 330 * index
    parts += [f'<line x1="{x}" x2="{x + 44}" y1="{height - 16}" y2="{height - 16}" {stroke}/>', text(x + 52, height - 11, label, "start")]
print(f'<svg xmlns="http://www.w3.org/2000/svg" width="{WIDTH}" height="{height}" viewBox="0 0 {WIDTH} {height}" '
      f'font-family="sans-serif" font-size="14">\n<rect width="100%" height="100%" fill="#fff"/>\n' + "\n".join(parts) + "\n</svg>")
