#!/usr/bin/env python3
"""Prints the rows of unicode_widths.inc from the interpreter's Unicode Character Database.

usage: make_unicode_widths.py > unicode_widths.inc
"""
import sys
import unicodedata

SOFT_HYPHEN = 0xAD
# Vowels and finals that join the Hangul syllable in front of them.
JOINING_JAMO = (*range(0x1160, 0x1200), *range(0xD7B0, 0xD800))
# Ideographs are wide whether assigned or not (Unicode annex 11).
IDEOGRAPHS = (
    (0x3400, 0x4DBF),
    (0x4E00, 0x9FFF),
    (0xF900, 0xFAFF),
    (0x20000, 0x2FFFD),
    (0x30000, 0x3FFFD),
)


def is_zero_width(c):
    if c in JOINING_JAMO:
        return True
    return c != SOFT_HYPHEN and unicodedata.category(chr(c)) in ("Mn", "Me", "Cf")


def is_wide(c):
    if any(first <= c <= last for first, last in IDEOGRAPHS):
        return True
    assigned = unicodedata.category(chr(c)) != "Cn"
    return assigned and unicodedata.east_asian_width(chr(c)) in ("W", "F")


def width(c):
    if is_zero_width(c):
        return 0
    return 2 if is_wide(c) else 1


def ranges():
    """Ranges of equal width other than 1, from the first character behind ASCII on."""
    first, current = 0x80, 1
    for c in range(0x80, 0x110001):
        now = width(c) if c < 0x110000 else 1
        if now == current:
            continue
        if current != 1:
            yield first, c - 1, current
        first, current = c, now


def main():
    rows = [f"{{0x{first:04X}, 0x{last:04X}, {w}}}," for first, last, w in ranges()]
    print(f"// Unicode {unicodedata.unidata_version}; printed by make_unicode_widths.py.")
    line = ""
    for row in rows:
        if len(line) + len(row) + 1 > 90:
            print(line)
            line = ""
        line += (" " if line else "") + row
    print(line)


sys.exit(main())
