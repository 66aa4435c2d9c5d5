#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Checks every source and header with .clang-format.

Usage: format.py
Prints each line that clang-format would change, and ends with 1 if there is one.
"""
import pathlib
import subprocess
import sys

from tools import tool

TOP = pathlib.Path(__file__).resolve().parents[2]
FOLDERS_LEFT_OUT = ("build", ".git")


def sources():
    """Every source and header of the tree, listed by git or, without git, by a search."""
    listed = subprocess.run(["git", "-C", TOP, "ls-files", "*.cpp", "*.h"], capture_output=True, text=True)
    if listed.returncode == 0 and listed.stdout:
        return [TOP / name for name in listed.stdout.splitlines() if (TOP / name).exists()]
    return [path for path in sorted(TOP.rglob("*.[ch]*")) if path.suffix in (".cpp", ".h")
            and path.relative_to(TOP).parts[0] not in FOLDERS_LEFT_OUT]


def main():
    files = sources()
    if not files:
        sys.exit("no source was found")
    run = subprocess.run([tool("clang-format"), "--dry-run", "-Werror", *files], capture_output=True, text=True)
    print(run.stderr.replace(str(TOP) + "/", ""), end="")
    print(f"{len(files)} files")
    sys.exit(run.returncode)


main()
