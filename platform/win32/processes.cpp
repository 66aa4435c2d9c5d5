// Starting other programs. The device has one: the help viewer, which is the desktop's own viewer
// on the page that lies beside the program.
#include "device.h"

namespace {

std::wstring ProgramFolder() {
    wchar_t path[MAX_PATH] = {};
    const DWORD length = GetModuleFileNameW(nullptr, path, MAX_PATH);
    if (length == 0 || length == MAX_PATH) return L"";
    const std::wstring program(path);
    return program.substr(0, program.find_last_of(L'\\') + 1);
}

bool ShowHelp(LPCWSTR page) {
    if (!page || lstrcmpiW(page, L"telnet.htm") != 0) return false;
    const std::wstring path = ProgramFolder() + page;
    const HINSTANCE result =
        ShellExecuteW(nullptr, L"open", path.c_str(), nullptr, nullptr, SW_SHOWNORMAL);
    return reinterpret_cast<INT_PTR>(result) > 32;
}

}  // namespace

BOOL DeviceCreateProcess(LPCWSTR program, LPWSTR arguments, LPVOID, LPVOID, BOOL, DWORD, LPVOID,
                         LPCWSTR, LPVOID, PROCESS_INFORMATION* process) {
    if (!program || lstrcmpiW(program, L"PegHelp.exe") != 0) return FALSE;
    if (process) *process = PROCESS_INFORMATION{};
    return ShowHelp(arguments);
}
