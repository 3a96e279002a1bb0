#!/usr/bin/env python3
"""Measures how well the diagnosis tells wrong results from right ones, on matches with known truth.

Usage: diagnosis_rates.py ESTTFORM DATA_FOLDER [SEED_NUM]

DATA_FOLDER holds NAME.csv with NAME.truth.json beside it, as examples/data does. Every set is estimated with every row of
settings and SEED_NUM seeds (default 20). A result is wrong when the four corners of the first picture, or the check points
of the truth, are more than 10 pixels off on average. The table goes to standard output.
"""
import collections
import concurrent.futures
import json
import math
import pathlib
import subprocess
import sys

WRONG_PX = 10.0
TYPES = {"translation": "similarity"}                    # of other models the type has the same name
# Type and options of every row; without a type that of the set.
SETTINGS = {
    "defaults": (None, []),
    "--threshold-px 1.5": (None, ["--threshold-px", "1.5"]),
    "--threshold-px 6": (None, ["--threshold-px", "6"]),
    "--max-samples 2000": (None, ["--max-samples", "2000"]),
    "--max-samples 300": (None, ["--max-samples", "300"]),
    "--method median": (None, ["--method", "median"]),
    "--no-robust": (None, ["--no-robust"]),
    "--type affine for projective scenes": ("affine", []),
    "--type similarity for projective scenes": ("similarity", []),
}


def mapped(matrix, x, y):
    u, v, w = (row[0] * x + row[1] * y + row[2] for row in matrix)
    return (u / w, v / w) if w > 0 else (math.inf, math.inf)


def error_of(matrix, true_matrix, truth):
    """Mean distance from the truth in pixels."""
    width, height = truth.get("size1") or truth["frame_size"]
    places = [(x, y, *mapped(true_matrix, x, y)) for x in (0, width - 1) for y in (0, height - 1)]
    distances = [math.dist(mapped(matrix, x1, y1), (x2, y2)) for x1, y1, x2, y2 in truth.get("check_points") or places]
    return math.inf if any(map(math.isnan, distances)) else sum(distances) / len(distances)


def outcomes(program, path, truth, kind, options, seed):
    """(is wrong, codes of its warnings) of every step with a transformation."""
    kind = kind or TYPES.get(truth["model"], truth["model"])
    run = subprocess.run([program, "estimate", path, "--type", kind, *options, "--seed", str(seed), "--format", "json", "--diagnose",
                          "--quiet"], capture_output=True, text=True)
    if run.returncode > 1:                               # 1: nothing was found
        raise RuntimeError(run.stderr)
    for line in run.stdout.splitlines():
        step = json.loads(line)
        if all(value == 0 for row in step["tform"] for value in row):
            continue
        rows = [[math.nan if value is None else value for value in row] for row in step["tform"]]
        matrix = rows if len(rows) == 3 else [*rows, [0, 0, 1]]
        true_matrix = truth["matrices"][step["frame"]] if "matrices" in truth else truth["matrix"]
        yield not error_of(matrix, true_matrix, truth) <= WRONG_PX, [note["code"] for note in step["diagnosis"]["warnings"]]


def cells(results, is_wrong):
    """How many results of a kind were warned of, and the warnings' codes with their numbers."""
    warnings = [codes for wrong, codes in results if wrong == is_wrong]
    numbers = sorted(collections.Counter(code for codes in warnings for code in codes).items())
    return f"{sum(map(bool, warnings))} of {len(warnings)} | {', '.join(f'{code} {num}' for code, num in numbers)}"


def main(program, folder, seed_num="20"):
    paths = sorted(pathlib.Path(folder).glob("*.truth.json"))
    truths = {str(path)[:-len(".truth.json")] + ".csv": json.loads(path.read_text()) for path in paths}
    sets = {path: truth for path, truth in truths.items() if truth.get("matrix") or truth.get("matrices")}
    print(f"{len(sets)} sets, {seed_num} seeds\n\n| settings | wrong, warned of | by | right, warned of | by |\n|---|---|---|---|---|")
    with concurrent.futures.ThreadPoolExecutor() as pool:
        for name, (kind, options) in SETTINGS.items():
            tasks = [pool.submit(lambda *args: list(outcomes(*args)), program, path, truth, kind, options, seed)
                     for path, truth in sets.items() if kind is None or truth["model"] == "projective"
                     for seed in range(1, int(seed_num) + 1)]
            results = [result for task in tasks for result in task.result()]
            print(f"| {name} | {cells(results, True)} | {cells(results, False)} |", flush=True)


if __name__ == "__main__":
    main(*sys.argv[1:])
