# SPDX-License-Identifier: MIT
"""What became of each mutant (the list), and which survivors change nothing (equal.txt)."""
import pathlib
import re
import sys

from programs import LIST

BY_BUILD = "(by build)"  # at the end of what noticed a mutant that was built alone
EQUAL = pathlib.Path(__file__).with_name("equal.txt")


def read_list():
    rows = {}
    if LIST.is_file():
        for line in LIST.read_text().splitlines():
            fields = line.split("\t")
            rows[fields[0]] = fields
    return rows


def say_if_empty(rows):
    if not rows:
        print(f"No mutant has been tried here: {LIST} comes with the first run.", file=sys.stderr)


def keep(mutant, path, result, by):
    with LIST.open("a") as file:
        fields = [mutant.name, path, str(mutant.number + 1), mutant.operator, result, by, mutant.old.strip(),
                  mutant.new.strip()]
        file.write("\t".join(re.sub(r"\s+", " ", field) for field in fields) + "\n")


def present(rows, mutants):
    """Those rows whose mutant the tree still has."""
    names = {mutant.name for each in mutants.values() for mutant in each}
    return {name: fields for name, fields in rows.items() if name in names}


# ---------------------------------------------------------------- equal.txt

def read_equal():
    """(path, operator, line before, line after) of each entry: its reason. A reason without entries before it is
    that of a group: empty lines part the groups."""
    found, group = {}, []
    for line in EQUAL.read_text().splitlines() if EQUAL.is_file() else []:
        if not line.strip():
            group = []
        elif line.startswith("    - "):
            group[-1][2] = line[6:].strip()
        elif line.startswith("    +"):
            group[-1][3] = line[6:].strip()
        elif line.startswith("    "):
            for each in group:
                found[tuple(each)] = f"{found.get(tuple(each), '')} {line.strip()}".strip()
        elif not line.startswith("#"):
            group.append([*line.split(": ", 1), "", ""])
    return found


def keyed(mutants):
    """The mutants by what equal.txt has of them. Equal lines of a file are numbered from the second one on."""
    found = {}
    for path, each in mutants.items():
        for m in each:
            texts = [re.sub(r"\s+", " ", text.strip()) for text in (m.old, m.new)]
            number = 1
            while (key := (path, m.operator + (f" #{number}" if number > 1 else ""), *texts)) in found:
                number += 1
            found[key] = m.name
    return found


def equal_names(rows, mutants):
    """The names of the survivors of equal.txt. It says which entries no longer fit."""
    by_key, names = keyed(mutants), set()
    for key in read_equal():
        name = by_key.get(key)
        if name is None:
            print(f"equal.txt: {key[0]} has no such mutant: {key[1]}: {key[2]}", file=sys.stderr)
        elif name in rows and rows[name][4] == "killed":
            print(f"equal.txt: {rows[name][5]} notices {key[0]}: {key[1]}: {key[2]}", file=sys.stderr)
        elif name in rows:
            names.add(name)
    return names


# ---------------------------------------------------------------- prints

def percent(part, whole):
    return f"{100 * part / whole:.1f} %" if whole else "-"


def print_table(mutants, folder_of):
    """caught: of all that build. of the rest: without those that equal.txt has."""
    rows = read_list()
    say_if_empty(rows)
    fitting = present(rows, mutants)
    equal = equal_names(fitting, mutants)
    counts, total, built = {}, {}, {}
    for name, fields in fitting.items():
        result = "equal" if name in equal else fields[4]
        alone = fields[5].endswith(BY_BUILD)
        for row in (built,) if alone else (counts.setdefault(folder_of(fields[1]), {}), total):
            row[result] = row.get(result, 0) + 1
    print("| folder | mutants that build | killed | survived | shown to be equal | caught | of the rest | did not build |",
          "|---|--:|--:|--:|--:|--:|--:|--:|", sep="\n")
    for folder, row in sorted(counts.items()) + [("all", total)] + ([("by build", built)] if built else []):
        killed, survived, same, broken = (row.get(k, 0) for k in ("killed", "survived", "equal", "did not build"))
        print(f"| `{folder}` | {killed + survived + same} | {killed} | {survived} | {same} | "
              f"{percent(killed, killed + survived + same)} | {percent(killed, killed + survived)} | {broken} |")
    if len(fitting) < len(rows):
        print(f"\n{len(rows) - len(fitting)} mutants of lines that have changed since are not counted.")


def print_survivors(mutants):
    rows = present(read_list(), mutants)
    say_if_empty(rows)
    equal = equal_names(rows, mutants)
    operators = {name: key[1] for key, name in keyed(mutants).items()}
    for name, fields in sorted(rows.items(), key=lambda row: (row[1][1], int(row[1][2]))):
        if fields[4] == "survived" and name not in equal:
            reached = f" ({fields[5].strip('()')})" if fields[5] else ""
            print(f"{name} {fields[1]}:{fields[2]}: {operators[name]}{reached}\n    - {fields[6]}\n    + {fields[7]}")
