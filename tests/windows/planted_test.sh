#!/bin/sh
# SPDX-License-Identifier: MIT
# Libraries with names of system libraries are in the program's folder and in the current folder: the
# program loads none of them. Each of them would write a file.
# Usage: planted_test.sh QUILL.EXE PLATFORM_TESTS.EXE
set -eu
top=$(cd "$(dirname "$0")/../.." && pwd)
program=$1 tests=$2
. "$top/tests/windows/wine.sh"
start_screen
prepare_prefix

cat >"$work/planted.c" <<'END'
#include <windows.h>
BOOL WINAPI DllMain(HINSTANCE library, DWORD reason, LPVOID reserved) {
    (void)reserved;
    char name[MAX_PATH + 10];
    const DWORD length = GetModuleFileNameA(library, name, MAX_PATH);
    lstrcpyA(name + length, ".loaded");
    if (reason == DLL_PROCESS_ATTACH)
        CloseHandle(CreateFileA(name, GENERIC_WRITE, 0, NULL, CREATE_ALWAYS, 0, NULL));
    return TRUE;
}
END
mkdir "$work/program" "$work/folder"
x86_64-w64-mingw32-gcc-posix -shared -o "$work/planted.dll" "$work/planted.c"
cp "$program" "$work/program/quill.exe"
cp "$tests" "$work/program/tests.exe"
# The libraries that are not on the system's list, so that Windows searches the program's folder for
# them: those that the program or one of its libraries loads by name.
planted="rasapi32 rasman dwmapi cryptbase propsys profapi mswsock textshaping"
for name in $planted; do
    cp "$work/planted.dll" "$work/program/$name.dll"
    cp "$work/planted.dll" "$work/folder/$name.dll"
done

none_loaded() { [ -z "$(find "$work/program" "$work/folder" -name '*.loaded')" ]; }
loaded() { find "$work/program" "$work/folder" -name '*.loaded' | tr '\n' ' '; }

# A library that is loaded by its plain name does come from that folder: the trap works.
cat >"$work/careless.c" <<'END'
#include <windows.h>
int main(void) { return LoadLibraryA("rasman.dll") == NULL; }
END
x86_64-w64-mingw32-gcc-posix -o "$work/program/careless.exe" "$work/careless.c"
export WINEDLLOVERRIDES="$WINEDLLOVERRIDES;$(echo "$planted" | tr ' ' ',')=n,b"
cd "$work/folder"
timeout 60 wine "$work/program/careless.exe" || fail "the trap's own program failed"
! none_loaded || fail "the trap does not work"
rm -f "$work"/program/*.loaded "$work"/folder/*.loaded

timeout 60 wine "$work/program/tests.exe" --gtest_filter='Library.*:Manifest.*:Winsock.Dotted*' >"$work/log" 2>&1 ||
    { cat "$work/log" >&2; fail "the calls of the libraries failed"; }
none_loaded || fail "loaded by the tests: $(loaded)"

fresh_device
run wine "$work/program/quill.exe"
client=$last
await 30 has_window "$main" || fail "no window"

# Any part of the system may load a library inside the program by its plain name. A thread does so.
cat >"$work/load_inside.c" <<'END'
#include <windows.h>
int main(void) {
    static const char name[] = "propsys.dll";
    DWORD program, found = 0;
    const HWND window = FindWindowW(L"TELNET", NULL);
    if (!GetWindowThreadProcessId(window, &program)) return 1;
    const HANDLE process = OpenProcess(PROCESS_ALL_ACCESS, FALSE, program);
    void* text = VirtualAllocEx(process, NULL, sizeof(name), MEM_COMMIT, PAGE_READWRITE);
    if (!text || !WriteProcessMemory(process, text, name, sizeof(name), NULL)) return 2;
    const FARPROC load = GetProcAddress(GetModuleHandleA("kernel32.dll"), "LoadLibraryA");
    const HANDLE thread =
        CreateRemoteThread(process, NULL, 0, (LPTHREAD_START_ROUTINE)(void*)load, text, 0, NULL);
    WaitForSingleObject(thread, 20000);
    /* The system has a library of that name too. */
    return GetExitCodeThread(thread, &found) && found && found != STILL_ACTIVE ? 0 : 3;
}
END
x86_64-w64-mingw32-gcc-posix -o "$work/load_inside.exe" "$work/load_inside.c"
timeout 60 wine "$work/load_inside.exe" || fail "no library was loaded inside the program"
leave
none_loaded || fail "loaded by the program: $(loaded)"
echo "none of $(echo "$planted" | wc -w) libraries"
