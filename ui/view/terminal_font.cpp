// SPDX-License-Identifier: MIT
// The terminal's font: listing the faces, creating and measuring the font, stepping its size.
#include "ui/view/view.h"

#include <algorithm>

#include "session/session_state.h"

static int CALLBACK TakeFontFace(const LOGFONTW* font, const TEXTMETRICW* metrics, DWORD, LPARAM) {
    ViewState& view = session.view;
    if (view.face_count == kMaxFontFaces) return 0;
    if (metrics->tmPitchAndFamily & TMPF_FIXED_PITCH) return 1;  // set: variable width
    view.faces[view.face_count++].font = *font;
    return 1;
}

void ListFontFaces(HWND window) {
    session.view.face_count = 0;
    HDC dc = GetDC(window);
    EnumFontFamiliesW(dc, nullptr, TakeFontFace, 0);
    ReleaseDC(window, dc);
}

// If no face was found, the first entry is all zero, and the system chooses a font.
static const LOGFONTW& ChosenFace() {
    const ViewState& view = session.view;
    for (int i = 0; i < view.face_count; ++i) {
        if (!lstrcmpW(view.faces[i].font.lfFaceName, session.settings.fname)) {
            return view.faces[i].font;
        }
    }
    return view.faces[0].font;
}

static DWORD HeldSize(DWORD size) { return std::clamp<DWORD>(size, kFontSizeMin, kFontSizeMax); }

static HFONT MakeFont() {
    const Settings& settings = session.settings;
    LOGFONTW font = ChosenFace();
    font.lfHeight = static_cast<LONG>(settings.fsize);
    font.lfWidth = 0;
    font.lfWeight = settings.font_bold ? FW_BOLD : FW_NORMAL;
    font.lfItalic = settings.font_italic ? 1 : 0;
    font.lfCharSet = DEFAULT_CHARSET;
    font.lfOutPrecision = 0;
    font.lfClipPrecision = 0;
    font.lfQuality = 0;
    font.lfPitchAndFamily = 0;
    return CreateFontIndirectW(&font);
}

// Characters of the smallest fonts may measure less than a pixel. A cell is at least one pixel wide
// and high.
static void MeasureCell(HDC dc) {
    ViewState& view = session.view;
    TEXTMETRICW metrics = {};
    GetTextMetricsW(dc, &metrics);
    view.cell_height = std::max<LONG>(1, metrics.tmHeight + metrics.tmExternalLeading);
    view.underline_offset = metrics.tmDescent;
    RECT rect = {};
    DrawTextW(dc, TEXT("JULEMANDEN"), 10, &rect, DT_CALCRECT | DT_SINGLELINE | DT_NOPREFIX);
    view.cell_width = std::max<LONG>(1, (rect.right - rect.left) / 10);
}

void MeasureTerminalFont() {
    const ViewState& view = session.view;
    HDC dc = GetDC(session.client_window);
    HGDIOBJ before = view.font ? SelectObject(dc, view.font) : nullptr;
    MeasureCell(dc);
    if (before) SelectObject(dc, before);
    ReleaseDC(session.client_window, dc);
}

void CreateTerminalFont() {
    ViewState& view = session.view;
    session.settings.fsize = HeldSize(session.settings.fsize);
    if (view.font) DeleteObject(view.font);
    view.font = MakeFont();
    MeasureTerminalFont();
}

// Neighbouring sizes may have the same cell height. Such sizes are skipped, so that each step is
// visible.
static void StepFont(int step) {
    if (!session.view.font) CreateTerminalFont();
    int height = session.view.cell_height;
    for (;;) {
        DWORD before = HeldSize(session.settings.fsize);
        session.settings.fsize = HeldSize(before + static_cast<DWORD>(step));
        if (session.settings.fsize == before) break;
        CreateTerminalFont();
        if (session.view.cell_height != height) break;
    }
    LayoutTerminal();
}

void LargerFont() { StepFont(1); }
void SmallerFont() { StepFont(-1); }
