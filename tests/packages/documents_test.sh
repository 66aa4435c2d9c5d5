#!/bin/sh
# SPDX-License-Identifier: MIT
# What the package's documents refer to: each link, its heading, each file of the sources and each path
# of the system is in the package, or is called one of the sources.
# Usage: documents_test.sh PACKAGE      (after deb_test.sh, which makes it)
set -eu
. "$(dirname "$0")/../support/outside.sh"
need dpkg-deb
dpkg-deb -x "$1" "$work/root"
/usr/bin/python3 - "$work/root" "$(cd "$(dirname "$0")/../.." && pwd)" <<'END'
import gzip
import pathlib
import re
import sys

root, tree = map(pathlib.Path, sys.argv[1:])
folder = root / "usr/share/doc/quill"
faults, references = [], 0


def text_of(path):
    return (gzip.decompress(path.read_bytes()) if path.suffix == ".gz" else path.read_bytes()).decode()


def without_boxes(text):
    """Without what is to be pasted."""
    return re.sub(r"(?m)^(    .*|```[\s\S]*?^```)$", "", text)


def slugs(text):
    heads = re.findall(r"(?m)^#+ (.*)$", without_boxes(text))
    return {re.sub(r"[^\w\- ]", "", head.lower()).replace(" ", "-") for head in heads}


def refer(page, what, is_there):
    global references
    references += 1
    if not is_there:
        faults.append(f"{page.name} refers to {what}, which is not in the package")


def check_links(page, text):
    for target in re.findall(r"\]\(([^)]*)\)", text) + re.findall(r'(?:href|src)="([^"]*)"', text):
        if re.match(r"(https?|mailto):", target):
            continue
        name, _, anchor = target.partition("#")
        file = folder / name if name else page
        refer(page, target, file.exists())
        if anchor and file.exists():
            other = text_of(file)
            refer(page, target, anchor in slugs(other) or re.search(rf'(id|name)="{re.escape(anchor)}"', other))


# In code: a path of the sources, or the name of a document.
def check_files(page, text):
    tops = "|".join(each.name for each in tree.iterdir() if each.is_dir() and not each.name.startswith("."))
    for match in re.finditer(rf"(\.\./)?\b(?:{tops})/[\w./-]+|[\w./-]+\.(?:md|htm|ti)\b|\bREADME\b", text):
        # The paths of a system begin with a slash.
        if match.group().startswith("/") or text[match.start() - 1] == "/":
            continue
        sources = re.match(r"`?\)? of\s+the\s+sources", text[match.end():])
        refer(page, match.group(), sources or (folder / match.group()).exists() or (folder / (match.group() + ".gz")).exists())


def check_system(page, text):
    for path in re.findall(r"/usr/(?:share/(?:doc/quill|man|terminfo/q|applications)|bin)/[\w./-]*\w", text):
        if "quill" in path:
            refer(page, path, (root / path[1:]).exists() or (root / (path[1:] + ".gz")).exists())


pages = sorted(folder.glob("*.md")) + [folder / "NEWS.md.gz", folder / "telnet.htm", folder / "quill.ti",
                                       folder / "changelog.gz", root / "usr/share/man/man1/quill.1.gz",
                                       root / "usr/share/metainfo/org.quillware.quill.metainfo.xml"]
for page in pages:
    text = text_of(page)
    if page.name.endswith((".md", ".md.gz", ".htm")):
        check_links(page, text)
    check_files(page, without_boxes(text))
    check_system(page, text)
if faults:
    sys.exit("\n".join(faults))
assert references > 60, references
print(f"{references} references in {len(pages)} documents")
END
