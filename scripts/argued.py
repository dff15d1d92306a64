"""Findings that are argued instead of mended, in a checked-in list.

A list has entries "PATH: SOURCE LINE"; the comment above a group of them is
the reason.  Line numbers would be wrong after the next change, so the text of
the line stands for it.
"""

import sys


class Argued:
    def __init__(self, path):
        self.path = path
        self.entries = set()
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
                    self.entries.add(line)

    def has(self, path, text):
        return f"{path}: {text.strip()}" in self.entries

    def without(self, findings):
        """The entries that belong to none of these (path, text)."""
        found = {f"{path}: {text.strip()}" for path, text in findings}
        return sorted(self.entries - found)

    def complain(self, findings, what):
        """Lists the entries without a finding; true when there are any."""
        stale = self.without(findings)
        for entry in stale:
            print(f"{self.path}: {what}: {entry}")
        return bool(stale)
