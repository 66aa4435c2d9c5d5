#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Checks that the product uses one form where C++ allows several.

Usage: dialect.py
  - a procedure or variable of one file is `static`; an anonymous namespace holds types only;
  - `sizeof` has parentheses; a counter steps by `++name`; a null pointer is `nullptr`; a name
    of a type is made by `using`; a number
    that the compiler knows is `constexpr`, without `static`;
  - what also runs on a device calls only what its C library has.
Prints each violation and ends with 1 if there is one. It ignores comments and string literals.
"""
import pathlib
import re
import subprocess
import sys

TOP = pathlib.Path(__file__).resolve().parents[2]
THE_API = "windows_ce.h"  # in the form of the device's headers
FOLDERS_LEFT_OUT = ("tests", "fuzz", "bench", "build")
NUMBER = (r"(?:int|unsigned|DWORD|size_t|BYTE|WCHAR|LONG|UINT|WORD|char|double|float|long|bool|qint64|COLORREF|"
          r"u?int(?:8|16|32|64)_t|char16_t|char32_t)")
RULES = (
    (re.compile(r"\bsizeof\s*[^\s(.]|\bsizeof \("), "sizeof without parentheses"),
    # A statement, or the last section of a `for`: the value before the step is not used.
    (re.compile(r"(?:^|[;{}):,]|\belse\b)\s*(?!return\b)(?:[\w.:>\[\]-]+|\(\*[\w.>-]+\))(?:\+\+|--)\s*[;)]"),
     "a counter that steps behind its name"),
    (re.compile(r"\bNULL\b"), "NULL"),
    (re.compile(r"^\s*typedef\b"), "typedef"),
    # A number that is known to the compiler is `constexpr`, a table of one file `static const`.
    (re.compile(rf"^static const {NUMBER} k\w+ = [^()]*;"), "a number that is not constexpr"),
    (re.compile(r"^static constexpr\b"), "constexpr says static already"),
)
# Not in a device's C library. The platforms and the demo host have one of their own.
NOT_ON_A_DEVICE = re.compile(r"\b(?:v?snprintf|strtou?ll|strtou?imax|atoll|lstrcpynW?)\s*\(")
NOT_FOR_A_DEVICE = ("platform", "demo")
TYPE = re.compile(r"(struct|class|enum|union|using|template|\}|\{|#|public:|private:|protected:)")
TEXT_OR_COMMENT = re.compile(r'//.*|"(?:\\.|[^"\\])*"|\'(?:\\.|[^\'\\])+\'')


def product_sources():
    return [path for path in sorted(TOP.rglob("*"))
            if path.suffix in (".cpp", ".h") and path.relative_to(TOP).parts[0] not in FOLDERS_LEFT_OUT
            and path.name != THE_API]


def broken_rules(path):
    """(line number, what is wrong) of one file. In an anonymous namespace only types begin at column 1."""
    anonymous = False
    for number, line in enumerate(path.read_text().splitlines(), 1):
        code = TEXT_OR_COMMENT.sub('""', line)
        yield from ((number, what) for pattern, what in RULES if pattern.search(code))
        if NOT_ON_A_DEVICE.search(code) and path.relative_to(TOP).parts[0] not in NOT_FOR_A_DEVICE:
            yield number, "a call that a device does not have"
        if line == "namespace {":
            anonymous = True
        elif line.startswith("}  // namespace"):
            anonymous = False
        elif anonymous and code[:1].strip() and line[:2] != "//" and not TYPE.match(code):
            yield number, "an anonymous namespace holds types only"


def main():
    bad = 0
    files = product_sources()
    for path in files:
        for number, what in broken_rules(path):
            bad += 1
            print(f"{path.relative_to(TOP)}:{number}: {what}")
    print(f"{len(files)} files, {bad} lines in another dialect")
    sys.exit(1 if bad or not files else 0)


main()
