#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Checks that every file named in a page or a comment exists.

A name with a folder starts at the top of the tree, at the folder of the file that names it, or at a
folder above that one. A name without a folder may be any file of the tree. In pages, names in
backquotes and targets of links count.
"""
import os
import pathlib
import re
import subprocess
import sys

from layer_table import TOP

SUFFIXES = r"(?:cpp|h|py|sh|rc|ti|txt|md|test|cmake|dict|json|png|htm)"
NAME = re.compile(r"(?<![\w/.*<$-])((?:[\w.-]+/)*[\w-]+\." + SUFFIXES + r")(?![\w/*-])")
FOLDER = re.compile(r"^[\w./-]+/$")
QUOTED = re.compile(r"`([^`\n]+)`|\]\(([^)#:]+)(?:#[^)]*)?\)")
COMMENT = re.compile(r"(?:^|\s)(?://|/\*|#)\s(.*)$", re.M)
PAGES = (".md",)
SOURCES = (".cpp", ".h", ".py", ".sh", ".rc", ".cmake", ".txt")
# The system's own headers, and a pattern of names.
ELSEWHERE = ("winsock2.h", "winsock.h", "windows.h", "commctrl.h", "commdlg.h", "prsht.h", "raserror.h",
             "aygshell.h", "sipapi.h", "not_run.txt", "ras.h", "term.h", "NUMBER-NAME.txt", "totals.json",
             "build/fuzz-run/totals.json")


def listed():
    run = subprocess.run(["git", "-C", TOP, "ls-files", "-co", "--exclude-standard"],
                         capture_output=True, text=True)
    if run.returncode == 0:
        names = [name for name in run.stdout.splitlines() if (TOP / name).exists()]
    else:  # a source tree from an archive, without git
        names = [str(path.relative_to(TOP)) for path in TOP.rglob("*") if path.is_file()]
    return [name for name in names if not name.startswith(("build/", ".git/"))]


def words_of(path, text):
    if path.suffix in PAGES:
        return [quoted or link for quoted, link in QUOTED.findall(text)]
    return COMMENT.findall(text)


def main():
    files = listed()
    known, bare = set(files), {pathlib.Path(name).name for name in files}
    folders = {str(parent) for name in files for parent in pathlib.Path(name).parents}
    complaints, count = [], 0
    for name in files:
        path = TOP / name
        if path.suffix not in PAGES + SOURCES or name.startswith("fuzz/corpus/"):
            continue
        near = [pathlib.Path(name).parent, *pathlib.Path(name).parent.parents]

        def exists(file):
            if "/" not in file:
                return file in bare
            return any(os.path.normpath(folder / file) in known for folder in near)

        for words in words_of(path, path.read_text(errors="replace")):
            named = NAME.findall(words)
            if path.suffix in PAGES and FOLDER.match(words) and words.rstrip("/") not in folders:
                complaints.append(f"{name} names the folder {words}, which is not there")
            for file in named:
                count += 1
                if not exists(file) and file not in ELSEWHERE:
                    complaints.append(f"{name} names {file}, which is not there")
    if complaints:
        print("\n".join(complaints))
        sys.exit(1)
    print(f"{count} names of files: each of them exists")


main()
