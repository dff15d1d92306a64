#!/usr/bin/env python3
"""Puts one fault at a time into the library and counts how many the tests
notice.

    mutation.py [--count N] [--seed N] [--minimum PERCENT] [--jobs N] [--list]
                [--only TEXT] [--headers] [--resume FILE]

A fault turns a comparison, a logical operator or a condition around, drops one
side of "&&" or "||", or changes a constant result.  N places are drawn at
random; each is built in a copy of the sources and runs the tests of its layer,
then those of the layers above, until one fails.  A fault that does not compile
is drawn again.  --only takes those whose "PATH:LINE: CHANGED LINE" has the
text.  Headers are left out, because half of the tests have to be compiled anew
for each; --headers takes them in.

--resume takes the faults as noticed that a file says so of: what an interrupted
run has printed.

The draw depends on the seed and on the changed lines alone, so most of a sample
stays the same when the library changes.

The survivors are listed.  Those that change nothing a caller can see stand in
cmake/mutation.txt; they count as not noticed.  The script fails below the
minimum, when another one survives, and when an argued one is noticed or is no
place any more.

TABWERK_BUILD_ROOT names another folder than build/.
"""

import argparse
import concurrent.futures
import hashlib
import os
import pathlib
import re
import shutil
import subprocess
import sys
import threading

from argued import Argued

LAYERS = ["ztypes", "platform", "schema", "table", "base", "interp"]
ROOT = pathlib.Path(__file__).resolve().parent.parent
# Of the processor; what hangs without it ends after ten times as long.
SECONDS_FOR_A_PROGRAM = 90
BYTES_FOR_A_PROGRAM = 8 << 30

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


def all_faults(root, suffixes):
    for layer in LAYERS:
        for path in sorted((root / layer).iterdir()):
            if (path.suffix not in suffixes or "windows" in path.name
                    or path.name.startswith("seam")):
                continue
            lines = path.read_text(encoding="utf-8").split("\n")
            for number, line in enumerate(lines):
                for changed in faults_of_line(line):
                    yield path.relative_to(root), number, changed


class House:
    """A copy of the sources in which faults are built."""

    def __init__(self, root):
        self.root = root
        # As deep as an ordinary build, so that a compiler cache serves both.
        self.build = root / "build" / "dev"
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
        linker = "-fuse-ld=lld" if shutil.which("ld.lld") else ""
        subprocess.run(
            ["cmake", "--preset", "dev", "-B", self.build,
             "-D", "TABWERK_BENCH=OFF", "-D", "TABWERK_EXAMPLES=OFF",
             "-D", "TABWERK_TOOL=OFF",
             "-D", f"CMAKE_EXE_LINKER_FLAGS={linker}"],
            cwd=self.root, check=True, stdout=subprocess.DEVNULL)

    def build_program(self, program, jobs=1):
        return subprocess.run(
            ["cmake", "--build", self.build, "--target", program, "-j",
             str(jobs), "--", "--quiet"], stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL).returncode == 0

    def passes(self, program):
        try:
            return subprocess.run(
                ["prlimit", f"--as={BYTES_FOR_A_PROGRAM}",
                 f"--cpu={SECONDS_FOR_A_PROGRAM}",
                 self.build / "bin" / program, "--gtest_brief=1",
                 "--gtest_fail_fast"],
                cwd=self.build, stdin=subprocess.DEVNULL,
                stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                timeout=10 * SECONDS_FOR_A_PROGRAM).returncode == 0
        except subprocess.TimeoutExpired:
            return False


def programs_for(layer):
    """The layer's own tests, then those above it."""
    return [name + "_test" for name in LAYERS[LAYERS.index(layer):]]


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


class Tally:
    """What has become of the faults."""

    def __init__(self, argued, count):
        self.argued = argued
        self.count = count
        self.lock = threading.Lock()
        self.tried = self.noticed = self.wrong = 0

    def add(self, fault, verdict):
        path, number, changed = fault
        argued = self.argued.has(path, changed)
        with self.lock:
            if self.tried == self.count:
                return
            self.tried += 1
            self.noticed += verdict != ""
            self.wrong += argued == (verdict != "")
            said = verdict or ("survived, argued" if argued else "SURVIVED")
            if argued and verdict:
                said = f"ARGUED, BUT NOTICED BY {verdict}"
            print(f"{said}: {path}:{number + 1}: {changed.strip()}",
                  flush=True)


def known_verdicts(name):
    """What a run has printed: the program by the line of a fault."""
    if not name:
        return {}
    with open(name, encoding="utf-8") as source:
        parts = [line.rstrip("\n").split(": ", 1) for line in source]
    return {part[1]: part[0] for part in parts
            if len(part) == 2 and part[0].endswith("_test")
            and " " not in part[0]}


def judge_in_turn(house, faults, known, lock, tally, count):
    """Takes faults from the iterator until enough of them have compiled."""
    while True:
        with lock:
            fault = next(faults, None)
            if fault is None or tally.tried >= count:
                return
        verdict = known.get(text_of(fault)) or judge(house, fault)
        if verdict is not None:
            tally.add(fault, verdict)


def draw(seed, fault):
    path, _, changed = fault
    return hashlib.sha256(f"{seed} {path} {changed.strip()}".encode()).digest()


def text_of(fault):
    path, number, changed = fault
    return f"{path}:{number + 1}: {changed.strip()}"


def made_houses(jobs):
    """Houses whose programs are built and pass without any fault."""
    root = pathlib.Path(os.environ.get("TABWERK_BUILD_ROOT", ROOT / "build"))
    houses = [House(root.resolve() / f"mutation{number}")
              for number in range(jobs)]
    for house in houses:
        for program in programs_for(LAYERS[0]):
            if not house.build_program(program, jobs):
                sys.exit(f"{program} does not build")
            if house is houses[0] and not house.passes(program):
                sys.exit(f"{program} fails without any fault")
    return houses


def main():
    arguments = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    arguments.add_argument("--count", type=int, default=100)
    arguments.add_argument("--seed", type=int, default=1)
    arguments.add_argument("--minimum", type=float, default=85)
    arguments.add_argument("--jobs", type=int, default=os.cpu_count())
    arguments.add_argument("--only", default="")
    arguments.add_argument("--headers", action="store_true")
    arguments.add_argument("--resume", default="")
    arguments.add_argument("--list", action="store_true",
                           help="print all places and stop")
    options = arguments.parse_args()

    places = list(all_faults(ROOT, (".cpp", ".h") if options.headers
                             else (".cpp",)))
    argued = Argued(ROOT / "cmake" / "mutation.txt")
    if argued.complain([(path, text) for path, _, text in places],
                       "no such fault"):
        return 1
    faults = [fault for fault in places if options.only in text_of(fault)]
    if options.list:
        print("\n".join(map(text_of, faults)))
        return 0
    faults.sort(key=lambda fault: draw(options.seed, fault))

    houses = made_houses(options.jobs)
    tally, remaining = Tally(argued, options.count), iter(faults)
    lock = threading.Lock()
    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
        for work in [pool.submit(judge_in_turn, house, remaining,
                                 known_verdicts(options.resume), lock, tally,
                                 options.count) for house in houses]:
            work.result()
    percent = 100 * tally.noticed / max(tally.tried, 1)
    print(f"[ SWEEP    ] mutation: {tally.noticed} of {tally.tried} faults "
          f"noticed ({percent:.0f} %), seed {options.seed}, "
          f"{len(places)} places in all")
    return percent < options.minimum or tally.wrong > 0


if __name__ == "__main__":
    sys.exit(main())
