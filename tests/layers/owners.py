#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Checks that only the owners that session/session_state.h names write to its sections.

Usage: owners.py [COMPILER]
Each file of the program is compiled, without any output, against a copy of the session record in
which the sections of other owners are const. The compiler then reports every other writer: an
assignment, a reference or a pointer that allows writing, a call such as store().
"""
import collections
import concurrent.futures
import os
import pathlib
import re
import subprocess
import sys
import tempfile

from layer_table import TOP, layers

HEADER = "session/session_state.h"
SETTINGS = "session/settings_types.h"
ALSO = re.compile(r"settings\.(\w+) by ([\w/]+)")
OWNER = re.compile(r"(?:ui|app|session|settings|terminal|protocol|connection)/[\w/]*")


class Section:
    def __init__(self, owners, also):
        self.owners = owners
        self.also = also  # of single fields: name -> owner
        self.lines = []

    def written_by(self, source):
        return any(owns(owner, source) for owner in self.owners)

    def fields_of(self, source):
        return frozenset(field for field, owner in self.also if owns(owner, source))


def owns(owner, source):
    return source.startswith(owner) if owner.endswith("/") else source == owner + ".cpp"


def read_sections(lines):
    """The sections of SessionState by line numbers."""
    start = lines.index("struct SessionState {")
    end = lines.index("};", start)
    sections, note = [], ""
    for number in range(start + 1, end):
        text = lines[number].strip()
        if text.startswith("//"):
            note += " " + text[2:].strip()
            continue
        if note:
            if "Owner:" not in note:
                sys.exit(f"{HEADER}: a section without an owner: {note.strip()}")
            told, also = (note.split("Also:") + [""])[:2]
            named = told.split("Owner:")[1].split(". ")[0]
            sections.append(Section(OWNER.findall(named), ALSO.findall(also)))
            note = ""
        if text and text != "SessionState();":
            if not sections:
                sys.exit(f"{HEADER}: a field before the first owner")
            sections[-1].lines.append(number)
    return sections


def wrong_owners(sections, sources):
    named = [o for s in sections for o in s.owners + [owner for _, owner in s.also]]
    return [f"{HEADER}: no file of {owner}" for owner in named
            if not any(owns(owner, source) for source in sources)]


def frozen(line):
    return re.sub(r"^(\s*)(?=\w)", r"\1const ", line)


def write_header(folder, lines, writable):
    """The record as one owner sees it."""
    copy = list(lines)
    for section, mine in writable:
        if not mine:
            for number in section.lines:
                copy[number] = frozen(copy[number])
    (folder / "session").mkdir(parents=True)
    (folder / HEADER).write_text("\n".join(copy))


def write_settings(folder, fields):
    """The settings with all fields but these const."""
    text = (TOP / SETTINGS).read_text()
    head, body = text.split("struct Settings {")
    body, tail = body.split("};", 1)
    names = re.compile(r"^\s*\w+ (" + "|".join(fields) + r")\b")
    body = "\n".join(line if names.match(line) else frozen(line) for line in body.split("\n"))
    (folder / SETTINGS).write_text(head + "struct Settings {" + body + "};" + tail)


def complaints_of(compiler, folder, source):
    run = subprocess.run([compiler, "-std=c++20", "-fsyntax-only", "-w", f"-I{folder}", f"-I{TOP}",
                          f"-I{TOP}/platform", str(TOP / source)], capture_output=True, text=True)
    if run.returncode == 0:
        return []
    told = [line for line in run.stderr.splitlines() if "error:" in line]
    return [line.replace(f"{TOP}/", "").replace(f"{folder}/", "") for line in told or [run.stderr]]


def main():
    compiler = (sys.argv[1:] or ["c++"])[0]
    lines = (TOP / HEADER).read_text().splitlines()
    sections = read_sections(lines)
    sources = [str(path.relative_to(TOP)) for layer in layers().values()
               for path in layer.files(".cpp") if layer.name not in ("text", "crypto")]
    sources.remove("session/session_state.cpp")  # makes the record with its first values
    complaints = wrong_owners(sections, sources)

    views = collections.defaultdict(list)
    for source in sources:
        fields = frozenset().union(*(section.fields_of(source) for section in sections))
        mine = tuple(s.written_by(source) or bool(s.fields_of(source)) for s in sections)
        views[mine, fields].append(source)
    with tempfile.TemporaryDirectory() as scratch:
        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
            jobs = []
            for number, ((mine, fields), files) in enumerate(views.items()):
                folder = pathlib.Path(scratch) / str(number)
                write_header(folder, lines, list(zip(sections, mine)))
                if fields:
                    write_settings(folder, fields)
                jobs += [pool.submit(complaints_of, compiler, folder, file) for file in files]
            for job in jobs:
                complaints += job.result()
    if complaints:
        print("\n".join(complaints))
        sys.exit(1)
    print(f"{len(sections)} sections, {len(sources)} files: each is written by its owner alone")


main()
