// SPDX-License-Identifier: MIT
// Starts other programs. The device has one, the help viewer; here it is the desktop's viewer with
// the help page that the program contains.
#include "device.h"
#include "resource_numbers.h"

static bool WritePage(const std::wstring& path) {
    const HRSRC found =
        FindResourceW(nullptr, MAKEINTRESOURCEW(IDR_HELP_PAGE), MAKEINTRESOURCEW(10));
    const HGLOBAL page = found ? LoadResource(nullptr, found) : nullptr;
    if (!page) return false;
    FILE* file = path.empty() ? nullptr : _wfopen(path.c_str(), L"wb");
    if (!file) return false;
    const size_t size = SizeofResource(nullptr, found);
    const bool whole = fwrite(LockResource(page), 1, size, file) == size;
    return fclose(file) == 0 && whole;
}

static std::wstring TemporaryPage() {
    wchar_t folder[MAX_PATH + 1] = {};
    const DWORD length = GetTempPathW(MAX_PATH + 1, folder);
    return length == 0 || length > MAX_PATH ? L"" : std::wstring(folder) + L"Quill telnet.htm";
}

// The viewer needs a file that outlives the program. The file is in the device's root folder or, if
// that cannot be written, among the temporary files.
static bool ShowHelp(LPCWSTR page) {
    if (!page || lstrcmpiW(page, L"telnet.htm") != 0) return false;
    std::wstring path = DevicePath(L"\\telnet.htm");
    if (!WritePage(path) && !WritePage(path = TemporaryPage())) return false;
    const HINSTANCE result =
        ShellExecuteW(nullptr, L"open", path.c_str(), nullptr, nullptr, SW_SHOWNORMAL);
    return reinterpret_cast<INT_PTR>(result) > 32;
}

BOOL DeviceCreateProcess(LPCWSTR program, LPWSTR arguments, LPVOID, LPVOID, BOOL, DWORD, LPVOID,
                         LPCWSTR, LPVOID, PROCESS_INFORMATION* process) {
    if (!program || lstrcmpiW(program, L"PegHelp.exe") != 0) return FALSE;
    if (process) *process = PROCESS_INFORMATION{};
    return ShowHelp(arguments);
}
