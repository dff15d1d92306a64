"""Findings that are argued instead of mended, in a checked-in list.

A list has entries "PATH: SOURCE LINE"; the comment above a group of them is
the reason.  Line numbers would be wrong after the next change, so the text of
the line stands for it.  An entry is for one line of the file; "(3 x)" behind it
says that there are three that read so.
"""

import collections
import re
import sys


class Argued:
    def __init__(self, path):
        self.path = path
        self.entries = collections.Counter()
        reason = False
        with open(path, encoding="utf-8") as source:
            for number, line in enumerate(source, 1):
                line = line.strip()
                if not line:
                    reason = False
                elif line.startswith("#"):
                    reason = True
                elif not reason:
                    sys.exit(f"{path}:{number}: no reason above it")
                else:
                    entry, times = re.fullmatch(
                        r"(.*?)(?:  \((\d+) x\))?", line).groups()
                    self.entries[entry] += int(times or 1)

    def has(self, path, text):
        return f"{path}: {text.strip()}" in self.entries

    def complain(self, findings, what):
        """Lists the entries with fewer of these (path, text) than they say, or
        with more; true when there are any."""
        found = collections.Counter(f"{path}: {text.strip()}"
                                    for path, text in findings)
        wrong = [entry for entry, times in sorted(self.entries.items())
                 if found[entry] != times]
        for entry in wrong:
            say = f"{found[entry]} of {self.entries[entry]}"
            print(f"{self.path}: {what if not found[entry] else say}: {entry}")
        return bool(wrong)
