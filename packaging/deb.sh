#!/bin/sh
# SPDX-License-Identifier: MIT
# Makes build/quill_VERSION_ARCHITECTURE.deb: the program, its help page, icons, the entry in the
# menu, the description for software centres, the manual page, the terminal's description and the
# licence. Installs missing packages, and builds the program unless BUILD names the folder of a build
# of the preset "package". The same sources give the same file: all times in it are the time of the
# last commit, or SOURCE_DATE_EPOCH.
# Usage: packaging/deb.sh [BUILD]
set -eu
cd "$(dirname "$0")/.."
. scripts/packages.sh
[ $# -le 1 ] || { echo "usage: packaging/deb.sh [BUILD]" >&2; exit 2; }
umask 022
export LC_ALL=C TZ=UTC

build=${1:-}
if [ -z "$build" ]; then
    install_packages $PACKAGES_BUILD $PACKAGES_DEB
    build=build/package
    echo "Building ..." >&2
    configure_preset package -DBUILD_TESTING=OFF
    build_preset package quill quill_terminfo
fi

version=$(sed -n 's/^project(quill VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
architecture=$(dpkg --print-architecture)
maintainer='The Quill authors <authors@quillware.org>'
[ -n "${SOURCE_DATE_EPOCH:-}" ] || SOURCE_DATE_EPOCH=$(git log -1 --format=%ct 2>/dev/null) ||
    SOURCE_DATE_EPOCH=$(stat -c %Y CHANGELOG.md)
export SOURCE_DATE_EPOCH
day=$(date -u -d "@$SOURCE_DATE_EPOCH" +%Y-%m-%d)

work=$(mktemp -d "${TMPDIR:-/tmp}/quill-package.XXXXXX")
trap 'rm -rf "$work"' EXIT
root=$work/root
documents=$root/usr/share/doc/quill
mkdir -p "$root/DEBIAN" "$root/usr/bin" "$documents" "$root/usr/share/terminfo/q" \
    "$root/usr/share/applications" "$root/usr/share/metainfo" "$root/usr/share/man/man1" "$work/debian"

dated() { sed -e "s/@VERSION@/$version/g" -e "s/@DATE@/$day/g" "$1"; }

strip --strip-unneeded -R .comment -R .note -o "$root/usr/bin/quill" "$build/platform/qt/quill"
cp resources/telnet.htm resources/quill.ti "$documents/"
# All documents lie in one folder, and the manual page is in place of the README. What only the sources
# have is called theirs.
pages='fleet hosts hosts_names sequences'
refer() {
    sed -E -e 's#\[README\]\(\.\./README\.md\)#quill(1)#g' \
        -e 's#\[resources/quill\.ti\]\(\.\./resources/quill\.ti\)#[quill.ti](quill.ti)#g' \
        -e "s#\`docs/($(echo "$pages" | tr ' ' '|'))\.md\`#\`\1.md\`#g" \
        -e 's#`(docs|packaging|protocol|terminal|tests|ui)/[^` ]*`#& of the sources#g'
}
for page in $pages; do refer <"docs/$page.md" >"$documents/$page.md"; done
cp "$build"/resources/terminfo/q/quill* "$root/usr/share/terminfo/q/"
cp packaging/desktop/quill.desktop "$root/usr/share/applications/"
dated packaging/desktop/quill.metainfo.xml >"$root/usr/share/metainfo/org.quillware.quill.metainfo.xml"
dated packaging/desktop/quill.1 | gzip -9n >"$root/usr/share/man/man1/quill.1.gz"
packaging/icons.sh "$root/usr/share/icons/hicolor"
refer <CHANGELOG.md | gzip -9n >"$documents/NEWS.md.gz"
gzip -9n >"$documents/changelog.gz" <<END
quill ($version) stable; urgency=medium

  * Changes are in NEWS.md.gz.

 -- $maintainer  $(date -u -R -d "@$SOURCE_DATE_EPOCH")
END
{
    echo 'Format: https://www.debian.org/doc/packaging-manuals/copyright-format/1.0/'
    echo
    echo 'Files: *'
    sed -n 's/^Copyright (c) /Copyright: /p' LICENSE
    echo 'License: Expat'
    sed -e '1,/^Copyright/d' LICENSE | sed -e '/./,$!d' -e 's/^$/./' -e 's/^/ /'
} >"$documents/copyright"

# The libraries that the program needs, from the symbol lists of their packages.
printf 'Source: quill\n\nPackage: quill\nArchitecture: any\n' >"$work/debian/control"
depends=$(cd "$work" && dpkg-shlibdeps -O -e"$root/usr/bin/quill" 2>"$work/log" |
    sed -n 's/^shlibs:Depends=//p')
[ -n "$depends" ] || { cat "$work/log" >&2; exit 1; }
(cd "$root" && find usr -type f | LC_ALL=C sort | xargs md5sum) >"$root/DEBIAN/md5sums"
cat >"$root/DEBIAN/control" <<END
Package: quill
Version: $version
Architecture: $architecture
Maintainer: $maintainer
Installed-Size: $(find "$root/usr" -type f -printf '%s\n' | awk '{ kib += int(($1 + 1023) / 1024) } END { print kib }')
Depends: $depends, fonts-dejavu-core | fonts-liberation | fonts-freefont-ttf
Recommends: qt6-wayland, xdg-utils
Suggests: ppp
Section: net
Priority: optional
Description: terminal client for Telnet, SSH-1.5 and SSH-2
 Quill opens a text session with a host and shows it in a terminal of 24 rows
 and 80 columns that knows the sequences of a VT100 and a VT220. It has a table
 of keys that can be changed, three toolbars, a panel of keys for a stylus,
 automatic login, and a terminal description for the host.
 .
 It is made for old hosts that cannot be replaced. Its SSH is the one that
 such hosts have, and does not protect a session on today's networks.
END

# Whoever made the sources' files, with whatever umask.
find "$root" -type d -exec chmod 755 {} +
find "$root" -type f -exec chmod 644 {} +
chmod 755 "$root/usr/bin/quill"
find "$root" -exec touch -h -d "@$SOURCE_DATE_EPOCH" {} +
package=$(pwd)/build/quill_${version}_$architecture.deb
mkdir -p build
rm -f "$package"
dpkg-deb --root-owner-group -Zxz --build "$root" "$package" >"$work/log" 2>&1 || {
    cat "$work/log" >&2
    exit 1
}
echo "$package"
