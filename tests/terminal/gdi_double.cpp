// SPDX-License-Identifier: MIT
// The recording double of the windows and GDI calls.
#include "gdi_double.h"

#include <cstdarg>
#include <cstring>
#include <map>
#include <utility>

GdiDouble gdi;

struct Object {
    std::string kind;
    COLORREF color;
    LOGFONTW font;
};

static std::map<uintptr_t, Object> objects;
static uintptr_t next_object = 100;
static HGDIOBJ selected_font, selected_pen;
static COLORREF text_color, background_color;

static std::string Format(const char* format, ...) {
    char text[1000];
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    return text;
}

static void Fault(const std::string& what) { gdi.faults.push_back(what); }
static HDC TestDc() { return reinterpret_cast<HDC>(uintptr_t{7}); }
static uintptr_t IdOf(HGDIOBJ object) { return reinterpret_cast<uintptr_t>(object); }

HWND TestWindow() { return reinterpret_cast<HWND>(uintptr_t{5}); }

static HGDIOBJ Keep(const Object& object) {
    objects[++next_object] = object;
    return reinterpret_cast<HGDIOBJ>(next_object);
}

void ResetGdi() {
    gdi = GdiDouble{};
    objects.clear();
    selected_font = Keep({"stock font", 0, {}});
    selected_pen = Keep({"stock pen", 0, {}});
    text_color = background_color = 0;
    gdi.faces = {Face(TEXT("Courier")), Face(TEXT("Terminal"))};
    gdi.metrics = [](const LOGFONTW& font) {
        TEXTMETRICW metrics = {};
        metrics.tmHeight = font.lfHeight;
        metrics.tmDescent = font.lfHeight / 4;
        return metrics;
    };
    gdi.sample_width = [](const LOGFONTW& font) { return font.lfHeight * 5; };
}

int LiveObjects(const char* kind) {
    int count = 0;
    for (const auto& entry : objects) count += entry.second.kind == kind;
    return count;
}

LOGFONTW Face(LPCWSTR name) {
    LOGFONTW font = {};
    for (int i = 0; name[i] && i < LF_FACESIZE - 1; ++i) font.lfFaceName[i] = name[i];
    return font;
}

LRESULT SendToWindow(UINT message, WPARAM wparam, LPARAM lparam) {
    return gdi.window_class.lpfnWndProc(TestWindow(), message, wparam, lparam);
}

std::vector<std::string> DrawnInRow(int row, int cell_height) {
    std::vector<std::string> found;
    for (const DrawCall& call : gdi.drawn) {
        if (call.what.rfind("fill", 0) == 0) continue;
        if (call.y >= (row - 1) * cell_height && call.y < row * cell_height) {
            found.push_back(call.what);
        }
    }
    return found;
}

std::vector<std::string> AllDrawn() {
    std::vector<std::string> found;
    for (const DrawCall& call : gdi.drawn) found.push_back(call.what);
    return found;
}

// ---------------------------------------------------------------- windows

ATOM RegisterClassW(const WNDCLASSW* window_class) {
    if (gdi.refuse_class) return 0;
    gdi.window_class = *window_class;
    return 1;
}

LRESULT DefWindowProcW(HWND, UINT message, WPARAM, LPARAM) {
    gdi.default_messages.push_back(message);
    return 4711;
}

BOOL GetWindowRect(HWND window, RECT* rect) {
    if (window != TestWindow()) Fault("GetWindowRect of another window");
    *rect = gdi.window;
    return TRUE;
}

BOOL GetClientRect(HWND, RECT* rect) {
    *rect = {0, 0, gdi.window.right - gdi.window.left, gdi.window.bottom - gdi.window.top};
    if (gdi.bar_shown[SB_VERT]) rect->right -= gdi.bar_width;
    if (gdi.bar_shown[SB_HORZ]) rect->bottom -= gdi.bar_height;
    return TRUE;
}

BOOL InvalidateRect(HWND window, const RECT* rect, BOOL erase) {
    if (window != TestWindow()) Fault("InvalidateRect of another window");
    ++gdi.invalidations;
    gdi.invalid.push_back(rect ? Format("%ld,%ld %ldx%ld", static_cast<long>(rect->left),
                                        static_cast<long>(rect->top),
                                        static_cast<long>(rect->right - rect->left),
                                        static_cast<long>(rect->bottom - rect->top))
                               : "all");
    if (erase) ++gdi.erasing_invalidations;
    return TRUE;
}

