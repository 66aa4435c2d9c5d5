// The records behind the GDI handles.
#ifndef QUILL_PLATFORM_QT_GDI_H
#define QUILL_PLATFORM_QT_GDI_H

#include <memory>
#include <QFont>
#include <QPainter>
#include <QRawFont>

#include "slice.h"

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
    bool overhangs = true;     // glyphs may leave their cell
    quint32 glyphs[256] = {};  // of the code points 0..255, 0 = none
};

struct SliceGdiObject {
    HGDIOBJ SliceDeviceContext::*place;  // where a context keeps an object of this kind
    COLORREF color = 0;
    int width = 1;
    std::unique_ptr<FontData> font;
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
std::unique_ptr<FontData> MakeFont(const LOGFONTW& wanted);
const FontData& FontOf(HDC dc);  // the selected font, or the system's
void ForgetFonts();

inline QColor ColorOf(COLORREF color) {
    return QColor(static_cast<int>(color & 0xff), static_cast<int>((color >> 8) & 0xff),
                  static_cast<int>((color >> 16) & 0xff));
}
inline COLORREF ValueOf(const QColor& color) {
    return RGB(color.red(), color.green(), color.blue());
}

#endif
