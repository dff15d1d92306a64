#!/usr/bin/env python3
"""Prints what gcovr's JSON report says: a table by layer, the lines that no
test runs and the branches of which only some are taken.

    coverage_report.py REPORT MINIMUM_LINES MINIMUM_BRANCHES

Fails when the library as a whole is below a minimum (per cent).
"""

import collections
import json
import os
import sys


def is_missing(line):
    return line["count"] == 0 and not line.get("gcovr/noncode")


def source_line(path, number):
    with open(path, encoding="utf-8") as source:
        return source.readlines()[number - 1].strip()


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


def main():
    report, minimum_lines, minimum_branches = sys.argv[1:4]
    with open(report, encoding="utf-8") as source:
        files = json.load(source)["files"]
    layers = collections.defaultdict(Sum)
    whole = Sum()
    gaps = []
    for entry in sorted(files, key=lambda entry: entry["file"]):
        path = entry["file"]
        for line in entry["lines"]:
            if line.get("gcovr/noncode"):
                continue
            layers[path.split(os.sep)[0]].add(line)
            whole.add(line)
            taken = [branch["count"] > 0 for branch in line["branches"]]
            if is_missing(line) or not all(taken):
                number = line["line_number"]
                what = ("not run" if is_missing(line) else
                        f"{taken.count(True)} of {len(taken)} taken")
                gaps.append(f"{path}:{number}: {what}: "
                            f"{source_line(path, number)}")
    print("\n".join(gaps))
    print()
    for name, layer in sorted(layers.items()) + [("library", whole)]:
        lines, branches = layer.percents()
        print(f"[ SWEEP    ] coverage {name}: lines {lines:.1f} % of "
              f"{layer.lines}, branches {branches:.1f} % of {layer.branches}")
    lines, branches = whole.percents()
    return not (lines >= float(minimum_lines) and
                branches >= float(minimum_branches))


if __name__ == "__main__":
    sys.exit(main())
