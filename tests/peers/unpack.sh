#!/bin/sh
# SPDX-License-Identifier: MIT
# Downloads Debian packages and unpacks them below build/peers/root without installing them: no file
# outside the build folder changes and no server starts. It does not download a package twice. Prints
# the folder. Exit codes: 0 done, 77 not possible here (no apt-get, or the package is not available), any
# other code an error.
# Usage: unpack.sh PACKAGE...
set -eu
[ $# -gt 0 ] || { echo "usage: unpack.sh PACKAGE..." >&2; exit 2; }

top=$(cd "$(dirname "$0")/../.." && pwd)
peers=${QUILL_PEERS_DIR:-$top/build/peers}
root=$peers/root
mkdir -p "$root" "$peers/done"

# Two tests may need the same package at the same time.
if [ -z "${QUILL_PEERS_LOCKED:-}" ] && command -v flock >/dev/null; then
    QUILL_PEERS_LOCKED=1 exec flock "$peers/lock" "$0" "$@"
fi

fetch() {
    fetched=$(mktemp -d "$peers/fetch.XXXXXX")
    trap 'rm -rf "$fetched"' EXIT
    (cd "$fetched" && apt-get -qq -o APT::Sandbox::User=root download "$1" >"$peers/fetch.log" 2>&1) || {
        echo "unpack.sh: cannot fetch $1" >&2
        exit 77
    }
    dpkg -x "$fetched"/*.deb "$root"
    rm -rf "$fetched"
    trap - EXIT
    : >"$peers/done/$1"
}

for package; do
    [ -e "$peers/done/$package" ] && continue
    command -v apt-get >/dev/null && command -v dpkg >/dev/null || {
        echo "unpack.sh: no apt-get to fetch $package with" >&2
        exit 77
    }
    fetch "$package"
done
echo "$root"
