#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Compares what the program calls of the slice and of the C library with calls.inc and cannot_fail.txt.

Usage: calls.py BUILD
"""
import pathlib
import re
import subprocess
import sys

HERE = pathlib.Path(__file__).resolve().parent
OTHERS = ("platform", "tests")  # the folders whose libraries are not the program's own
# The compiler's own: of sanitizers, counters, tables of addresses and of exceptions.
COMPILERS = re.compile(r"__(asan|ubsan|tsan|lsan|sanitizer|gcov|gxx|cpu|stack_chk|tls|cxa|dso)|_Unwind|_GLOBAL_OFFSET")


def symbols(archives, kinds):
    out = subprocess.run(["nm", *archives], capture_output=True, text=True, check=True).stdout
    return {name for kind, name in re.findall(r"(?:^|\s)([A-Za-z]) (\S+)$", out, re.M) if kind in kinds}


def defined(archives):
    return symbols(archives, "TtWwVvuBbDdRr")


# "__isoc99_sscanf" and "__sprintf_chk" are names of the same calls.
def of_the_library(archives, slice_):
    outside = symbols(archives, "U") - defined(archives) - defined(slice_)
    return {re.sub(r"^__(isoc99_)?(\w+?)(_chk)?$", r"\2", name) for name in outside if not COMPILERS.match(name)}


def main():
    build = pathlib.Path(sys.argv[1])
    own = [str(path) for path in sorted(build.rglob("*.a")) if path.relative_to(build).parts[0] not in OTHERS]
    slice_ = [str(path) for path in sorted((build / "platform/qt").glob("*.a"))]
    library = of_the_library(own, slice_)
    called = symbols(own, "U") & symbols(slice_, "T")
    failed = set(re.findall(r"^FAULT_CALL\((\w+),", (HERE / "calls.inc").read_text(), re.M))
    lines = (HERE / "cannot_fail.txt").read_text().splitlines()
    exempt = {name for line in lines if not line.startswith("#") for name in line.split()}

    def is_exempt(name, one):
        return name == one or name.startswith(f"_Z{len(one)}{one}")

    missing = sorted(name for name in (called | library) - failed if not any(is_exempt(name, one) for one in exempt))
    for name in missing:
        print(f"{name}: neither in calls.inc nor in cannot_fail.txt")
    stale = sorted(failed - called - library)
    stale += sorted(one for one in exempt if not any(is_exempt(name, one) for name in called | library))
    for name in stale:
        print(f"{name}: in calls.inc or cannot_fail.txt, but the program does not call it")
    print(f"{len(called)} calls of the slice, {len(failed)} of them, of memory and of files are made to fail")
    sys.exit(1 if missing or stale or not called else 0)


if __name__ == "__main__":
    main()
