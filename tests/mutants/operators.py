# SPDX-License-Identifier: MIT
"""The mutants of a source file: one line changed by one operator."""
import collections
import hashlib
import re

# name: known by file, text and operator, not by its line. number: of the line, from 0. old and new: the line,
# or two rows. kind and spans: for switches.py, what is changed and where in the line; None for a row.
Mutant = collections.namedtuple("Mutant", "name number operator old new kind spans")

# The operators see code alone.
NOT_CODE = re.compile(r'//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])+\'', re.S)
SWAPS = [(" < ", " <= "), (" <= ", " < "), (" > ", " >= "), (" >= ", " > "), (" == ", " != "),
         (" != ", " == "), (" && ", " || "), (" || ", " && "), (" & ", " | "), (" | ", " & "),
         (" + ", " - "), (" - ", " + "), (" << ", " >> "), (" >> ", " << "), (" += ", " -= "),
         (" -= ", " += "), ("++", "--"), ("|= ", "&= "), ("&= ", "|= "), ("true", "false"),
         ("false", "true")]
NUMBER = re.compile(r"(?<![\w.'])(0[xX][0-9a-fA-F]+|0|[1-9]\d*)(?=[uUlL]*\b)(?!\.)")
CONDITION = re.compile(r"\b(if|while) \((.*)\)(?= \{$| [^()]*;$|$)")
STATEMENT = re.compile(r"^\s+(?!return\b|else\b|case\b|using\b|typedef\b|delete\b|const\b|static\b)"
                       r"(?:[\w.:>\[\]*-]+(?:\(.*\)|(?: [-+|&^]?=|<<=|>>=) [^{]*)|[\w.>\[\]-]+(?:\+\+|--))\s*;\s*$")
DECLARATION = re.compile(r"^\s+(?:[A-Za-z_][\w:<>]*[ *&]+)+\w+(?:\[.*\])?(?: = .*|\(.*\))?;")
EARLY = re.compile(r"^(\s+)(?:if \(.*\) )?(return\b[^;]*|break|continue);\s*$")
CALL = re.compile(r"\b\w+\(([\w.\->]+), ([\w.\->]+)\)")
CONTINUED = re.compile(r"[=,(?&|+<-]\s*$|\breturn\s*$")  # the next line belongs to the same statement
ROW = re.compile(r"^\s+\{.*\},?\s*$")


def blanked(text, literal=" "):
    """Comments become blanks, and strings and characters the letter `literal`."""
    return NOT_CODE.sub(lambda m: re.sub(r"[^\n]", " " if m.group()[0] == "/" else literal, m.group()), text)


def swapped(line, code):
    for before, after in SWAPS:
        for at in (m.start() for m in re.finditer(re.escape(before), code)):
            if before.isalpha() and not re.match(rf"\b{before}\b", code[at:]):
                continue
            kind = "word" if before.isalpha() else "logic" if before in (" && ", " || ") else "operator"
            yield (f"{before.strip()} to {after.strip()}", line[:at] + after + line[at + len(before):],
                   "step" if before == "++" else kind, [(at, at + len(before))])


def by_one(line, code):
    for m in NUMBER.finditer(code):
        value = int(m.group(), 0)
        for other in (value + 1, value - 1):
            if other >= 0:
                text = hex(other) if m.group().lower().startswith("0x") else str(other)
                yield ("constant by one", line[:m.start()] + text + line[m.end():],
                       "number", [(m.start(), m.end())])


def negated(line, code):
    for m in CONDITION.finditer(code):
        if m.group(2).count("(") == m.group(2).count(")") and ";" not in m.group(2):
            yield ("negated condition", f"{line[:m.start(2)]}!({line[m.start(2):m.end(2)]}){line[m.end(2):]}",
                   "condition", [m.span(2)])


def dropped(line, code):
    span = [(len(code) - len(code.lstrip()), len(code.rstrip()))]
    if EARLY.match(code) and code.lstrip().startswith("if"):
        yield "early return dropped", "", "statement", span
    elif EARLY.match(code) and re.match(r"\s+(break|continue);", code):
        yield "break dropped", "", "statement", span
    elif STATEMENT.match(code) and not DECLARATION.match(code):
        yield "statement dropped", "", "statement", span


def exchanged(line, code):
    for m in CALL.finditer(code):
        if m.group(1) != m.group(2):
            a, b = line[m.start(1):m.end(1)], line[m.start(2):m.end(2)]
            yield ("arguments swapped", line[:m.start(1)] + b + ", " + a + line[m.end(2):],
                   "arguments", [m.span(1), m.span(2)])


def file_mutants(path, text):
    lines, codes = text.split("\n"), blanked(text).split("\n")
    seen, found = {}, []

    def add(number, operator, old, new, kind=None, spans=None):
        key = f"{path}|{old.strip()}|{operator}|{new.strip()}"
        seen[key] = seen.get(key, 0) + 1
        name = hashlib.sha1(f"{key}|{seen[key]}".encode()).hexdigest()[:12]
        found.append(Mutant(name, number, operator, old, new, kind, spans))

    for i, (line, code) in enumerate(zip(lines, codes)):
        if re.match(r"\s*(#|static_assert|extern\b|$)", code):
            continue
        goes_on = CONTINUED.search(codes[i - 1])
        for find in (swapped, by_one, negated, exchanged) + (() if goes_on else (dropped,)):
            for operator, new, kind, spans in find(line, code):
                add(i, operator, line, new, kind, spans)
        if ROW.match(code):
            add(i, "row dropped", line, "")
            if i + 1 < len(lines) and ROW.match(codes[i + 1]):
                add(i, "rows exchanged", line + "\n" + lines[i + 1], lines[i + 1] + "\n" + line)
    return found
