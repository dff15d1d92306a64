#!/usr/bin/env python3
"""Makes tables of what the benchmark programs have measured.

  bench_table.py rows FOLDER       prints the table of ratios
  bench_table.py document FOLDER   the same, and puts it into docs/performance.md
  bench_table.py growth FOLDER     the same for the table of growth

FOLDER holds the programs' JSON output.
"""
import collections
import datetime
import json
import math
import pathlib
import platform
import statistics
import sys

PAGE = pathlib.Path(__file__).parent.parent / "docs" / "performance.md"

# Work, what it is, and what it is to be: at most so many times the limit,
# or at most so many nanoseconds an item; so many times as fast as SQLite.  Two
# numbers are those up to 100,000 rows and beyond.
Work = collections.namedtuple("Work", "key title times_limit nanoseconds sqlite",
                              defaults=[None])
WORKS = [
    Work("open", "open and load all, valid index", 1.2, None),
    Work("first_value", "process start to first value", 1.15, None),
    Work("stale_index", "open with an index to be renumbered", None, 1e9),
    Work("memory", "memory after loading (MiB)", 1.1, None),
    Work("lookup_number", "look up by ID, two numbers", 1.3, None, (25, 9)),
    Work("lookup_text", "look up by ID, translated text", 1.5, None),
    Work("sum_column", "sum a column row by row", None, 4),
    Work("find_text", "find a row by text, first time", 1.2, None),
    Work("find_text_again", "find a row by text, again", 0.1, None),
    Work("pattern_prefix", "rows matching `Ab.*`", 2.5, None),
    Work("pattern_digits", "rows matching `.*[0-9]{3}`", 2.5, None),
    Work("pattern_choice", "rows matching `(Pump\\|Valve) .*x`", 2.5, None),
    Work("save", "save, reopening included", 3, None),
    Work("save_alone", "save without reopening", 2, None),
    Work("script", "script, save included", None, None),
    Work("script_alone", "script without its save", 2.5, None),
    Work("append", "append a row, set six values", None, (200, 250)),
    Work("user_append", "append a user row from texts", None, 2000),
    Work("user_import", "import a delimited row", None, 2000),
    Work("user_update", "update a row from texts", None, None),
    Work("user_insert", "insert a row in front of all", None, None),
]
OTHERS = ("sqlite", "lmdb", "wregex")


class Measured:
    """Medians by work, contender and number of rows."""

    def __init__(self, folder):
        samples = collections.defaultdict(list)
        self.items = {}
        for path in sorted(folder.glob("*.json")):
            for run in json.loads(path.read_text())["benchmarks"]:
                if run["run_type"] == "iteration":
                    self._take(run, samples)
        self.medians = {key: statistics.median(s) for key, s in samples.items()}
        for rows in self.rows():
            self._subtract("save_alone", "save", "reopen", rows)
            self._subtract("script_alone", "script", "script_save", rows)

    def _take(self, run, samples):
        work, contender, rows, *clock = run["run_name"].split("/")
        key = (work, contender, int(rows))
        if "MiB" in run:
            samples[key].append(run["MiB"])
            return
        # In nanoseconds; files are waited for, so those count as the wall sees.
        time = run["real_time"] if clock else run["cpu_time"]
        scale = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}[run["time_unit"]]
        samples[key].append(time * scale)
        per_second = run["items_per_second"]
        used = run["real_time"] if clock else run["cpu_time"]
        self.items[key] = round(per_second * used * scale / 1e9)

    def _subtract(self, result, whole, part, rows):
        both = [self.medians.get((w, "tabwerk", rows)) for w in (whole, part)]
        if None in both:
            return
        self.medians[result, "tabwerk", rows] = both[0] - both[1]
        self.items[result, "tabwerk", rows] = self.items[whole, "tabwerk", rows]
        limit = self.medians.get((whole, "limit", rows))
        if limit is not None:
            self.medians[result, "limit", rows] = limit

    def rows(self):
        return sorted({rows for _, _, rows in self.medians})

    def get(self, work, contender, rows):
        return self.medians.get((work, contender, rows))


def shown(nanoseconds):
    if nanoseconds is None:
        return ""
    for unit, size in (("s", 1e9), ("ms", 1e6), ("µs", 1e3)):
        if nanoseconds >= size:
            return f"{nanoseconds / size:.3g} {unit}"
    return f"{nanoseconds:.3g} ns"


def cell(measured, work, contender, rows):
    value = measured.get(work.key, contender, rows)
    if value is None:
        return ""
    if work.key == "memory":
        return f"{value:.3g}"
    return shown(value / max(1, measured.items.get(
        (work.key, "tabwerk", rows), 1)))


