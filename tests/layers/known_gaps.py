#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Compares the table of known gaps in docs/platform.md with the marks of the platform's tests.

Usage: known_gaps.py [--write]
Without an option it prints the differences and ends with 1; --write updates the table.
"""
import difflib
import pathlib
import re
import sys

TOP = pathlib.Path(__file__).resolve().parents[2]
PAGE = TOP / "docs" / "platform.md"
HEAD = "| test | where it fails | what happens there |\n|---|---|---|\n"
MARK = re.compile(r'TEST(?:_F|_P)?\((\w+), (\w+)\)[^{]*\{\s*KNOWN_GAP_ON_(\w+)\(\s*"([^"]*)"\)')
ANY_MARK = re.compile(r"^\s*KNOWN_GAP_ON_\w+\(", re.M)


def marked_rows():
    rows = []
    for path in sorted((TOP / "tests" / "platform").rglob("*_test.cpp")):
        text = path.read_text()
        found = MARK.findall(text)
        if len(found) != len(ANY_MARK.findall(text)):
            sys.exit(f"{path.name}: a mark that does not come first in a test's body")
        for suite, name, system, reason in found:
            rows.append(f"| `{suite}.{name}` | {system.capitalize()} | {reason} |\n")
    return rows


def main():
    page = PAGE.read_text()
    if HEAD not in page:
        sys.exit(f"{PAGE.name}: no table of known gaps")
    start = page.index(HEAD) + len(HEAD)
    rest = page[start:].splitlines(keepends=True)
    told = [line for line in rest if line.startswith("|")]
    told = rest[: len(told)] if rest[: len(told)] == told else sys.exit("the table is interrupted")
    marked = marked_rows()
    if told == marked:
        print(f"{len(marked)} marks, all in {PAGE.name}")
        return
    if "--write" in sys.argv[1:]:
        PAGE.write_text(page[:start] + "".join(marked + rest[len(told):]))
        return
    sys.stdout.writelines(difflib.unified_diff(told, marked, PAGE.name, "the marks", n=0))
    sys.exit(1)


main()
