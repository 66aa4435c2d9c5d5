#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Checks that one of the first two lines of every source is the licence line that fits LICENSE.

Usage: spdx.py [--write]
--write adds the line to the files that lack it. Sources are the files of the program, the tests, the
scripts and the build, but not pages, pictures, and data and conversations of the tests.
"""
import pathlib
import subprocess
import sys

from layer_table import TOP

LICENCES = {"MIT License": "MIT"}
WORD = "SPDX-" "License-Identifier: "
SLASHES = (".cpp", ".h", ".S")
HASHES = (".py", ".sh", ".cmake", ".yml")
STARS = (".rc", ".in")


def listed():
    run = subprocess.run(["git", "-C", TOP, "ls-files", "-co", "--exclude-standard"],
                         capture_output=True, text=True)
    if run.returncode == 0:
        names = run.stdout.splitlines()
    else:  # a source tree from an archive, without git
        names = [str(path.relative_to(TOP)) for path in TOP.rglob("*")]
    return sorted(name for name in names
                  if (TOP / name).is_file() and not name.startswith(("build/", ".git/", "fuzz/corpus/")))


def line_for(name, first):
    """The licence line as a comment of the file's language; None if the file needs no line."""
    path = pathlib.Path(name)
    text = WORD + LICENCES[(TOP / "LICENSE").read_text().splitlines()[0]]
    if ".json" in path.suffixes:  # has no comments
        return None
    if first.startswith("/*") or path.suffix in STARS:
        return f"/* {text} */"
    if path.suffix in SLASHES:
        return f"// {text}"
    if path.suffix in HASHES or path.name == "CMakeLists.txt" or first.startswith("#!"):
        return f"# {text}"
    return None


def main():
    complaints, count = [], 0
    for name in listed():
        content = (TOP / name).read_bytes()
        lines = content.split(b"\n", 2)
        line = line_for(name, lines[0].decode(errors="replace"))
        if not line:
            continue
        count += 1
        place = 1 if lines[0].startswith(b"#!") else 0
        if len(lines) > place and lines[place].decode(errors="replace") == line:
            continue
        if "--write" in sys.argv[1:]:
            head = content.split(b"\n", place)
            (TOP / name).write_bytes(b"\n".join(head[:place] + [line.encode()] + head[place:]))
        else:
            complaints.append(f"{name} does not say {line}")
    if complaints:
        print("\n".join(complaints))
        sys.exit(1)
    print(f"{count} sources name their licence")


main()
