#!/bin/sh
# SPDX-License-Identifier: MIT
# Puts the entry of resources/quill.ti into the first box of docs/hosts.md: without remarks, and with
# blanks for the tabs, which a shell would complete.
# Usage: docs/hosts_entry.sh
set -eu
cd "$(dirname "$0")"
entry=$(mktemp "${TMPDIR:-/tmp}/quill-entry.XXXXXX")
trap 'rm -f "$entry" "$entry.page"' EXIT
tab=$(printf '\t')
sed -e '/^#/d' -e '/^$/d' -e "s/^$tab/    /" ../resources/quill.ti >"$entry"
awk -v entry="$entry" '
    inside && $0 == "END" { inside = 0 }
    !inside { print }
    /^cat >"\$HOME\/quill\.ti" <</ { inside = 1; while ((getline line < entry) > 0) print line }
' hosts.md >"$entry.page"
cat "$entry.page" >hosts.md
