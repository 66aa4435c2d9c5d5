// SPDX-License-Identifier: MIT
// The records behind the GDI handles.
#ifndef QUILL_PLATFORM_QT_WINDOW_GDI_H
#define QUILL_PLATFORM_QT_WINDOW_GDI_H

#include <memory>
#include <optional>
#include <QFont>
#include <QGlyphRun>
#include <QPainter>
#include <QRawFont>

#include "platform/qt/window/window.h"

// A font as the program asked for it and as the desktop has it. The raw font is drawn glyph by
// glyph; the plain one stands in for characters that it lacks.
struct FontData {
    QFont font;
    QRawFont raw;
    LONG height = 0;  // of the whole cell, pixels
    double ascent = 0;
    double descent = 0;
    double leading = 0;
    bool fixed = true;
    quint32 glyphs[256] = {};  // of the code points 0..255, 0 = none
    // Whether the glyph leaves its cell; looked at when it is first drawn, as all of them take as
    // long as the rest of a start's fonts.
    mutable std::optional<bool> overhangs[256] = {};
    mutable QGlyphRun run;  // kept, so that to draw one allocates nothing
};

// The ASCII characters of one of the desktop's fonts, looked up once: to lay a line of text out
// anew takes longer than to paint a row of the terminal.
struct LineFont {
    QFont font;
    QRawFont raw;
    quint32 glyphs[128] = {};
    double advances[128] = {};  // pixels
    mutable QGlyphRun run;
};

struct SliceGdiObject {
    HGDIOBJ SliceDeviceContext::*place;  // where a context keeps an object of this kind
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
bool GlyphOverhangs(const FontData& font, char16_t code);  // below 256
const FontData& FontOf(HDC dc);                            // the selected font, or the system's
const LineFont& LineFontOf(const QFont& font);
void ForgetFonts();

// gdi.cpp
COLORREF BrushColor(HBRUSH brush);
void ReleaseGdi();
// ASCII alone, in the painter's pen.
void DrawLineOfText(QPainter& painter, const LineFont& font, QPointF place,
                    const std::u16string& text);

inline QColor ColorOf(COLORREF color) {
    return QColor(static_cast<int>(color & 0xff), static_cast<int>((color >> 8) & 0xff),
                  static_cast<int>((color >> 16) & 0xff));
}
inline COLORREF ValueOf(const QColor& color) {
    return RGB(color.red(), color.green(), color.blue());
}

#endif
