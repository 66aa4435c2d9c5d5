#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Holds the calls of the slice in the program's libraries against calls.inc and cannot_fail.txt.

Usage: calls.py BUILD
"""
import pathlib
import re
import subprocess
import sys

HERE = pathlib.Path(__file__).resolve().parent
OTHERS = ("platform", "tests")  # the folders whose libraries are not the program's own
LIBC = {"malloc", "calloc", "fgets"}


def symbols(archives, kind):
    out = subprocess.run(["nm", *archives], capture_output=True, text=True, check=True).stdout
    return {line.split()[-1] for line in out.splitlines() if f" {kind} " in f" {line} "}


def main():
    build = pathlib.Path(sys.argv[1])
    own = [str(path) for path in sorted(build.rglob("*.a")) if path.relative_to(build).parts[0] not in OTHERS]
    slice_ = [str(path) for path in sorted((build / "platform/qt").glob("*.a"))]
    called = symbols(own, "U") & symbols(slice_, "T")
    failed = set(re.findall(r"^FAULT_CALL\((\w+),", (HERE / "calls.inc").read_text(), re.M))
    lines = (HERE / "cannot_fail.txt").read_text().splitlines()
    exempt = {name for line in lines if not line.startswith("#") for name in line.split()}
    missing = sorted(name for name in called - failed
                     if not any(name.startswith(f"_Z{len(one)}{one}") for one in exempt))
    for name in missing:
        print(f"{name}: neither in calls.inc nor in cannot_fail.txt")
    stale = sorted(failed - called - LIBC)
    for name in stale:
        print(f"{name}: in calls.inc, but the program does not call it")
    print(f"{len(called)} calls of the slice, {len(failed)} of them, of memory and of files are made to fail")
    sys.exit(1 if missing or stale or not called else 0)


if __name__ == "__main__":
    main()
