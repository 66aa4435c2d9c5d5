#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Prints how many lines and branches of each product folder the tests ran, from a build with gcov's counts.

Usage: coverage.py BUILD [FOLDER...]
It prints the named folders, or all. The lines that no test ran go to BUILD/not_run.txt. A branch is one
outcome of a condition; branches that only an exception takes do not count.
"""
import collections
import json
import pathlib
import subprocess
import sys

TOP = pathlib.Path(__file__).resolve().parents[1]
NOT_PRODUCT = ("tests", "bench", "demo", "fuzz", "packaging", "scripts")


def product_files():
    out = subprocess.run(["git", "ls-files", "*.cpp", "*.h"], cwd=TOP, check=True, capture_output=True, text=True)
    return {name for name in out.stdout.split() if not name.startswith(NOT_PRODUCT)}


def reports(build):
    notes = [str(path) for path in sorted(build.rglob("*.gcno"))]
    for i in range(0, len(notes), 20):
        done = subprocess.run(["gcov", "--json-format", "--branch-probabilities", "--stdout", *notes[i:i + 20]],
                              cwd=build, capture_output=True, text=True)
        for line in done.stdout.splitlines():
            if line.startswith("{"):
                yield json.loads(line)


def gather(build):
    """{file: {line: count}} and {file: {(line, branch): count}}; a header is the sum over its readers."""
    lines = collections.defaultdict(lambda: collections.defaultdict(int))
    branches = collections.defaultdict(lambda: collections.defaultdict(int))
    wanted = product_files()
    for report in reports(build):
        base = pathlib.Path(report["current_working_directory"])
        for file in report["files"]:
            path = (base / file["file"]).resolve()
            name = str(path.relative_to(TOP)) if path.is_relative_to(TOP) else ""
            if name not in wanted:
                continue
            for line in file["lines"]:
                number = line["line_number"]
                lines[name][number] += line["count"]
                for i, branch in enumerate(b for b in line["branches"] if not b["throw"]):
                    branches[name][number, i] += branch["count"]
    return lines, branches


def folder_of(name):
    parts = name.split("/")[:-1]
    return "/".join(parts[:2]) if parts[0] in ("protocol", "ui", "platform") else parts[0]


def share(counts):
    ran = sum(count > 0 for count in counts)
    return f"{ran} of {len(counts)}", f"{100 * ran / len(counts):.1f} %" if counts else "-"


def main():
    build = pathlib.Path(sys.argv[1]).resolve()
    lines, branches = gather(build)
    folders = collections.defaultdict(lambda: ([], []))
    not_run = []
    for name in sorted(lines):
        folder = folder_of(name)
        if sys.argv[2:] and folder not in sys.argv[2:]:
            continue
        folders[folder][0].extend(lines[name].values())
        folders[folder][1].extend(branches[name].values())
        text = (TOP / name).read_text().splitlines()
        not_run += [f"{name}:{number}: {text[number - 1].strip()}" for number, count in sorted(lines[name].items())
                    if count == 0]
    print("| folder | lines run | | branches taken | |\n|---|--:|--:|--:|--:|")
    for folder, (line_counts, branch_counts) in sorted(folders.items()):
        print(f"| `{folder}` | {' | '.join(share(line_counts) + share(branch_counts))} |")
    (build / "not_run.txt").write_text("".join(line + "\n" for line in not_run))
    print(f"\n{len(not_run)} lines that nothing ran: {build / 'not_run.txt'}")


if __name__ == "__main__":
    main()
