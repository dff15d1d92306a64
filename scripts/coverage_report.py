#!/usr/bin/env python3
"""Prints what gcovr's JSON reports say, of different files each: the lines that
no test runs and the branches of which only some are taken, and a table by layer.

    coverage_report.py [--all] MINIMUM_LINES MINIMUM_BRANCHES REPORT...

What cmake/coverage.txt argues is not printed without --all.  Fails when
something else is not taken, when an argued line is taken in all directions or
gone, and when the library as a whole is below a minimum (per cent).
"""

import argparse
import collections
import json
import os
import pathlib
import sys

from argued import Argued

ROOT = pathlib.Path(__file__).resolve().parent.parent


class Sum:
    def __init__(self):
        self.lines = self.lines_run = self.branches = self.branches_taken = 0

    def add(self, line):
        self.lines += 1
        self.lines_run += line["count"] > 0
        for branch in line["branches"]:
            self.branches += 1
            self.branches_taken += branch["count"] > 0

    def percents(self):
        return (100 * self.lines_run / max(self.lines, 1),
                100 * self.branches_taken / max(self.branches, 1))


def gap_of(line):
    """What is missing of a line; "" if nothing is."""
    if line["count"] == 0:
        return "not run"
    taken = [branch["count"] > 0 for branch in line["branches"]]
    if all(taken):
        return ""
    return f"{taken.count(True)} of {len(taken)} taken"


def layer_of(path):
    name = path.split(os.sep)[0]
    return name + " (Windows)" if "/os_windows" in path else name


def main():
    arguments = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    arguments.add_argument("--all", action="store_true")
    arguments.add_argument("minimum_lines", type=float)
    arguments.add_argument("minimum_branches", type=float)
    arguments.add_argument("reports", nargs="+")
    options = arguments.parse_args()

    files = []
    for report in options.reports:
        with open(report, encoding="utf-8") as source:
            files += json.load(source)["files"]
    argued = Argued(ROOT / "cmake" / "coverage.txt")
    layers = collections.defaultdict(Sum)
    whole = Sum()
    gaps = []
    open_gaps = 0
    for entry in sorted(files, key=lambda entry: entry["file"]):
        path = entry["file"]
        with open(ROOT / path, encoding="utf-8") as source:
            texts = source.read().split("\n")
        for line in entry["lines"]:
            if line.get("gcovr/noncode"):
                continue
            layers[layer_of(path)].add(line)
            whole.add(line)
            what = gap_of(line)
            if not what:
                continue
            text = texts[line["line_number"] - 1].strip()
            gaps.append((path, text))
            is_open = not argued.has(path, text)
            open_gaps += is_open
            if is_open or options.all:
                print(f"{path}:{line['line_number']}: {what}: {text}")
    stale = argued.complain(gaps, "taken, or gone")
    for name, layer in sorted(layers.items()) + [("library", whole)]:
        lines, branches = layer.percents()
        print(f"[ SWEEP    ] coverage {name}: lines {lines:.1f} % of "
              f"{layer.lines}, branches {branches:.1f} % of {layer.branches}")
    print(f"[ SWEEP    ] coverage: {len(gaps) - open_gaps} lines argued, "
          f"{open_gaps} open")
    lines, branches = whole.percents()
    return (stale or open_gaps > 0 or lines < options.minimum_lines
            or branches < options.minimum_branches)


if __name__ == "__main__":
    sys.exit(main())
