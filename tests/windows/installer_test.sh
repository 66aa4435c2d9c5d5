#!/bin/sh
# SPDX-License-Identifier: MIT
# The installer in silent mode: it installs for this user, the installed program runs, and the
# uninstaller removes everything except the settings. The installer is a 32-bit program; without a
# 32-bit Wine the script builds and runs it as a 64-bit program.
# Usage: installer_test.sh QUILL64.EXE QUILL32.EXE
set -eu
top=$(cd "$(dirname "$0")/../.." && pwd)
program64=$1 program32=$2
. "$top/tests/windows/wine.sh"
kind="32-bit"
if ! (. "$top/tests/windows/wine32.sh") 2>/dev/null; then
    kind="64-bit"
    export QUILL_INSTALLER_TARGET=amd64-unicode
else
    . "$top/tests/windows/wine32.sh"
fi
start_screen
prepare_prefix
packages=$("$top/packaging/windows.sh" "$program64" "$program32") || fail "no packages"
cp "$top/build/quill-windows-installer.exe" "$work/setup.exe"

folder=$(winepath -u "$(wine cmd /c 'echo %LOCALAPPDATA%' | tr -d '\r')")/Programs/Quill
menu="$(winepath -u "$(wine cmd /c 'echo %APPDATA%' | tr -d '\r')")/Microsoft/Windows/Start Menu/Programs/Quill.lnk"
removal='HKCU\Software\Microsoft\Windows\CurrentVersion\Uninstall\Quill'
rm -rf "$folder" "$menu"
wine reg delete "$removal" /f >/dev/null 2>&1 || :
fresh_device

# It does not ask for administrator rights.
! grep -aq requireAdministrator "$work/setup.exe" || fail "the installer asks for an administrator"
grep -aq '<dpiAware' "$work/setup.exe" || fail "the system stretches the installer's window"
timeout 100 wine "$work/setup.exe" /S || fail "the installer ended with $?"
for file in quill.exe telnet.htm quill.ti LICENSE.txt remove.exe; do
    [ -s "$folder/$file" ] || fail "$file was not installed"
done
x86_64-w64-mingw32-objdump -f "$folder/quill.exe" | grep -q pei-x86-64 || fail "not the program of this system"
[ -s "$menu" ] || fail "no entry in the start menu"
wine reg query "$removal" /v DisplayName | grep -q Quill || fail "not in the list of programs"
wine reg query "$removal" /v UninstallString | tr -d '\r' | grep -q 'Programs\\Quill\\remove.exe"$' ||
    fail "the list of programs does not know how to remove it"

run wine "$folder/quill.exe"
client=$last
await 30 has_window "$main" || fail "the installed program shows no window"

# The system keeps the file of a program that runs. Without the copy that /S starts, the removal's end
# has a code.
! timeout 100 wine "$folder/remove.exe" /S "_?=$(winepath -w "$folder")" || fail "the running program was removed"
for file in quill.exe telnet.htm quill.ti LICENSE.txt remove.exe; do
    [ -s "$folder/$file" ] || fail "a removal that failed removed $file"
done
[ -s "$menu" ] || fail "a removal that failed removed the entry in the start menu"
wine reg query "$removal" /v DisplayName | grep -q Quill || fail "a removal that failed left the list of programs"
leave

# Installs again over the first installation, like a later version.
timeout 100 wine "$work/setup.exe" /S || fail "the second installation ended with $?"
timeout 100 wine "$folder/remove.exe" /S || fail "the removal ended with $?"
gone() { [ ! -e "$folder" ] && [ ! -e "$menu" ]; }
await 30 gone || fail "the removal left $(ls "$folder" 2>/dev/null)"
! wine reg query "$removal" >/dev/null 2>&1 || fail "still in the list of programs"
# Into a folder that the user chose: a later version goes to the same folder.
other=$WINEPREFIX/drive_c/QuillElsewhere
rm -rf "$other"
timeout 100 wine "$work/setup.exe" /S '/D=C:\QuillElsewhere' || fail "the installation elsewhere ended with $?"
rm -f "$other/quill.exe"
timeout 100 wine "$work/setup.exe" /S || fail "the later installation elsewhere ended with $?"
[ -s "$other/quill.exe" ] && [ ! -e "$folder" ] || fail "the later version went to another folder"
timeout 100 wine "$other/remove.exe" /S || fail "the removal elsewhere ended with $?"
gone_elsewhere() { [ ! -e "$other" ]; }
await 30 gone_elsewhere || fail "the removal elsewhere left $(ls "$other")"

# A file that the user keeps there, and nothing else, is left.
timeout 100 wine "$work/setup.exe" /S '/D=C:\QuillElsewhere' || fail "the third installation ended with $?"
echo mine >"$other/notes.txt"
timeout 100 wine "$other/remove.exe" /S || fail "the removal beside the user's file ended with $?"
only_notes() { [ "$(ls "$other")" = notes.txt ]; }
await 30 only_notes || fail "the removal beside the user's file left $(ls "$other")"
has_no_entry() { ! wine reg query "$removal"; }
await 30 has_no_entry || fail "still in the list of programs beside the user's file"
rm -r "$other"
[ "$(setting fsize)" = 0x8 ] || fail "the settings went with the program: $(setting fsize)"
echo "installed and removed by a $kind installer of $(wc -c <"$work/setup.exe") bytes"
