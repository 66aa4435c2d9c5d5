#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Prints how many lines and branches of each product folder the tests ran, from a build with gcov's counts.

Usage: coverage.py BUILD [FOLDER...]
It prints the named folders, or all. The lines that no test ran go to BUILD/not_run.txt, each with the reason
that tests/not_run_reasons.txt has for it. Lines without a reason are printed, and reasons without such a line.
A branch is one outcome of a condition. What only an exception takes does not count: such branches, and the closing
brace of a procedure that ran otherwise.
"""
import collections
import json
import pathlib
import subprocess
import sys

# "FILE: TEXT # REASON", for the lines of the file with this text, or "FILE: NAME() # REASON", for those of a
# procedure.
REASONS = "tests/not_run_reasons.txt"
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
    """{file: {line: count}}, {file: {(line, branch): count}} and {file: {line: procedure}}; a header is the sum
    over its readers."""
    lines = collections.defaultdict(lambda: collections.defaultdict(int))
    procedures = collections.defaultdict(dict)
    branches = collections.defaultdict(lambda: collections.defaultdict(int))
    wanted = product_files()
    for report in reports(build):
        base = pathlib.Path(report["current_working_directory"])
        for file in report["files"]:
            path = (base / file["file"]).resolve()
            name = str(path.relative_to(TOP)) if path.is_relative_to(TOP) else ""
            if name not in wanted:
                continue
            for each in file["functions"]:
                plain = each["demangled_name"].split("(")[0].split("::")[-1].split(" ")[-1]
                for number in range(each["start_line"], each["end_line"] + 1):
                    procedures[name].setdefault(number, plain)
            texts = path.read_text().splitlines()
            for line in file["lines"]:
                number = line["line_number"]
                if line["count"] == 0 and texts[number - 1].strip() == "}":
                    continue
                lines[name][number] += line["count"]
                for i, branch in enumerate(b for b in line["branches"] if not b["throw"]):
                    branches[name][number, i] += branch["count"]
    return lines, branches, procedures


def folder_of(name):
    parts = name.split("/")[:-1]
    return "/".join(parts[:2]) if parts[0] in ("protocol", "ui", "platform") else parts[0]


def share(counts):
    ran = sum(count > 0 for count in counts)
    return f"{ran} of {len(counts)}", f"{100 * ran / len(counts):.1f} %" if counts else "-"


def read_reasons():
    """{(file, text or "NAME()"): reason}"""
    reasons = {}
    for line in (TOP / REASONS).read_text().splitlines():
        if line and not line.startswith("#"):
            place, reason = line.rsplit(" # ", 1)
            name, text = place.split(": ", 1)
            reasons[name, text] = reason
    return reasons


def main():
    build = pathlib.Path(sys.argv[1]).resolve()
    lines, branches, procedures = gather(build)
    reasons = read_reasons()
    unused = {key for key in reasons if not sys.argv[2:] or folder_of(key[0]) in sys.argv[2:]}
    folders = collections.defaultdict(lambda: ([], []))
    not_run, unexplained = [], []
    for name in sorted(lines):
        folder = folder_of(name)
        if sys.argv[2:] and folder not in sys.argv[2:]:
            continue
        folders[folder][0].extend(lines[name].values())
        folders[folder][1].extend(branches[name].values())
        texts = (TOP / name).read_text().splitlines()
        for number in sorted(number for number, count in lines[name].items() if count == 0):
            text = texts[number - 1].strip()
            keys = {(name, text), (name, procedures[name].get(number, "") + "()")} & reasons.keys()
            unused -= keys
            not_run.append(f"{name}:{number}: {text}" + "".join(f" # {reasons[key]}" for key in keys))
            if not keys:
                unexplained.append(not_run[-1])
    print("| folder | lines run | | branches taken | |\n|---|--:|--:|--:|--:|")
    for folder, (line_counts, branch_counts) in sorted(folders.items()):
        print(f"| `{folder}` | {' | '.join(share(line_counts) + share(branch_counts))} |")
    (build / "not_run.txt").write_text("".join(line + "\n" for line in not_run))
    print(f"\n{len(not_run)} lines that nothing ran: {build / 'not_run.txt'}")
    print(f"{len(not_run) - len(unexplained)} of them have a reason; {len(unexplained)} have none")
    print("".join(f"    {line}\n" for line in unexplained), end="")
    for name, text in sorted(unused):
        print(f"{REASONS}: this line runs, or is gone: {name}: {text}")


if __name__ == "__main__":
    main()
