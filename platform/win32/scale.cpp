// SPDX-License-Identifier: MIT
// The monitor's scale in dots per inch, 96 at 100 %. The program's windows, fonts, pictures and
// bars have the size that it asks for, and follow when it changes. A font is in the device's
// pixels. It keeps its handle when the scale changes; selecting it then selects a copy in the new
// size.
#include "device.h"

#include <map>

constexpr int kPlainDpi = 96;
static int dpi = 0;  // of the main window's monitor; 0 until it is first asked for

// Finds a call of user32.dll that only Windows 10 and later have; null on earlier versions.
template <typename Call>
static Call* NewCall(Call*, const char* name) {
    const FARPROC found = GetProcAddress(GetModuleHandleW(L"user32.dll"), name);
    return reinterpret_cast<Call*>(reinterpret_cast<void*>(found));
}
#define NEW_CALL(name) NewCall(static_cast<decltype(name)*>(nullptr), #name)

static int SystemDpi() {
    HDC screen = GetDC(nullptr);
    const int pixels = GetDeviceCaps(screen, LOGPIXELSX);
    ReleaseDC(nullptr, screen);
    return pixels > 0 ? pixels : kPlainDpi;
}

static HFONT StatusFont() {
    NONCLIENTMETRICSW metrics = {};
    metrics.cbSize = sizeof(metrics);
    const auto call = NEW_CALL(SystemParametersInfoForDpi);
    if (!call || !call(SPI_GETNONCLIENTMETRICS, sizeof(metrics), &metrics, 0, DeviceDpi()))
        return nullptr;
    return CreateFontIndirectW(&metrics.lfStatusFont);
}

// Adapts a child that has a size of its own: a command bar or a status window.
static BOOL CALLBACK RescaleChild(HWND child, LPARAM status_font) {
    wchar_t name[32] = {};
    GetClassNameW(child, name, 32);
    if (lstrcmpiW(name, TOOLBARCLASSNAMEW) == 0) RescaleCommandBar(child);
    if (lstrcmpiW(name, STATUSCLASSNAMEW) == 0 && status_font)
        SendMessageW(child, WM_SETFONT, static_cast<WPARAM>(status_font), TRUE);
    return TRUE;
}

UINT DeviceDpi() {
    if (!dpi) dpi = SystemDpi();
    return static_cast<UINT>(dpi);
}

int DevicePixels(int plain) { return MulDiv(plain, static_cast<int>(DeviceDpi()), kPlainDpi); }

UINT WindowDpi(HWND window) {
    const auto call = NEW_CALL(GetDpiForWindow);
    return call ? call(window) : DeviceDpi();
}

BOOL FrameRect(RECT* rect, DWORD style, DWORD ex_style) {
    const auto call = NEW_CALL(AdjustWindowRectExForDpi);
    return call ? call(rect, style, TRUE, ex_style, DeviceDpi())
                : AdjustWindowRectEx(rect, style, TRUE, ex_style);
}

int DeviceGetSystemMetrics(int index) {
    const auto call = NEW_CALL(GetSystemMetricsForDpi);
    return call ? call(index, DeviceDpi()) : GetSystemMetrics(index);
}

// The layout comes last, even if the window keeps its size.
void ChangeScale(HWND window, UINT new_dpi, const RECT* place) {
    dpi = static_cast<int>(new_dpi);
    static HFONT status_font = nullptr;
    const HFONT before = status_font;
    status_font = StatusFont();
    EnumChildWindows(window, RescaleChild, reinterpret_cast<LPARAM>(status_font));
    if (before) DeleteObject(before);
    if (place)
        SetWindowPos(window, nullptr, place->left, place->top, place->right - place->left,
                     place->bottom - place->top, SWP_NOZORDER | SWP_NOACTIVATE);
    RECT room = {};
    GetClientRect(window, &room);
    SendMessageW(window, WM_SIZE, IsZoomed(window) ? SIZE_MAXIMIZED : SIZE_RESTORED,
                 MAKELPARAM(room.right, room.bottom));
}

// ---------------------------------------------------------------- fonts

namespace {

struct Font {
    LOGFONTW device;  // in the device's pixels
    HFONT drawn;      // the handle itself, or its copy for another scale
    UINT dpi;         // of `drawn`
};

}  // namespace
static std::map<HGDIOBJ, Font> fonts;

static HFONT MakeFont(const LOGFONTW& device) {
    LOGFONTW scaled = device;
    scaled.lfHeight = DevicePixels(device.lfHeight * kFontScale);
    scaled.lfWidth = DevicePixels(device.lfWidth * kFontScale);
    return CreateFontIndirectW(&scaled);
}

static void DropLike(HGDIOBJ handle, const Font& font) {
    if (font.drawn != handle) DeleteObject(font.drawn);
}

static HGDIOBJ DrawnFor(HGDIOBJ handle) {
    const auto found = fonts.find(handle);
    if (found == fonts.end()) return handle;
    Font& font = found->second;
    if (font.dpi != DeviceDpi()) {
        DropLike(handle, font);
        font.dpi = DeviceDpi();
        font.drawn = MakeFont(font.device);
    }
    return font.drawn;
}

HFONT DeviceCreateFontIndirect(const LOGFONTW* font) {
    if (!font) return nullptr;
    const HFONT handle = MakeFont(*font);
    if (handle) fonts[handle] = {*font, handle, DeviceDpi()};
    return handle;
}

HGDIOBJ DeviceSelectObject(HDC dc, HGDIOBJ object) { return SelectObject(dc, DrawnFor(object)); }

BOOL DeviceDeleteObject(HGDIOBJ object) {
    const auto found = fonts.find(object);
    if (found != fonts.end()) {
        DropLike(object, found->second);
        fonts.erase(found);
    }
    return DeleteObject(object);
}