int SetScrollInfo(HWND window, int bar, const SCROLLINFO* info, BOOL) {
    if (window != TestWindow()) Fault("SetScrollInfo of another window");
    if (info->cbSize != sizeof(SCROLLINFO)) Fault("SCROLLINFO without its size");
    SCROLLINFO& kept = gdi.bars[bar];
    if (info->fMask & SIF_RANGE) kept.nMin = info->nMin, kept.nMax = info->nMax;
    if (info->fMask & SIF_PAGE) kept.nPage = info->nPage;
    if (info->fMask & SIF_POS) kept.nPos = info->nPos;
    gdi.bar_shown[bar] = static_cast<int>(kept.nPage) <= kept.nMax - kept.nMin;
    ++gdi.scroll_calls;
    return kept.nPos;
}

int GetSystemMetrics(int index) {
    if (index == SM_CXVSCROLL) return gdi.bar_width;
    if (index == SM_CYHSCROLL) return gdi.bar_height;
    Fault("GetSystemMetrics of something else");
    return 0;
}

BOOL SHSipInfo(UINT, UINT, LPVOID, UINT) { return FALSE; }  // there is no input panel

// ---------------------------------------------------------------- device contexts and objects

HDC GetDC(HWND) {
    ++gdi.open_dcs;
    return TestDc();
}

int ReleaseDC(HWND, HDC) { return --gdi.open_dcs >= 0; }

HDC BeginPaint(HWND window, PAINTSTRUCT* paint) {
    if (gdi.refuse_paint) return nullptr;
    ++gdi.open_paints;
    if (gdi.erase_due && gdi.window_class.lpfnWndProc) {
        gdi.erase_due = false;
        paint->fErase = !gdi.window_class.lpfnWndProc(window, WM_ERASEBKGND, 0, 0);
    }
    paint->hdc = TestDc();
    return paint->hdc;
}

BOOL EndPaint(HWND, const PAINTSTRUCT*) {
    --gdi.open_paints;
    return TRUE;
}

HGDIOBJ SelectObject(HDC, HGDIOBJ object) {
    auto found = objects.find(IdOf(object));
    if (found == objects.end()) {
        Fault("an object that does not exist is selected");
        return nullptr;
    }
    bool is_pen = found->second.kind.find("pen") != std::string::npos;
    HGDIOBJ& slot = is_pen ? selected_pen : selected_font;
    HGDIOBJ before = slot;
    slot = object;
    return before;
}

BOOL DeleteObject(HGDIOBJ object) {
    if (object == selected_font || object == selected_pen) Fault("a selected object is deleted");
    if (!objects.erase(IdOf(object))) Fault("an object that does not exist is deleted");
    return TRUE;
}

HFONT CreateFontIndirectW(const LOGFONTW* font) {
    gdi.fonts_made.push_back(*font);
    return gdi.refuse_fonts ? nullptr : Keep({"font", 0, *font});
}

HBRUSH CreateSolidBrush(COLORREF color) { return Keep({"brush", color, {}}); }

HPEN CreatePen(int style, int width, COLORREF color) {
    if (style != PS_SOLID || width != 1) Fault("a pen that is not one solid pixel");
    ++gdi.pens_made;
    return Keep({"pen", color, {}});
}

int GetDeviceCaps(HDC, int index) {
    if (index != HORZRES) Fault("GetDeviceCaps of something else");
    return gdi.screen_width;
}

// ---------------------------------------------------------------- fonts

BOOL GetTextMetricsW(HDC, TEXTMETRICW* metrics) {
    *metrics = gdi.metrics(objects[IdOf(selected_font)].font);
    return TRUE;
}

int DrawTextW(HDC, LPCWSTR text, int count, RECT* rect, UINT format) {
    if (!(format & DT_CALCRECT)) Fault("DrawTextW that draws");
    if (count != 10 || memcmp(text, TEXT("JULEMANDEN"), 20) != 0) Fault("another sample text");
    rect->right = rect->left + gdi.sample_width(objects[IdOf(selected_font)].font);
    return 1;
}

