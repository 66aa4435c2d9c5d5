# SPDX-License-Identifier: MIT
"""Rewrites a source file so that it holds all its mutants, each behind a switch of switch.h. One build then
serves all of them."""
import re

from operators import blanked

FIRST_LINE = '#include "tests/mutants/switch.h"'
# Outermost first, where two begin or end at the same place.
KINDS = ("statement", "condition", "logic", "arguments", "step", "number", "word", "operator")
CLOSES, OPENS = {")": "(", "]": "[", "}": "{"}, "([{"
OPERAND = r"[A-Za-z_]\w*(?:(?:\.|->)\w+|\[[\w.]+\])*"
# What begins here is computed by the compiler, or for instructions that the switches do not know.
NEVER = re.compile(r"(?!\s*#)(?:\s*(?:inline )?(?:static )?constexpr\b|\s*case\b|.*\bif constexpr\b|\s*template\b|"
                   r"\s*enum\b|.*\b\w+_TARGET\b)")

ARRAY = re.compile(r"\s*(?:(?:static|const|unsigned|alignas\(\d+\)) )*[A-Z_a-z][\w:<>]*[ *&]+\w+\[.*\]"
                   r"(?: = .*|\{.*)?[;,)]")


class Switch:
    """What is inserted at the begin and at the end of a span, and in place of what is inside."""

    def __init__(self, kind, begin, end, before, after, inside=None):
        self.rank, self.begin, self.end = KINDS.index(kind), begin, end
        self.before, self.after, self.inside = before, after, inside


def operand_begin(code, at, stops):
    """Where the left operand begins of an operator at `at`."""
    depth, i = 0, at
    while i > 0:
        c = code[i - 1]
        if c in CLOSES:
            depth += 1
        elif c in OPENS:
            if depth == 0:
                break
            depth -= 1
        elif depth == 0:
            if c in ",;?" or code[i - 2:i] in stops:
                break
            if c == ":" and code[i - 2] != ":" and code[i:i + 1] != ":":
                break
            if c == "=" and code[i - 2] not in "=!<>" and code[i:i + 1] != "=":
                break
            if re.search(r"\breturn$", code[max(0, i - 7):i]):
                break
        i -= 1
    return i + len(code[i:at]) - len(code[i:at].lstrip())


def operand_end(code, at, stops):
    depth, i = 0, at
    while i < len(code):
        c = code[i]
        if c in OPENS:
            depth += 1
        elif c in CLOSES:
            if depth == 0:
                break
            depth -= 1
        elif depth == 0:
            if c in ",;?" or code[i:i + 2] in stops:
                break
            if c == ":" and code[i - 1] != ":" and code[i + 1] != ":":
                break
        i += 1
    return at + len(code[at:i].rstrip())


def logic(code, begin, end, at):
    """a && b is (a == on ? on : b), and a || b is (a != on ? !on : b): with the switch on, the other one."""
    sign = code[begin:end].strip()
    left = operand_begin(code, begin, ("||",) if sign == "&&" else ())
    right = operand_end(code, end, ("&&", "||") if sign == "&&" else ("||",))
    middle = (f") == mutants::On({at}) ? mutants::On({at}) : static_cast<bool>(" if sign == "&&" else
              f") != mutants::On({at}) ? !mutants::On({at}) : static_cast<bool>(")
    return [Switch("logic", left, right, "(static_cast<bool>(", "))", (begin, end, middle))]


def step(code, begin, end, at):
    after = re.compile(OPERAND).match(code, end)
    if after:
        return [Switch("step", begin, after.end(), f"mutants::Stepped({at}, ", ")", (begin, end, ""))]
    before = re.search(OPERAND + r"$", code[max(0, begin - 80):begin])
    if before:
        return [Switch("step", begin - len(before.group()), end, f"mutants::SteppedAfter({at}, ", ")",
                       (begin, end, ""))]
    return []


