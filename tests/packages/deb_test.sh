#!/bin/sh
# SPDX-License-Identifier: MIT
# The package as a file: the same twice, what is in it, what it needs, how the program in it is
# built, and what the judges of each file say.
# Usage: deb_test.sh BUILD      (the folder of a build of the preset "package")
set -eu
. "$(dirname "$0")/../support/outside.sh"
need dpkg-deb dpkg-shlibdeps rsvg-convert lintian desktop-file-validate appstreamcli man readelf objdump identify
build=$1
tree=$(cd "$(dirname "$0")/../.." && pwd)
unset SOURCE_DATE_EPOCH || :

# The same file, whoever makes it, where, and when.
package=$("$tree/packaging/deb.sh" "$build")
cp "$package" "$work/first.deb"
mkdir "$work/elsewhere"
cp -R "$build/resources" "$work/elsewhere/resources"
mkdir -p "$work/elsewhere/platform/qt"
cp "$build/platform/qt/quill" "$work/elsewhere/platform/qt/quill"
(umask 077 && cd / && TZ=Asia/Tokyo LC_ALL=C.UTF-8 TMPDIR="$work" "$tree/packaging/deb.sh" "$work/elsewhere") >/dev/null
cmp "$work/first.deb" "$package" || fail "two packages of one build differ"
SOURCE_DATE_EPOCH=1000000000 "$tree/packaging/deb.sh" "$build" >/dev/null
[ "$(dpkg-deb -c "$package" | awk '{ print $4 }' | sort -u)" = 2001-09-09 ] || fail "SOURCE_DATE_EPOCH is not followed"
cp "$work/first.deb" "$package"

# What is in it.
dpkg-deb -x "$package" "$work/root"
dpkg-deb -e "$package" "$work/control"
usr=$work/root/usr
for file in bin/quill share/applications/quill.desktop share/metainfo/org.quillware.quill.metainfo.xml \
    share/man/man1/quill.1.gz share/terminfo/q/quill share/terminfo/q/quill-7 \
    share/icons/hicolor/scalable/apps/quill.svg share/doc/quill/telnet.htm share/doc/quill/quill.ti \
    share/doc/quill/fleet.md share/doc/quill/hosts.md share/doc/quill/hosts_names.md share/doc/quill/sequences.md \
    share/doc/quill/copyright share/doc/quill/changelog.gz share/doc/quill/NEWS.md.gz; do
    [ -s "$usr/$file" ] || fail "there is no $file"
done
for size in 16 22 24 32 48 64 96 128 256; do
    shape=$(identify -format '%wx%h' "$usr/share/icons/hicolor/${size}x$size/apps/quill.png")
    [ "$shape" = ${size}x$size ] || fail "the icon of $size pixels has $shape"
done
cmp "$tree/resources/telnet.htm" "$usr/share/doc/quill/telnet.htm" || fail "another help page"
TERMINFO=$usr/share/terminfo infocmp -1 quill >/dev/null || fail "the terminal's description cannot be read"
grep -q 'Permission is hereby granted' "$usr/share/doc/quill/copyright" || fail "no licence"
(cd "$work/root" && md5sum --quiet -c "$work/control/md5sums") || fail "wrong sums"
[ "$(find "$work/root" ! -type l -perm /022 | wc -l)" -eq 0 ] || fail "others may write: $(find "$work/root" ! -type l -perm /022)"

# What it needs: each library that the program names belongs to a package of the list.
needs=$(sed -n 's/^Depends: //p' "$work/control/control")
for library in $(readelf -d "$usr/bin/quill" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p'); do
    path=$(ldd "$usr/bin/quill" | sed -n "s|^[[:space:]]*$library => \([^ ]*\).*|\1|p")
    [ -n "$path" ] || continue # the loader itself
    owner=$(dpkg -S "$(realpath "$path")" 2>/dev/null || dpkg -S "$path" 2>/dev/null || dpkg -S "/usr$path")
    owner=${owner%%:*}
    case ", $needs," in
        *", $owner "* | *", $owner,"*) ;;
        *) fail "$library is of $owner, which is not in: $needs" ;;
    esac
done

