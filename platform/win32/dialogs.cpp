// SPDX-License-Identifier: MIT
// Modal windows: they release the stylus first, and return no answer once the program ends.
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
