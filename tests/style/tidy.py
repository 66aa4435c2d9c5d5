#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Runs clang-tidy with the rules of .clang-tidy over every source of the product that this system builds
(not platform/win32), and what these include of the product.

Usage: tidy.py BUILD-FOLDER [FILE...]
BUILD-FOLDER holds compile_commands.json and what the toolkit generates for the program. Prints every finding, and ends with 1
if there is one. Precompiled headers of another compiler are left out of the commands.
"""
import concurrent.futures
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile

from tools import tool

TOP = pathlib.Path(__file__).resolve().parents[2]
NOT_PRODUCT = ("tests", "fuzz", "bench", "build")
PRECOMPILED = re.compile(r" -Winvalid-pch| -include \S*cmake_pch\S*| -fpch-preprocess| -mshstk")
TIDY = tool("clang-tidy")


def product_commands(build):
    """One command for each source of the product, without precompiled headers."""
    commands = {}
    for entry in json.loads((build / "compile_commands.json").read_text()):
        path = pathlib.Path(entry["file"])
        if not path.is_relative_to(TOP):
            continue
        folder = path.relative_to(TOP).parts[0]
        if folder in NOT_PRODUCT or path.suffix != ".cpp" or path.name.startswith(("mocs_", "qrc_")):
            continue
        entry["command"] = PRECOMPILED.sub("", entry["command"])
        commands[str(path)] = entry
    return commands


def findings(path, folder):
    """What clang-tidy prints of one file; empty if there is nothing."""
    run = subprocess.run([TIDY, "--quiet", "-p", folder, path], capture_output=True, text=True)
    return run.stdout.strip() or ("" if run.returncode == 0 else run.stderr.strip())


def main():
    commands = product_commands(pathlib.Path(sys.argv[1]).resolve())
    wanted = [str(pathlib.Path(name).resolve()) for name in sys.argv[2:]] or sorted(commands)
    if not wanted:
        sys.exit("no source of the product is in compile_commands.json")
    bad = 0
    with tempfile.TemporaryDirectory() as folder:
        (pathlib.Path(folder) / "compile_commands.json").write_text(json.dumps(list(commands.values())))
        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
            for path, text in zip(wanted, pool.map(lambda name: findings(name, folder), wanted)):
                if text:
                    bad += 1
                    print(text.replace(str(TOP) + "/", ""))
    print(f"{len(wanted)} sources, {bad} with findings")
    sys.exit(1 if bad else 0)


main()
