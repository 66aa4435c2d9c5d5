// SPDX-License-Identifier: MIT
// Modal windows: they release the stylus first, and return no answer once the program ends. One of
// them, the chooser of colours, is in a library that the program looks up at run time.
#include "device.h"

bool ProgramEnds() {
    MSG message;
    return PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_NOREMOVE) != 0;
}

int DeviceMessageBox(HWND owner, LPCWSTR text, LPCWSTR caption, UINT type) {
    if (ProgramEnds()) return IDCANCEL;
    ReleaseCapture();
    const int answer = MessageBoxW(owner, text, caption, type);
    return ProgramEnds() ? IDCANCEL : answer;
}

INT_PTR DeviceDialogBox(HINSTANCE instance, LPCWSTR name, HWND owner, DLGPROC procedure,
                        LPARAM parameter) {
    if (ProgramEnds()) return 0;
    ReleaseCapture();
    const INT_PTR result = DialogBoxParamW(instance, name, owner, procedure, parameter);
    return ProgramEnds() ? 0 : result;
}

INT_PTR DevicePropertySheet(LPCPROPSHEETHEADERW header) {
    if (ProgramEnds()) return 0;
    ReleaseCapture();
    const INT_PTR result = PropertySheetW(header);
    return ProgramEnds() ? 0 : result;
}

// ---------------------------------------------------------------- libraries that the program looks
// up at run time

namespace {

struct LibraryRow {
    LPCWSTR device;
    LPCWSTR desktop;
};

}  // namespace

static const LibraryRow kLibraries[] = {
    {L"COMMDLG.DLL", L"comdlg32.dll"},
};

// On the device, the chooser has a template of the program; on the desktop it looks as usual.
static BOOL ChooseColorPlainly(LPVOID parameter) {
    auto* request = static_cast<DeviceChooseColor*>(parameter);
    CHOOSECOLORW plain = {};
    plain.lStructSize = sizeof(plain);
    plain.hwndOwner = request->hwndOwner;
    plain.rgbResult = request->rgbResult;
    plain.lpCustColors = request->lpCustColors;
    plain.Flags = request->Flags & ~static_cast<DWORD>(CC_ENABLETEMPLATE);
    ReleaseCapture();
    if (!ChooseColorW(&plain) || ProgramEnds()) return FALSE;
    request->rgbResult = plain.rgbResult;
    return TRUE;
}

void KeepToSystemLibraries() {
    SetDefaultDllDirectories(LOAD_LIBRARY_SEARCH_SYSTEM32);
    SetDllDirectoryW(L"");
}

HMODULE DeviceLoadLibrary(LPCWSTR name) {
    if (!name) return nullptr;
    for (const LibraryRow& row : kLibraries)
        if (lstrcmpiW(name, row.device) == 0) name = row.desktop;
    return LoadLibraryExW(name, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
}

FARPROC GetProcAddressW(HMODULE library, LPCWSTR name) {
    if (!library || !name) return nullptr;
    if (library == GetModuleHandleW(L"comdlg32.dll") && lstrcmpW(name, L"ChooseColor") == 0)
        return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(ChooseColorPlainly));
    std::string narrow;
    for (; *name; ++name) narrow.push_back(static_cast<char>(*name < 128 ? *name : '?'));
    if (narrow.empty()) return nullptr;
    const FARPROC wide = GetProcAddress(library, (narrow + "W").c_str());
    return wide ? wide : GetProcAddress(library, narrow.c_str());
}
