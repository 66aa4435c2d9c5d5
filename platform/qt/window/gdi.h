// SPDX-License-Identifier: MIT
// The records behind the GDI handles: fonts, pens, brushes and device contexts.
#ifndef QUILL_PLATFORM_QT_WINDOW_GDI_H
#define QUILL_PLATFORM_QT_WINDOW_GDI_H

#include <memory>
#include <optional>
#include <QFont>
#include <QGlyphRun>
#include <QPainter>
#include <QRawFont>

#include "platform/qt/window/window.h"

// A font as the program asked for it and as the desktop has it. Glyphs are drawn one by one from
// the raw font; characters that it lacks are drawn with the plain font.
struct FontData {
    QFont font;
    QRawFont raw;
    LONG height = 0;  // of the whole cell, pixels
    double ascent = 0;
    double descent = 0;
    double leading = 0;
    bool fixed = true;
    quint32 glyphs[256] = {};  // of the code points 0 to 255; 0: no glyph
    // True if the glyph reaches outside its cell. Computed when the glyph is first drawn, because
    // to compute all of them takes as long as the rest of a start's work on fonts.
    mutable std::optional<bool> overhangs[256] = {};
    mutable QGlyphRun run;  // reused, so that drawing allocates nothing
};

// The ASCII characters of one of the desktop's fonts, looked up once: to lay out a line of text
// takes longer than to paint a row of the terminal.
struct LineFont {
    QFont font;
    QRawFont raw;
    quint32 glyphs[128] = {};
    mutable std::optional<double> advances[128] = {};  // pixels; measured when it is first drawn
    mutable QGlyphRun run;
};

struct SliceGdiObject {
    HGDIOBJ SliceDeviceContext::*place;  // the field of a context for objects of this kind
    COLORREF color = 0;
    int width = 1;
    std::shared_ptr<const FontData> font;
};

struct SliceDeviceContext {
    std::unique_ptr<QPainter> painter;  // null: for measuring only
    HWND window = nullptr;
    HGDIOBJ font = nullptr;
    HGDIOBJ pen = nullptr;
    HGDIOBJ brush = nullptr;
    COLORREF text_color = 0;
    COLORREF back_color = 0x00FFFFFF;
    int back_mode = OPAQUE;
};

// fonts.cpp
std::shared_ptr<const FontData> MakeFont(const LOGFONTW& wanted);
bool GlyphOverhangs(const FontData& font, char16_t code);  // `code` is below 256
const FontData& FontOf(HDC dc);                            // the selected font, or the system font
const LineFont& LineFontOf(const QFont& font);
double LineAdvance(const LineFont& font, char16_t code);  // `code` is below 128
void ForgetFonts();

// gdi.cpp
COLORREF BrushColor(HBRUSH brush);
void ReleaseGdi();
// Draws ASCII text only, with the painter's pen.
void DrawLineOfText(QPainter& painter, const LineFont& font, QPointF place,
                    const std::u16string& text);

inline QColor ColorOf(COLORREF color) {
    return QColor(static_cast<int>(color & 0xff), static_cast<int>((color >> 8) & 0xff),
                  static_cast<int>((color >> 16) & 0xff));
}
inline COLORREF ValueOf(const QColor& color) {
    return static_cast<COLORREF>(color.red() | color.green() << 8 | color.blue() << 16);
}

#endif