def wanted(target, rows):
    if isinstance(target, tuple):
        return target[1 if rows > 100000 else 0]
    return target


def judge(measured, work, rows):
    """Targets and verdicts."""
    own = measured.get(work.key, "tabwerk", rows)
    limit = measured.get(work.key, "limit", rows)
    sqlite = measured.get(work.key, "sqlite", rows)
    judged = []
    if work.times_limit is not None and limit:
        judged.append((f"≤ {work.times_limit} ×",
                       own <= work.times_limit * limit))
    if work.nanoseconds is not None:
        allowed = wanted(work.nanoseconds, rows)
        each = own / max(1, measured.items[work.key, "tabwerk", rows])
        judged.append((f"≤ {shown(allowed)}", each <= allowed))
    if work.sqlite is not None and sqlite:
        times = wanted(work.sqlite, rows)
        judged.append((f"SQLite ÷ ≥ {times}", sqlite >= times * own))
    return ("; ".join(target for target, _ in judged),
            "; ".join("met" if met else "**missed**" for _, met in judged))


def ratio_table(measured):
    lines = [
        "| work | rows | tabwerk | limit | tabwerk ÷ limit | target | | "
        + " | ".join(f"{other} ÷ tabwerk" for other in OTHERS) + " |",
        "|---|---:|---:|---:|---:|---:|---|" + "---:|" * len(OTHERS),
    ]
    for work in WORKS:
        for rows in measured.rows():
            own = measured.get(work.key, "tabwerk", rows)
            if own is None:
                continue
            # That of a script does not save.
            limit = (None if work.key == "script" else
                     measured.get(work.key, "limit", rows))
            cells = [work.title, f"{rows:,}",
                     cell(measured, work, "tabwerk", rows),
                     cell(measured, work, "limit", rows) if limit else "",
                     f"{own / limit:.2f}" if limit else ""]
            cells += judge(measured, work, rows)
            for other in OTHERS:
                time = measured.get(work.key, other, rows)
                cells.append(f"{time / own:.3g}" if time else "")
            lines.append("| " + " | ".join(cells) + " |")
    return lines


def growth_table(measured):
    sizes = measured.rows()
    lines = ["| work | " + " | ".join(f"{rows:,} rows" for rows in sizes) +
             " | exponent | of |", "|---|" + "---:|" * len(sizes) + "---:|---|"]
    for work in WORKS:
        times = [measured.get(work.key, "tabwerk", rows) for rows in sizes]
        if None in times:
            continue
        exponent = slope(sizes, times)
        all_rows = work.key not in ("append", "user_append", "user_import",
                                    "user_update", "find_text_again")
        texts = ([f"{value:.4g} MiB" for value in times]
                 if work.key == "memory" else [shown(value) for value in times])
        lines.append(f"| {work.title} | " + " | ".join(texts) +
                     f" | {exponent:.2f} | " +
                     ("the whole table" if all_rows else "a fixed number") +
                     " |")
    return lines


def slope(sizes, times):
    """Of the straight line through the logarithms."""
    x = [math.log(size) for size in sizes]
    y = [math.log(max(time, 1e-9)) for time in times]
    mean_x, mean_y = statistics.mean(x), statistics.mean(y)
    return (sum((a - mean_x) * (b - mean_y) for a, b in zip(x, y)) /
            sum((a - mean_x) ** 2 for a in x))


def machine():
    model = next((line.split(":", 1)[1].strip()
                  for line in open("/proc/cpuinfo") if "model name" in line),
                 platform.machine())
    cores = sum(1 for line in open("/proc/cpuinfo") if line.startswith("processor"))
    memory = next(int(line.split()[1]) for line in open("/proc/meminfo")
                  if line.startswith("MemTotal"))
    return (f"{model}, {cores} cores, {memory / 2**20:.0f} GiB, "
            f"{platform.system()} {platform.release().split('-')[0]}")


def put_into_page(section, lines):
    begin, end = f"<!-- {section} -->", f"<!-- end of {section} -->"
    text = PAGE.read_text()
    before, rest = text.split(begin, 1)
    after = rest.split(end, 1)[1]
    PAGE.write_text(before + begin + "\n" + "\n".join(lines) + "\n" + end + after)


def main():
    mode, folder = sys.argv[1], pathlib.Path(sys.argv[2])
    measured = Measured(folder)
    growth = mode == "growth"
    lines = growth_table(measured) if growth else ratio_table(measured)
    print("\n".join(lines))
    if mode == "rows":
        return
    command = "scripts/bench.sh" + (" growth" if growth else "")
    head = [f"`{command}` on {machine()}, {datetime.date.today()}:", ""]
    put_into_page("growth" if growth else "ratios", head + lines)


main()
