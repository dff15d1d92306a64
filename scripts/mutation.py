#!/usr/bin/env python3
"""Puts one fault at a time into the library and counts how many the tests
notice.

    mutation.py [--count N] [--seed N] [--minimum PERCENT] [--list]

A fault turns a comparison, a logical operator or a condition around, drops one
side of "&&" or "||", or changes a constant result.  N places are drawn at
random; each is built in a copy of the sources and runs the tests of its layer,
then those of the layers above, until one fails.  A fault that does not compile
is drawn again.  The survivors are listed; below the minimum the script fails.

TABWERK_BUILD_ROOT names another folder than build/.
"""

import argparse
import os
import pathlib
import random
import re
import shutil
import subprocess
import sys

LAYERS = ["ztypes", "platform", "schema", "table", "base", "interp"]
ROOT = pathlib.Path(__file__).resolve().parent.parent
SECONDS_FOR_A_PROGRAM = 120

# What a line may hold, and what is put in its place.  Our layout has blanks
# around operators and none in "<…>" of templates.
SWAPS = [
    (" == ", " != "), (" != ", " == "),
    (" < ", " <= "), (" <= ", " < "), (" > ", " >= "), (" >= ", " > "),
    (" && ", " || "), (" || ", " && "),
    ("return true;", "return false;"), ("return false;", "return true;"),
    (" + 1", ""), (" - 1", ""),
]
CONDITION = re.compile(r"\b(?:if|while) \(")
LEAVE_OUT = re.compile(
    r"^\s*(//|#|assert\(|static_assert|template|using |case |\*)|operator")


def closing(text, start):
    """Where the bracket that opens at start closes; -1 on another line."""
    depth = 0
    for place in range(start, len(text)):
        depth += {"(": 1, ")": -1}.get(text[place], 0)
        if depth == 0:
            return place
    return -1


def faults_of_line(line):
    """Every line that one fault makes of this one."""
    if LEAVE_OUT.search(line):
        return
    code = line.split(" // ")[0]
    for old, new in SWAPS:
        place = code.find(old)
        while place >= 0:
            yield line[:place] + new + line[place + len(old):]
            place = code.find(old, place + 1)
    for match in CONDITION.finditer(code):
        end = closing(code, match.end() - 1)
        if end < 0:
            continue
        condition = code[match.end():end]
        if ";" in condition or re.match(r"(\w+ )+(const )?\w+ = ", condition):
            continue
        yield f"{line[:match.end()]}!({condition}){line[end:]}"
        for operator in ("&&", "||"):
            if condition.count(f" {operator} ") == 1:
                for side in condition.split(f" {operator} "):
                    if side.count("(") == side.count(")"):
                        yield f"{line[:match.end()]}{side}{line[end:]}"


def all_faults(root):
    for layer in LAYERS:
        for path in sorted((root / layer).iterdir()):
            if (path.suffix not in (".cpp", ".h") or "windows" in path.name
                    or path.name.startswith("seam")):
                continue
            lines = path.read_text(encoding="utf-8").split("\n")
            for number, line in enumerate(lines):
                for changed in faults_of_line(line):
                    yield path.relative_to(root), number, changed


class House:
    """The copy of the sources in which faults are built."""

    def __init__(self, build_root):
        self.root = build_root / "mutation"
        self.build = self.root / "build"
        tracked = subprocess.run(["git", "ls-files"], cwd=ROOT, check=True,
                                 capture_output=True, text=True).stdout
        for name in tracked.splitlines():
            source, target = ROOT / name, self.root / name
            if not source.is_file():
                continue
            target.parent.mkdir(parents=True, exist_ok=True)
            if (not target.exists()
                    or target.read_bytes() != source.read_bytes()):
                shutil.copy(source, target)
        subprocess.run(
            ["cmake", "--preset", "dev", "-B", self.build, "-D",
             "TABWERK_BENCH=OFF", "-D", "TABWERK_EXAMPLES=OFF"],
            cwd=self.root, check=True, stdout=subprocess.DEVNULL)

    def build_program(self, program):
        return subprocess.run(
            ["cmake", "--build", self.build, "--target", program, "--",
             "--quiet"], stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL).returncode == 0

    def passes(self, program):
        try:
            return subprocess.run(
                [self.build / "bin" / program, "--gtest_brief=1",
                 "--gtest_fail_fast"],
                cwd=self.build, stdin=subprocess.DEVNULL,
                stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                timeout=SECONDS_FOR_A_PROGRAM).returncode == 0
        except subprocess.TimeoutExpired:
            return False


def programs_for(layer):
    """The layer's own tests, those above it, those below."""
    place = LAYERS.index(layer)
    order = LAYERS[place:] + ["end_to_end"]
    return [name + "_test" for name in order]


def judge(house, fault):
    """The program that notices the fault; "" if none, None if it does not
    compile."""
    path, number, changed = fault
    target = house.root / path
    original = target.read_text(encoding="utf-8")
    lines = original.split("\n")
    lines[number] = changed
    target.write_text("\n".join(lines), encoding="utf-8")
    try:
        for program in programs_for(path.parts[0]):
            if not house.build_program(program):
                return None
            if not house.passes(program):
                return program
        return ""
    finally:
        target.write_text(original, encoding="utf-8")


def main():
    arguments = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    arguments.add_argument("--count", type=int, default=100)
    arguments.add_argument("--seed", type=int, default=1)
    arguments.add_argument("--minimum", type=float, default=85)
    arguments.add_argument("--list", action="store_true",
                           help="print all places and stop")
    options = arguments.parse_args()

    faults = list(all_faults(ROOT))
    if options.list:
        for path, number, changed in faults:
            print(f"{path}:{number + 1}: {changed.strip()}")
        return 0
    random.Random(options.seed).shuffle(faults)

    house = House(pathlib.Path(
        os.environ.get("TABWERK_BUILD_ROOT", ROOT / "build")).resolve())
    for program in programs_for(LAYERS[0]):
        if not house.build_program(program) or not house.passes(program):
            sys.exit(f"{program} fails without any fault")

    tried, noticed = 0, 0
    for fault in faults:
        if tried == options.count:
            break
        verdict = judge(house, fault)
        if verdict is None:
            continue
        tried += 1
        noticed += verdict != ""
        path, number, changed = fault
        print(f"{verdict or 'SURVIVED'}: {path}:{number + 1}: "
              f"{changed.strip()}", flush=True)
    percent = 100 * noticed / max(tried, 1)
    print(f"[ SWEEP    ] mutation: {noticed} of {tried} faults noticed "
          f"({percent:.0f} %), seed {options.seed}, "
          f"{len(faults)} places in all")
    return percent < options.minimum


if __name__ == "__main__":
    sys.exit(main())
