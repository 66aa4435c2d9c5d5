#!/bin/sh
# SPDX-License-Identifier: MIT
# Makes the packages of the Windows program: build/quill-windows.zip for 64-bit Windows,
# build/quill-windows32.zip for 32-bit Windows, and build/quill-windows-installer.exe with both. Each
# contains the program, its help page, the terminal's description for hosts, and the licence. The same
# programs always give packages with the same bytes.
# Installs missing packages, and builds the programs unless the arguments name built ones.
# QUILL_INSTALLER_TARGET selects another kind of installer; "amd64-unicode" is a 64-bit one.
# Usage: packaging/windows.sh [QUILL64.EXE QUILL32.EXE]
set -eu
cd "$(dirname "$0")/.."
. scripts/packages.sh
[ $# = 0 ] || [ $# = 2 ] || { echo "usage: packaging/windows.sh [QUILL64.EXE QUILL32.EXE]" >&2; exit 2; }

# build PRESET: builds the program and prints its path.
build() {
    folder=build/$1-release
    mkdir -p build
    cmake --preset "$1" -B "$folder" -DBUILD_TESTING=OFF -DCMAKE_BUILD_TYPE=Release \
        >"$folder.log" 2>&1 &&
        cmake --build "$folder" -j "$(job_count)" --target quill >>"$folder.log" 2>&1 || {
        tail -n 40 "$folder.log" >&2
        return 1
    }
    echo "$folder/platform/win32/quill.exe"
}

if [ $# = 2 ]; then
    program64=$1 program32=$2
else
    install_packages $PACKAGES_WINDOWS
    program64=$(build windows)
    program32=$(build windows32)
fi

# The date of every file in every package.
day='2026-01-01 00:00:00 UTC'
SOURCE_DATE_EPOCH=1767225600
export SOURCE_DATE_EPOCH
TZ=UTC
export TZ

stage=$(mktemp -d "${TMPDIR:-/tmp}/quill-package.XXXXXX")
trap 'rm -rf "$stage"' EXIT
packages=$(pwd)/build
version=$(sed -n 's/^project(quill VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)

cp resources/telnet.htm resources/quill.ti platform/win32/quill.ico "$stage/"
cp LICENSE "$stage/LICENSE.txt"
x86_64-w64-mingw32-strip -o "$stage/quill64.exe" "$program64"
i686-w64-mingw32-strip -o "$stage/quill32.exe" "$program32"

# zip_up PACKAGE PROGRAM: packs the files in a folder "Quill", in a fixed order.
zip_up() {
    mkdir "$stage/Quill"
    cp "$2" "$stage/Quill/quill.exe"
    (cd "$stage" && cp telnet.htm quill.ti LICENSE.txt Quill/ && chmod 644 Quill/* && chmod 755 Quill &&
        touch -d "$day" Quill Quill/* &&
        zip -q -X "$1" Quill/ Quill/LICENSE.txt Quill/quill.exe Quill/quill.ti Quill/telnet.htm)
    rm -rf "$stage/Quill"
    echo "$1"
}

rm -f "$packages"/quill-windows*.zip "$packages"/quill-windows-installer.exe
zip_up "$packages/quill-windows.zip" "$stage/quill64.exe"
zip_up "$packages/quill-windows32.zip" "$stage/quill32.exe"

find "$stage" -exec touch -d "$day" {} +
makensis -V2 -NOCD ${QUILL_INSTALLER_TARGET:+"-XTarget $QUILL_INSTALLER_TARGET"} -DSTAGE="$stage" -DOUTPUT="$packages/quill-windows-installer.exe" \
    -DVERSION="$version" packaging/quill.nsi >"$packages/installer.log" 2>&1 || {
    cat "$packages/installer.log" >&2
    exit 1
}
echo "$packages/quill-windows-installer.exe"