# How the program is built.
readelf -Wh "$usr/bin/quill" | grep -q 'Type: *DYN' || fail "not position independent"
readelf -Wd "$usr/bin/quill" >"$work/dynamic"
grep -q 'Flags:.* PIE' "$work/dynamic" || fail "no PIE"
grep -q 'BIND_NOW' "$work/dynamic" || fail "symbols are bound late"
! grep -qE 'RPATH|RUNPATH' "$work/dynamic" || fail "a path for libraries is built in"
readelf -Wl "$usr/bin/quill" >"$work/segments"
grep -q GNU_RELRO "$work/segments" || fail "no RELRO"
grep GNU_STACK "$work/segments" | grep -q 'RW ' || fail "the stack can be run"
! grep -qE 'LOAD.* RWE ' "$work/segments" || fail "a segment can be written and run"
readelf -W --dyn-syms "$usr/bin/quill" >"$work/symbols"
grep -q __stack_chk_fail "$work/symbols" || fail "no stack protector"
[ "$(grep -cE '__(memcpy|fprintf|snprintf|memmove|realpath)_chk' "$work/symbols")" -ge 3 ] || fail "not fortified"
if [ "$(dpkg-deb -f "$package" Architecture)" = amd64 ]; then
    objdump -d "$usr/bin/quill" >"$work/code"
    [ "$(grep -c endbr64 "$work/code")" -gt 500 ] || fail "no landing pads for control-flow enforcement"
    grep -qE 'or[lq] +\$0x0,(0x[0-9a-f]+)?\(%rsp' "$work/code" || fail "no stack clash protection"
fi
# The mark of control-flow enforcement: on each object of the build, and so on the program where the
# system's own start-up code has it too.
if [ "$(dpkg-deb -f "$package" Architecture)" = amd64 ]; then
    mark='x86 feature: IBT, SHSTK'
    for object in $(find "$build" -name '*.o' -path '*platform/qt/*'); do
        readelf -n "$object" | grep -q "$mark" || fail "$object hinders control-flow enforcement"
    done
    ! readelf -n "$(c++ -print-file-name=Scrt1.o)" | grep -q "$mark" ||
        readelf -n "$usr/bin/quill" | grep -q "$mark" || fail "the program hinders control-flow enforcement"
fi
! grep -qaF "$tree" "$usr/bin/quill" || fail "the program names the folder in which it was built"
[ -z "$(readelf -WS "$usr/bin/quill" | grep -E '\.symtab|\.debug')" ] || fail "not stripped"

# What the judges say.
lintian --fail-on error,warning "$package" >"$work/lintian" 2>&1 || fail "lintian: $(cat "$work/lintian")"
desktop-file-validate "$usr/share/applications/quill.desktop" || fail "the entry in the menu is wrong"
grep -qx 'MimeType=x-scheme-handler/telnet;x-scheme-handler/ssh;' "$usr/share/applications/quill.desktop" ||
    fail "no handler of addresses"
appstreamcli validate --no-net "$usr/share/metainfo/org.quillware.quill.metainfo.xml" >"$work/appstream" 2>&1 ||
    fail "appstreamcli: $(cat "$work/appstream")"
said=$(LC_ALL=C.UTF-8 MANWIDTH=80 man --warnings=w -E UTF-8 -l -Tutf8 -Z "$usr/share/man/man1/quill.1.gz" 2>&1 >/dev/null)
[ -z "$said" ] || fail "the manual page: $said"
said=$(zcat "$usr/share/man/man1/quill.1.gz" | groff -ww -man -Tutf8 2>&1 >/dev/null)
[ -z "$said" ] || fail "the manual page: $said"
# Each option of the program is in its manual page, and in the text of --help.
"$usr/bin/quill" --help >"$work/help"
zcat "$usr/share/man/man1/quill.1.gz" | sed 's/\\-/-/g' >"$work/page"
for option in $(sed -n 's/^ *{"\(--[a-z-]*\)".*/\1/p' "$tree/platform/qt/host/command_line.cpp"); do
    grep -qF -e "$option" "$work/page" || fail "$option is not in the manual page"
    grep -qF -e "$option" "$work/help" || fail "$option is not in --help"
done
[ "$("$usr/bin/quill" --version)" = "quill $(dpkg-deb -f "$package" Version)" ] || fail "another version"
echo "$(basename "$package"): $(stat -c %s "$package") bytes, $(sha256sum <"$package" | cut -c1-16)..."
