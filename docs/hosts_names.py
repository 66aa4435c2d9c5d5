#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Writes docs/hosts_names.md: which terminal names of the usual databases are right for this terminal.

Every name of this machine's terminfo database (install ncurses-term for the full one) is judged by
the proof of tests/hosts. Those without a broken promise that ends in a wrong screen are painted at
random. Those that show no wrong screen then are kept, and one name of each entry is walked through with
real programs, with the keys that the name asks for.
Usage: docs/hosts_names.py BUILD-FOLDER      (with judge_names, paint_names and walk_names built)
"""
import os
import re
import subprocess
import sys
import textwrap
from concurrent.futures import ThreadPoolExecutor

STEPS, SEEDS = 200, 5
PREFERRED = ["vt220d", "vt220-old", "vt102", "vt100"]  # of several that are alike
USUAL = ["vt220", "vt320", "vt420", "xterm", "linux", "screen", "ansi", "vt52"]
FOLDERS = ["/usr/share/terminfo", "/lib/terminfo", "/etc/terminfo"]
TOP = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))


def names_of_the_database():
    names = set()
    for folder in FOLDERS:
        for _, _, files in os.walk(folder):
            names.update(files)
    return sorted(name for name in names if "+" not in name)  # + marks a piece of an entry


class Judged:
    def __init__(self, line):
        fields = line.rstrip("\n").split("\t")
        self.name = fields[0]
        self.lacks = fields[6].split()[1:]
        self.findings = [re.match(r"(\w+) ([^:]+): (.*)", text).groups() for text in fields[7:]]

    def broken(self, loss):
        return [name for kind, name, _ in self.findings if kind == loss]

    def rows(self):
        """Rows of the key table to change, as (row, text)."""
        changes = []
        for kind, _, text in self.findings:
            if kind == "key":
                row, wanted = re.match(r"(.*) sends .*, not (.*)", text).groups()
                changes.append((row, wanted))
        return changes


def judge(build, names):
    output = subprocess.run([f"{build}/tests/hosts/judge_names"], input="\n".join(names) + "\n",
                            stdout=subprocess.PIPE, text=True, errors="replace", check=True).stdout
    return {entry.name: entry for entry in map(Judged, output.splitlines())}


def paint(build, names):
    """Wrong screens of each name, None if it cannot be painted with."""
    command = [f"{build}/tests/hosts/paint_names", str(STEPS), str(SEEDS), *names]
    output = subprocess.run(command, stdout=subprocess.PIPE, text=True, errors="replace",
                            check=True).stdout
    wrong = {}
    for line in output.splitlines():
        name, steps, _, bad = line.split()[:4]
        wrong[name] = int(bad) if int(steps) == STEPS * SEEDS else None
    return wrong


def walk(build, name):
    """The programs' steps, and the wrong ones as (program, count)."""
    output = subprocess.run([f"{build}/tests/hosts/walk_names", name, name], stdout=subprocess.PIPE,
                            text=True, errors="replace", check=True).stdout
    steps, wrong = 0, []
    for line in output.splitlines():
        _, program, done, _, bad = line.split()[:5]
        steps += int(done)
        if int(bad) or "ended early" in line:
            wrong.append((program, int(bad)))
    return steps, wrong


def code(texts):
    return " ".join(f"`{text}`" for text in texts)


def capabilities(name):
    text = subprocess.run(["infocmp", "-1", name], stdout=subprocess.PIPE, text=True, check=True).stdout
    return tuple(line for line in text.splitlines() if line.startswith("\t"))


def alike(right):
    """Names that share one entry, together."""
    groups = {}
    for entry in right:
        groups.setdefault(capabilities(entry.name), []).append(entry)
    return list(groups.values())


def right_row(group, painted, walked):
    entry = group[0]
    steps, wrong = walked.get(entry.name, (0, []))
    tried = f"{steps} steps, " + (", ".join(f"{n} wrong in {p}" for p, n in wrong) or "0 wrong")
    rows = "; ".join(f"{row} `{text}`" for row, text in entry.rows())
    names = ", ".join(f"`{each.name}`" for each in group)
    return (f"| {names} | {painted[entry.name]} | {tried if steps else ''} "
            f"| {code(entry.lacks) or 'nothing'} | {code(entry.broken('look')) or 'nothing'} "
            f"| {rows or 'none'} |")


