#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Checks that the program contains no code of the test libraries.

Usage: test_code.py BUILD-FOLDER [NM]
No library of the program, and not the program itself, may define or use a name that a library of the
tests defines. Prints each violation and ends with 1.
"""
import pathlib
import subprocess
import sys

from layer_table import layers, rooms

TESTS = ["tests/qt_driver/libqt_driver.a", "tests/libservice_hooks.a",
         "tests/support/libtest_support.a"]
PROGRAM = "platform/qt/quill"


def names(nm, path, kinds):
    listing = subprocess.run([nm, path], capture_output=True, text=True, check=True).stdout
    rows = [line.split() for line in listing.splitlines()]
    return {row[-1] for row in rows if len(row) > 1 and row[-2] in kinds}


def plain(name):
    return subprocess.run(["c++filt", name], capture_output=True, text=True).stdout.strip()


def main():
    build, nm = pathlib.Path(sys.argv[1]), (sys.argv[2:] or ["nm"])[0]
    tests = set().union(*(names(nm, build / path, "TDBR") for path in TESTS)) - {"main"}
    shipped = {build / ("platform/qt" if layer.is_room else layer.folder) / f"lib{name}.a"
               for name, layer in {**layers(), **rooms()}.items()} | {build / PROGRAM}
    complaints = [f"{path.name} has {plain(name)}" for path in sorted(shipped)
                  for name in sorted(tests & names(nm, path, "TtDdBbRrU"))]
    if not tests or complaints:
        print("\n".join(complaints) or "no name of the tests was found")
        sys.exit(1)
    print(f"{len(tests)} names of the tests, none in {len(shipped)} shipped files")


main()
