#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Holds the number of the product's files and their lengths: a subject is a file.

Usage: file_sizes.py
Prints what breaks a rule, and ends with 1:
  - more than 190 files;
  - a median of 90 lines or fewer;
  - a file of more than 600 lines that is no table, or a table named here that is not as long.
"""
import statistics
import sys

from layer_table import TOP

MOST_FILES = 190
LEAST_MEDIAN = 91  # lines
MOST_LINES = 600
NOT_PRODUCT = ("bench", "build", "fuzz", "tests")
# Longer files that are tables, and what is in them.
TABLES = {
    "platform/windows_ce.h": "the types, constants and calls of the API, each with its contract",
}


def lengths():
    """The lines of each product file, by its name."""
    folders = [path for path in TOP.iterdir()
               if path.is_dir() and path.name not in NOT_PRODUCT and not path.name.startswith(".")]
    files = [path for folder in folders for path in folder.rglob("*") if path.suffix in (".cpp", ".h")]
    return {str(path.relative_to(TOP)): len(path.read_bytes().splitlines()) for path in files}


def main():
    lines = lengths()
    median = statistics.median(lines.values())
    complaints = [f"{name} has {count} lines, at most {MOST_LINES} are allowed: split it by subject"
                  for name, count in sorted(lines.items()) if count > MOST_LINES and name not in TABLES]
    complaints += [f"{name} is named as a table of more than {MOST_LINES} lines, and is none"
                   for name in TABLES if lines.get(name, 0) <= MOST_LINES]
    if len(lines) > MOST_FILES:
        complaints.append(f"{len(lines)} files, at most {MOST_FILES} are allowed: a subject is a file")
    if median < LEAST_MEDIAN:
        complaints.append(f"the median is {median:g} lines, at least {LEAST_MEDIAN} are wanted")
    if complaints:
        print("\n".join(complaints))
        sys.exit(1)
    print(f"{len(lines)} files, the median has {median:g} lines, the longest {max(lines.values())}")


main()
