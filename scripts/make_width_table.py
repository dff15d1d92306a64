#!/usr/bin/env python3
"""Prints cli/width_table.cpp: how many columns of a terminal a character takes.

    scripts/make_width_table.py > cli/width_table.cpp && clang-format -i cli/width_table.cpp

The data are those of the Unicode version that this Python knows.
"""
import sys
import unicodedata


# Format characters that show: the soft hyphen, and Arabic, Syriac and Kaithi
# signs that numbers stand under.
SHOWN = {0x00AD, *range(0x0600, 0x0606), 0x06DD, 0x070F, 0x0890, 0x0891, 0x08E2,
         0x110BD, 0x110CD}


def no_width(code):
    if code in SHOWN:
        return False
    if 0x1160 <= code <= 0x11FF:  # vowels and finals that join a Hangul syllable
        return True
    return unicodedata.category(chr(code)) in ("Mn", "Me", "Cf")


def wide(code):
    # Unassigned ones of the ideographic planes are counted as assigned.
    if 0x20000 <= code <= 0x2FFFD or 0x30000 <= code <= 0x3FFFD:
        return True
    return not no_width(code) and unicodedata.east_asian_width(chr(code)) in "WF"


def ranges(test):
    start = None
    for code in range(sys.maxunicode + 2):
        inside = code <= sys.maxunicode and test(code)
        if inside and start is None:
            start = code
        elif not inside and start is not None:
            yield start, code - 1
            start = None


def table(name, test):
    print(f"constexpr CharacterRange {name}[] = {{")
    for first, last in ranges(test):
        print(f"    {{0x{first:04X}, 0x{last:04X}}},")
    print("};")


print("// Written by scripts/make_width_table.py from Unicode "
      f"{unicodedata.unidata_version}.")
print('#include "cli/width_table.h"\n')
print("namespace tabwerk::tool {\nnamespace {\n")
table("kNoWidth", no_width)
print()
table("kWide", wide)
print("\n}  // namespace\n")
print("std::span<CharacterRange const> NoWidthRanges() { return kNoWidth; }")
print("std::span<CharacterRange const> WideRanges() { return kWide; }\n")
print("}  // namespace tabwerk::tool")
