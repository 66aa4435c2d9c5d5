#!/bin/sh
# SPDX-License-Identifier: MIT
# Makes build/quill-windows.zip: the Windows program, its help page, the terminal's description for
# hosts, and the licence. Installs what is missing, and builds the program unless a built one is
# named.
# Usage: packaging/windows.sh [QUILL.EXE]
set -eu
cd "$(dirname "$0")/.."
. scripts/packages.sh
[ $# -le 1 ] || { echo "usage: packaging/windows.sh [QUILL.EXE]" >&2; exit 2; }

program=${1:-}
if [ -z "$program" ]; then
    install_packages $PACKAGES_WINDOWS
    folder=build/windows-release
    mkdir -p build
    cmake --preset windows -B $folder -DBUILD_TESTING=OFF -DCMAKE_BUILD_TYPE=Release \
        >build/windows-release.log 2>&1 &&
        cmake --build $folder -j "$(job_count)" --target quill >>build/windows-release.log 2>&1 || {
        tail -n 40 build/windows-release.log >&2
        exit 1
    }
    program=$folder/platform/win32/quill.exe
fi

stage=$(mktemp -d "${TMPDIR:-/tmp}/quill-package.XXXXXX")
trap 'rm -rf "$stage"' EXIT
mkdir "$stage/Quill"
x86_64-w64-mingw32-strip -o "$stage/Quill/quill.exe" "$program"
cp resources/telnet.htm resources/quill.ti "$stage/Quill/"
cp LICENSE "$stage/Quill/LICENSE.txt"

package=$(pwd)/build/quill-windows.zip
rm -f "$package"
(cd "$stage" && cmake -E tar cf "$package" --format=zip Quill)
echo "$package"