def switches_of(mutant, code, offset, at):
    """The switches of one mutant. The second one of a number is made with the first."""
    spans = [(begin + offset, end + offset) for begin, end in mutant.spans]
    begin, end = spans[0]
    if mutant.kind == "statement":
        return [Switch("statement", begin, end, f"{{ if (!mutants::On({at})) ", " }")]
    if mutant.kind == "condition":
        return [Switch("condition", begin, end, f"mutants::Negated({at}, (", "))")]
    if mutant.kind == "logic":
        return logic(code, begin, end, at)
    if mutant.kind == "step":
        return step(code, begin, end, at)
    if mutant.kind == "operator":
        sign = code[begin:end].strip()
        return [Switch("operator", begin, end, "", "", (begin, end, f" {sign} mutants::At({at}) {sign} "))]
    if mutant.kind == "word":
        other = "false" if code[begin:end] == "true" else "true"
        return [Switch("word", begin, end, f"mutants::Number({at}, ", f", {other})")]
    if mutant.kind == "arguments":
        first, second = (code[a:b] for a, b in spans)
        return [Switch("arguments", *spans[0], f"(mutants::On({at}) ? {second} : ", ")"),
                Switch("arguments", *spans[1], f"(mutants::On({at}) ? {first} : ", ")")]
    return []


def number(code, begin, end, more, less):
    suffix = re.compile(r"[uUlL]*").match(code, end).group()
    text, value = code[begin:end], int(code[begin:end], 0)
    base = hex if text.lower().startswith("0x") else str
    if less is None:
        before, after = f"mutants::Number({more}, ", f", {base(value + 1)}{suffix})"
    else:
        before, after = f"mutants::ByOne({more}, {less}, ", f", {base(value + 1)}{suffix}, {base(value - 1)}{suffix})"
    return Switch("number", begin, end + len(suffix), before, after)


def crossing(switches):
    """The names of those that cross another one."""
    names, around = set(), []
    for s in sorted(switches, key=lambda s: (s.begin, -s.end)):
        while around and around[-1].end <= s.begin:
            around.pop()
        if around and around[-1].end < s.end:
            names |= s.names
        else:
            around.append(s)
    return names


def apply(text, switches):
    events = []  # (place, order, text to insert, where the original goes on)
    for s in switches:
        size = s.end - s.begin
        events.append((s.begin, (2, -size, s.rank), s.before, s.begin))
        events.append((s.end, (1, size, -s.rank), s.after, s.end))
        if s.inside:
            events.append((s.inside[0], (3, 0, 0), s.inside[2], s.inside[1]))
    out, done = [], 0
    for place, _, insertion, goes_on in sorted(events):
        out += [text[done:place], insertion]
        done = max(done, goes_on)
    return "".join(out + [text[done:]])


def constant_lines(lines):
    """The lines of what the compiler computes: tables and procedures that are constexpr, the sizes of arrays, and
    case labels; and macros, which may be used in these."""
    constant, depth, inside = set(), 0, False
    for i, line in enumerate(lines):
        if line.endswith("\\") or i > 0 and lines[i - 1].endswith("\\"):
            constant.add(i)
            continue
        inside = inside or bool(NEVER.match(line))
        if not inside:
            if ARRAY.match(line) and not line.lstrip().startswith(("return", "delete")):
                constant.add(i)
            continue
        constant.add(i)
        depth += sum(line.count(c) for c in OPENS) - sum(line.count(c) for c in CLOSES)
        if depth <= 0 and (re.search(r"[;}:]\s*$", line) or line.lstrip().startswith("case")):
            depth, inside = 0, False
    return constant


def with_switches(text, mutants, first, left_out):
    """(the text with a switch for each mutant but those of left_out, their names). Mutant i of the file has
    the number first + i. The lines keep their numbers; the first one is a comment and makes place."""
    code, offsets = blanked(text, "x"), [0]
    for line in text.split("\n"):
        offsets.append(offsets[-1] + len(line) + 1)
    constant = constant_lines(code.split("\n"))
    switches, names, done = [], set(), set()
    for i, mutant in enumerate(mutants):
        if mutant.kind is None or mutant.name in left_out or mutant.number in constant or i in done:
            continue
        offset = offsets[mutant.number]
        if mutant.kind == "number":
            following = mutants[i + 1] if i + 1 < len(mutants) else None
            both = following is not None and following.spans == mutant.spans and following.number == mutant.number
            begin, end = (place + offset for place in mutant.spans[0])
            made = [number(code, begin, end, first + i, first + i + 1 if both else None)]
            done |= {i + 1} if both else set()
            held = {mutant.name} | ({following.name} if both else set())
        else:
            made, held = switches_of(mutant, code, offset, first + i), {mutant.name}
        for s in made:
            s.names = held
        switches += made
    crossed = crossing(switches)
    kept = [s for s in switches if not s.names & crossed]
    for s in kept:
        names |= s.names
    assert text.startswith("//")
    return FIRST_LINE + apply(text, kept)[text.index("\n"):], names
