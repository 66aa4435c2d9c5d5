// SPDX-License-Identifier: MIT
// The shell: reports the size of the device, and that there is no input panel.
#include <algorithm>

#include "device.h"

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
