#!/bin/sh
# SPDX-License-Identifier: MIT
# The package: what is in it, and that the program in it wants nothing but the system's own DLLs.
# Usage: package_test.sh QUILL.EXE
set -eu
top=$(cd "$(dirname "$0")/../.." && pwd)
work=$(mktemp -d "${TMPDIR:-/tmp}/quill-package-test.XXXXXX")
trap 'rm -rf "$work"' EXIT
fail() { echo "package_test.sh: $1" >&2; exit 1; }

package=$("$top/packaging/windows.sh" "$1" 2>"$work/complaints" | tail -n 1)
[ -s "$package" ] || fail "no package"
cd "$work"
cmake -E tar xf "$package"
[ -s Quill/quill.exe ] || fail "the program is not in the package"
cmp "$top/resources/telnet.htm" Quill/telnet.htm || fail "the help page is not in the package"
cmp "$top/resources/quill.ti" Quill/quill.ti || fail "the terminal's description is not in the package"
cmp "$top/LICENSE" Quill/LICENSE.txt || fail "the licence is not in the package"

# The libraries that every Windows has.
x86_64-w64-mingw32-objdump -p Quill/quill.exe >headers
for library in $(sed -n 's/^\tDLL Name: //p' headers | tr 'A-Z' 'a-z'); do
    case $library in
        advapi32.dll | comctl32.dll | comdlg32.dll | gdi32.dll | kernel32.dll | msvcrt.dll | \
            ole32.dll | rasapi32.dll | shell32.dll | user32.dll | ws2_32.dll) ;;
        *) fail "the program wants $library" ;;
    esac
done
grep -q 'pei-x86-64' headers || fail "not a 64-bit program"
grep -q '^Subsystem.*Windows GUI' headers || fail "not a program with windows"

# The version of the file is the program's, and the About dialog has it too.
version=$(sed -n 's/^project(quill VERSION \([0-9.]*\).*/\1/p' "$top/CMakeLists.txt")
x86_64-w64-mingw32-windres -O rc Quill/quill.exe resources.rc
grep -q "\"Version $version\"" resources.rc || fail "About shows another version"
for field in FileVersion ProductVersion; do
    grep -q "VALUE \"$field\", *L*\"$version\"" resources.rc || fail "another $field than $version"
done
grep -q "^ *FILEVERSION $(echo "$version" | sed "s/[.]/, /g"), 0, 0" resources.rc || fail "another file version"

echo "$(wc -c <Quill/quill.exe) bytes of program in $(wc -c <"$package") bytes"