int EnumFontFamiliesW(HDC, LPCWSTR family, FONTENUMPROCW procedure, LPARAM parameter) {
    if (family) Fault("one family is listed");
    int result = 1;
    for (size_t i = 0; i < gdi.faces.size() && result; ++i) {
        TEXTMETRICW metrics = {};
        if (i < gdi.pitches.size()) metrics.tmPitchAndFamily = gdi.pitches[i];
        result = procedure(&gdi.faces[i], &metrics, 0, parameter);
    }
    return result;
}

// ---------------------------------------------------------------- drawing

COLORREF SetTextColor(HDC, COLORREF color) { return std::exchange(text_color, color); }
COLORREF SetBkColor(HDC, COLORREF color) { return std::exchange(background_color, color); }

static std::string Place(const RECT& rect) {
    return Format("%d,%d %dx%d", rect.left, rect.top, rect.right - rect.left,
                  rect.bottom - rect.top);
}

int FillRect(HDC, const RECT* rect, HBRUSH brush) {
    auto color = static_cast<unsigned>(objects[IdOf(brush)].color);
    gdi.drawn.push_back({rect->top, Format("fill %s %06x", Place(*rect).c_str(), color)});
    return 1;
}

static void CheckAdvances(const RECT& rect, const INT* advances, UINT count) {
    if (!advances) return;
    LONG sum = 0;
    for (UINT i = 0; i < count; ++i) sum += advances[i];
    if (sum != rect.right - rect.left) Fault("advances that do not fill the run");
    for (UINT i = 1; i < count; ++i) {
        if (advances[i] != advances[0]) Fault("advances that differ");
    }
}

BOOL ExtTextOutW(HDC, int x, int y, UINT options, const RECT* rect, LPCWSTR text, UINT count,
                 const INT* advances) {
    if (options != (ETO_OPAQUE | ETO_CLIPPED)) Fault("text that is not opaque and clipped");
    if (x != rect->left || y != rect->top) Fault("text beside its rectangle");
    CheckAdvances(*rect, advances, count);
    std::string shown;
    for (UINT i = 0; i < count; ++i) {
        bool plain = text[i] >= 32 && text[i] < 127;
        shown += plain ? std::string(1, static_cast<char>(text[i]))
                       : Format("<%x>", static_cast<unsigned>(text[i]));
    }
    gdi.drawn.push_back(
        {y, Format("text %s '%s' %06x on %06x", Place(*rect).c_str(), shown.c_str(),
                   static_cast<unsigned>(text_color), static_cast<unsigned>(background_color))});
    return TRUE;
}

BOOL Polyline(HDC, const POINT* points, int count) {
    if (count != 2) Fault("a polyline that is not one line");
    const Object& pen = objects[IdOf(selected_pen)];
    if (pen.kind != "pen") Fault("a line without a pen of its own");
    gdi.drawn.push_back(
        {points[0].y, Format("line %d,%d %d,%d %06x", points[0].x, points[0].y, points[1].x,
                             points[1].y, static_cast<unsigned>(pen.color))});
    return TRUE;
}

// ---------------------------------------------------------------- text and sound

int MultiByteToWideChar(UINT code_page, DWORD, LPCSTR bytes, int size, LPWSTR text, int capacity) {
    if (code_page != CP_ACP || size > capacity) Fault("a conversion of another kind");
    int count = 0;
    for (int i = 0; i < size; ++i) {
        auto byte = static_cast<unsigned char>(bytes[i]);
        if (gdi.two_byte_page && byte >= 0x81 && byte <= 0x9F) {
            if (++i == size) return 0;
            text[count++] = static_cast<WCHAR>(byte << 8 | static_cast<unsigned char>(bytes[i]));
        } else {
            text[count++] = byte == 0x80 ? WCHAR{0x20AC} : WCHAR{byte};
            if (gdi.utf8_page && byte >= 0x80) text[count - 1] = 0xFFFD;
        }
    }
    return count;
}

int lstrcmpW(LPCWSTR a, LPCWSTR b) {
    while (*a && *a == *b) ++a, ++b;
    return *a - *b;
}

BOOL MessageBeep(UINT type) {
    gdi.beeps.push_back(type);
    return TRUE;
}
