// SPDX-License-Identifier: MIT
// The shell: reports the size of the device, and that there is no input panel; opens the clipboard;
// and starts other programs. The device has one, the help viewer; here it is the desktop's viewer
// with the help page that the program contains.
#include "device.h"

#include <algorithm>

#include "resource_numbers.h"

constexpr UINT kGetSipInfo = 225;
constexpr int kMenuBarPixels = 26;  // the program leaves them free at the bottom
constexpr int kNarrowestPixels = 400;
constexpr int kRows = 24;
constexpr int kColumns = 80;

// Keeps the face of a first start or, if that is missing, the first fixed-pitch face.
static int CALLBACK TakeFace(const LOGFONTW* font, const TEXTMETRICW* metrics, DWORD,
                             LPARAM result) {
    auto* face = reinterpret_cast<LOGFONTW*>(result);
    if (metrics->tmPitchAndFamily & TMPF_FIXED_PITCH) return 1;
    const bool usual = lstrcmpW(font->lfFaceName, L"Terminal") == 0;
    if (usual || !face->lfFaceName[0]) *face = *font;
    return !usual;
}

static SIZE CellSize() {
    HDC dc = GetDC(nullptr);
    LOGFONTW face = {};
    EnumFontFamiliesW(dc, nullptr, TakeFace, reinterpret_cast<LPARAM>(&face));
    face.lfHeight = 8;
    face.lfWidth = 0;
    face.lfWeight = FW_NORMAL;
    face.lfCharSet = DEFAULT_CHARSET;
    face.lfOutPrecision = face.lfClipPrecision = face.lfQuality = face.lfPitchAndFamily = 0;
    HFONT font = DeviceCreateFontIndirect(&face);
    HGDIOBJ before = DeviceSelectObject(dc, font);
    TEXTMETRICW metrics = {};
    GetTextMetricsW(dc, &metrics);
    RECT rect = {};
    DrawTextW(dc, L"JULEMANDEN", 10, &rect, DT_CALCRECT | DT_SINGLELINE | DT_NOPREFIX);
    SelectObject(dc, before);
    DeviceDeleteObject(font);
    ReleaseDC(nullptr, dc);
    return {rect.right / 10, metrics.tmHeight + metrics.tmExternalLeading};
}

// Measures an invisible status window.
static int StatusHeight() {
    HWND status = CreateWindowExW(0, STATUSCLASSNAMEW, nullptr, WS_CHILD, 0, 0, 0, 0, HWND_MESSAGE,
                                  nullptr, nullptr, nullptr);
    RECT rect = {};
    GetWindowRect(status, &rect);
    DestroyWindow(status);
    return rect.bottom - rect.top;
}

static SIZE DeviceSize() {
    const SIZE cell = CellSize();
    const LONG bars = DevicePixels(kCommandBarHeight) + StatusHeight() + kMenuBarPixels;
    return {std::max<LONG>(cell.cx * kColumns, DevicePixels(kNarrowestPixels)),
            cell.cy * kRows + bars};
}

BOOL SHSipInfo(UINT action, UINT, LPVOID info, UINT) {
    auto* sip = static_cast<SIPINFO*>(info);
    if (action != kGetSipInfo || !sip || sip->cbSize < sizeof(SIPINFO)) return FALSE;
    static const SIZE size = DeviceSize();
    sip->fdwFlags = 0;
    sip->rcVisibleDesktop = RECT{0, 0, size.cx, size.cy};
    sip->rcSipRect = RECT{0, size.cy, size.cx, size.cy};
    return TRUE;
}

// ---------------------------------------------------------------- other programs

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

// ---------------------------------------------------------------- the clipboard

// An invisible window. It goes with its thread; the clipboard's content stays.
static HWND Keeper() {
    static HWND keeper = nullptr;
    if (!IsWindow(keeper))
        keeper = CreateWindowExW(0, L"STATIC", nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                 nullptr, nullptr);
    return keeper;
}

BOOL DeviceOpenClipboard(HWND owner) { return OpenClipboard(owner ? owner : Keeper()); }