def shown_wrong(entry, painted):
    return "cannot paint" if painted.get(entry.name) is None else painted[entry.name]


def wrong_row(entry, painted):
    return f"| `{entry.name}` | {shown_wrong(entry, painted)} | {code(entry.broken('screen'))} |"


def paragraph(text):
    return textwrap.wrap(text, 100, break_long_words=False, break_on_hyphens=False)


def page(right, refused, usual, painted, walked, count):
    lines = [
        "# Terminal names for hosts where nothing can be installed",
        "",
        *paragraph(
            "Written by `docs/hosts_names.py`. Where the entry `quill` can be installed it is the right name. "
            "Another name is kept when the proof finds no promise of it that ends in a wrong screen here, and "
            f"none of {STEPS * SEEDS} screens that a curses program paints at random is wrong. Of the {count} "
            f"names of ncurses' full database, {len(right)} are kept. Of those that the proof lets pass, the "
            f"painting refuses {len(refused)}, with so many wrong screens: "
            + ", ".join(f"`{entry.name}` {shown_wrong(entry, painted)}" for entry in refused)
            + ". The names that are kept are ranked by what they lose against `quill`, keys included. In short:"),
        "",
        "| the host has | name | keys |",
        "|---|---|---|",
        "| ncurses' full database (Debian: `ncurses-term`) | `vt220d` | as they are; the 8-bit ones changed, see below |",
        "| the small one (Debian: `ncurses-base`) | `vt102` | arrow keys changed, see below |",
        "| not even that one | `vt100` | arrow keys changed, see below |",
        "",
        *paragraph(
            f"The names of one row share one entry. *Wrong screens* are those of the {STEPS * SEEDS}; *programs* "
            "are vim, nano, less, mc, dialog, htop, top, tmux and w3m, walked through with the first name of "
            "the row, and with the rows of the key table changed as the last column says (Settings > "
            "Properties... > Keyboard). *Lacks* are capabilities of `quill` that programs do without, and keys "
            "that the name has no string for; *not shown* are promises that are broken and move no text by "
            "themselves: glyphs, flow control, a printer. The names that the painting refuses break no worse "
            "ones, so that alone makes no name right. Keys of the last column that are left as they are do "
            "nothing, or something else."),
        "",
        *paragraph(
            "The rows Ctrl 1 to Ctrl 4 send what f1 to f4 do at first, with an 8-bit byte. The last column "
            "leaves them out, since no name has a key of theirs: they stay 8-bit until they are changed, too, "
            "as f1 to f4. All these names expect that Backspace erases: `stty erase '^H'` on the host, or the "
            "row BACKSPACE changed to `\\177`."),
        "",
        "## Right names",
        "",
        "| name | wrong screens | programs | lacks | not shown | rows of the key table to change |",
        "|---|---|---|---|---|---|",
    ]
    lines += [right_row(group, painted, walked) for group in alike(right)]
    lines += [
        "",
        "## Usual names that go wrong",
        "",
        "| name | wrong screens | promises that end in wrong screens |",
        "|---|---|---|",
    ]
    lines += [wrong_row(entry, painted) for entry in usual]
    return "\n".join(lines) + "\n"


def main():
    build = os.path.abspath(sys.argv[1])
    os.environ["LSAN_OPTIONS"] = f"suppressions={TOP}/tests/lsan.supp:print_suppressions=0"  # as ./test
    names = names_of_the_database()
    judged = judge(build, names)
    right = [entry for entry in judged.values()
             if not entry.broken("screen") and "cup" not in entry.lacks]
    painted = paint(build, [entry.name for entry in right] + USUAL)
    refused = [entry for entry in right if painted[entry.name] != 0]
    right = [entry for entry in right if painted[entry.name] == 0]
    right.sort(key=lambda entry: (len(entry.lacks), len(entry.rows()), PREFERRED.index(entry.name)
                                  if entry.name in PREFERRED else len(PREFERRED), entry.name))
    firsts = [group[0].name for group in alike(right)]
    with ThreadPoolExecutor(len(firsts)) as pool:  # they mostly wait
        walked = dict(zip(firsts, pool.map(lambda name: walk(build, name), firsts)))
    usual = [judged[name] for name in USUAL if name in judged]
    with open(os.path.join(TOP, "docs", "hosts_names.md"), "w", encoding="utf-8") as file:
        file.write(page(right, refused, usual, painted, walked, len(names)))


if __name__ == "__main__":
    main()
