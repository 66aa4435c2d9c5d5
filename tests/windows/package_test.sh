#!/bin/sh
# SPDX-License-Identifier: MIT
# The packages: their content, that the programs need only DLLs of the system, and that a second build
# of the packages has the same bytes.
# Usage: package_test.sh QUILL64.EXE QUILL32.EXE
set -eu
top=$(cd "$(dirname "$0")/../.." && pwd)
work=$(mktemp -d "${TMPDIR:-/tmp}/quill-package-test.XXXXXX")
trap 'rm -rf "$work"' EXIT
fail() { echo "package_test.sh: $1" >&2; exit 1; }

packages=$("$top/packaging/windows.sh" "$1" "$2" 2>"$work/complaints") ||
    { cat "$work/complaints" >&2; fail "no packages"; }
sha256sum $packages >"$work/first"
sleep 2
TZ=Asia/Tokyo "$top/packaging/windows.sh" "$1" "$2" >/dev/null 2>&1 || fail "no packages at the second time"
sha256sum $packages >"$work/second"
cmp "$work/first" "$work/second" || fail "the packages differ from time to time"

version=$(sed -n 's/^project(quill VERSION \([0-9.]*\).*/\1/p' "$top/CMakeLists.txt")

# The libraries that every Windows has. The system has a list of all of them but comctl32 and loads
# them from its own folder; the manifest names comctl32. Nothing is loaded "delayed".
only_known_libraries() {
    for library in $(sed -n 's/^\tDLL Name: //p' headers | tr 'A-Z' 'a-z'); do
        case $library in
            advapi32.dll | comctl32.dll | comdlg32.dll | gdi32.dll | kernel32.dll | msvcrt.dll | \
                shell32.dll | user32.dll | ws2_32.dll) ;;
            *) fail "the program wants $library" ;;
        esac
    done
    ! grep -q 'Delay Import Directory *[1-9a-f]' headers || fail "something is loaded delayed"
}

# check_program TARGET HEADER
check_program() {
    "$1-objdump" -p Quill/quill.exe >headers
    grep -q "$2" headers || fail "not a program of the kind $2"
    only_known_libraries
    grep -q '^Subsystem.*Windows GUI' headers || fail "not a program with windows"
    grep -Eq '^Time/Date.*(00000000|Jan  1 00:00:00 (1970|2026))' headers || fail "$(grep '^Time/Date' headers)"
    for protection in DYNAMIC_BASE NX_COMPAT; do
        grep -q "$protection" headers || fail "the program lacks $protection"
    done
    "$1-objdump" -h Quill/quill.exe | grep -q '\.rsrc' || fail "no resources"
    "$1-windres" -O rc Quill/quill.exe resources.rc
    grep -q "\"Version $version\"" resources.rc || fail "About shows another version"
    grep -aq "version=\"$version.0.0\"" Quill/quill.exe || fail "the manifest has another version"
    for field in FileVersion ProductVersion; do
        grep -q "VALUE \"$field\", *L*\"$version\"" resources.rc || fail "another $field than $version"
    done
    grep -q "^ *FILEVERSION $(echo "$version" | sed "s/[.]/, /g"), 0, 0" resources.rc || fail "another file version"
    for word in 'PerMonitorV2' 'level="asInvoker"' 'Microsoft.Windows.Common-Controls'; do
        grep -aq "$word" Quill/quill.exe || fail "the manifest does not say $word"
    done
    ! grep -aq activeCodePage Quill/quill.exe || fail "the manifest chooses a code page"
}

# check_package ZIP TARGET HEADER
check_package() {
    rm -rf Quill
    cmake -E tar xf "$1"
    [ -s Quill/quill.exe ] || fail "the program is not in $1"
    cmp "$top/resources/telnet.htm" Quill/telnet.htm || fail "the help page is not in $1"
    cmp "$top/resources/quill.ti" Quill/quill.ti || fail "the terminal's description is not in $1"
    cmp "$top/LICENSE" Quill/LICENSE.txt || fail "the licence is not in $1"
    check_program "$2" "$3"
    echo "$(wc -c <Quill/quill.exe) bytes of program in $(wc -c <"$1") bytes"
}

cd "$work"
check_package "$top/build/quill-windows.zip" x86_64-w64-mingw32 pei-x86-64
check_package "$top/build/quill-windows32.zip" i686-w64-mingw32 pei-i386
echo "$(wc -c <"$top/build/quill-windows-installer.exe") bytes of installer"
