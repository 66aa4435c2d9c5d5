#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Checks the built libraries and the sources against tests/layers.txt: calls go down only. The rooms
of platform/qt are layers like any other.

Usage: calls.py BUILD-FOLDER [NM]
Prints each violation and ends with 1:
  - a call, or any other use of a name, from a layer to one that its row does not name;
  - an include of a header of such a layer;
  - a row that names a layer below it in the table, or one that it does not use;
  - a library of the program without a row;
  - a circle of calls among the files of a layer without a row "circle";
  - a row that differs from the page docs/architecture.md.
"""
import collections
import pathlib
import re
import subprocess
import sys

from layer_table import TOP, circles, layers, rooms

SERVICES = "platform_services"
HOST = "platform_host"
SYMBOL = re.compile(r":([^:]+)\.o:\s*[0-9a-f]*\s([A-Za-z]) (\S+)$")
LIBRARY = re.compile(r"^quill_library\((\w+)", re.M)
INCLUDE = re.compile(r'^#include "([^"]+)/[^/"]+"', re.M)


def symbols(nm, library):
    """For each file of a library, the names that it defines and those that it needs."""
    listing = subprocess.run([nm, "-A", library], capture_output=True, text=True, check=True)
    defined, needed = {}, collections.defaultdict(set)
    for line in listing.stdout.splitlines():
        found = SYMBOL.search(line)
        if not found:
            continue
        name = found[1].split(".")[0]
        if found[2] in "TDBRGS":
            defined[found[3]] = name
        elif found[2] == "U":
            needed[name].add(found[3])
    return defined, needed


def plain(name):
    return subprocess.run(["c++filt", name], capture_output=True, text=True).stdout.strip()


def find_libraries(build, table):
    """The libraries by layer, and the libraries of the build without a row."""
    folders = {name: "platform/qt" if layer.is_room else layer.folder
               for name, layer in table.items()}
    found = {name: pathlib.Path(build) / folder / f"lib{name}.a" for name, folder in folders.items()}
    complaints = [f"{path}: no such library" for path in found.values() if not path.exists()]
    for lists in sorted(TOP.glob("[a-z]*/**/CMakeLists.txt")):
        if lists.relative_to(TOP).parts[0] in ("build", "platform", "tests", "fuzz", "bench", "demo"):
            continue
        complaints += [f"{name}: a library without a row"
                       for name in LIBRARY.findall(lists.read_text()) if name not in table]
    return {name: path for name, path in found.items() if path.exists()}, complaints


def call_graph(libraries, nm):
    """Uses between all files: (layer, file) -> (layer, file) -> names."""
    owner, needs = {}, {}
    for layer, path in libraries.items():
        defined, needed = symbols(nm, path)
        owner.update({name: (layer, file) for name, file in defined.items()})
        needs.update({(layer, file): names for file, names in needed.items()})
    graph = collections.defaultdict(lambda: collections.defaultdict(list))
    for user, names in needs.items():
        for name in names:
            target = owner.get(name)
            if target and target != user:
                graph[user][target].append(name)
    return graph


def platform_of(row, table):
    """The platform's rooms that a layer may call in addition to those in its row."""
    if row.platform == "services":
        return {SERVICES}
    every = {name for name, layer in table.items() if layer.is_room}
    return every - {HOST} if row.platform == "windows" else set()


def upward_calls(graph, table):
    complaints, used = [], collections.defaultdict(set)
    for (layer, file), targets in sorted(graph.items()):
        row = table[layer]
        allowed = set(row.below) | {layer} | platform_of(row, table)
        for (other, other_file), names in sorted(targets.items()):
            used[layer].add(other)
            if other not in allowed:
                names = ", ".join(plain(name) for name in sorted(names))
                complaints.append(f"{layer}/{file} calls {other}/{other_file}: {names}")
    return complaints, used


def wrong_includes(table):
    by_folder = {layer.folder: layer for layer in table.values()}
    complaints, used = [], collections.defaultdict(set)
    for layer in table.values():
        for path in layer.files(".h", ".cpp"):
            for folder in INCLUDE.findall(path.read_text()):
                other = by_folder.get(folder)
                if other:
                    used[layer.name].add(other.name)
                known = other and other.name in [layer.name, *layer.below]
                outside = folder.startswith(("platform", "tests", "demo", "fuzz"))
                if not known and (other or outside):
                    complaints.append(f"{path.relative_to(TOP)} includes a header of {folder}/")
    return complaints, used


def wrong_rows(table, used):
    complaints, below = [], set()
    for layer in table.values():
        complaints += [f"{layer.name}: {name} does not stand above it in the table"
                       for name in layer.below if name not in below]
        complaints += [f"{layer.name}: does not use {name}"
                       for name in layer.below if name in below and name not in used[layer.name]]
        below.add(layer.name)
    return complaints


def groups(graph):
    """The files of each layer that call each other in a circle (Tarjan)."""
    order, low, stack, on_stack, found = {}, {}, [], set(), []

    def visit(node):
        order[node] = low[node] = len(order)
        stack.append(node)
        on_stack.add(node)
        for target in graph.get(node, {}):
            if target[0] != node[0]:
                continue
            if target not in order:
                visit(target)
                low[node] = min(low[node], low[target])
            elif target in on_stack:
                low[node] = min(low[node], order[target])
        if low[node] == order[node]:
            group = set()
            while node not in group:
                group.add(stack.pop())
            on_stack.difference_update(group)
            if len(group) > 1:
                found.append(frozenset("/".join(file) for file in group))

    for node in list(graph):
        if node not in order:
            visit(node)
    return found


def wrong_circles(graph):
    known, found = circles(), groups(graph)
    return ([f"circle: {' '.join(sorted(group))}" for group in found if group not in known] +
            [f"no such circle any more: {' '.join(sorted(group))}" for group in known
             if group not in found])


def wrong_page(table):
    """The page's rows: folder, what it holds, which folders it calls, in the order of the table."""
    page = (TOP / "docs" / "architecture.md").read_text()
    told = {folder: re.findall(r"`([^`]+)/`", calls)
            for folder, calls in re.findall(r"^\| `([\w/]+)/` \|.*\| ?([^|]*) \|$", page, re.M)}
    wanted = {layer.folder: [table[name].folder for name in layer.below] for layer in table.values()}
    complaints = [f"docs/architecture.md: {folder}/ calls {calls}, the page says {told.get(folder)}"
                  for folder, calls in wanted.items() if told.get(folder) != calls]
    order = [folder for folder in told if folder in wanted]
    return complaints + ([] if order == list(wanted) else ["docs/architecture.md: another order"])


def main():
    sys.setrecursionlimit(10000)
    build, nm = sys.argv[1], (sys.argv[2:] or ["nm"])[0]
    table = {**layers(), **rooms()}
    libraries, complaints = find_libraries(build, table)
    graph = call_graph(libraries, nm)
    called, used = upward_calls(graph, table)
    included, used_headers = wrong_includes(table)
    for layer, others in used_headers.items():
        used[layer] |= others
    complaints += called + included + wrong_rows(table, used) + wrong_circles(graph)
    complaints += wrong_page(table)
    if complaints:
        print("\n".join(complaints))
        sys.exit(1)
    calls = sum(len(targets) for targets in graph.values())
    print(f"{len(libraries)} libraries, {calls} pairs of files: calls go down only")


main()
