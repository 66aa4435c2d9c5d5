// SPDX-License-Identifier: MIT
// Painting: device contexts on top of QPainter, pens, brushes, and text on a grid of cells.
#include "platform/qt/window/gdi.h"

#include <array>
#include <cmath>
#include <QGuiApplication>
#include <QScreen>
#include <set>

#include "platform/qt/window/device_screen.h"
#include "platform/qt/window/window.h"
#include "platform/qt/window/window_widget.h"

static std::set<SliceGdiObject*> g_objects;
// The objects that a new context holds, as on the device.
static SliceGdiObject g_white_brush{&SliceDeviceContext::brush, 0x00FFFFFF, 1, nullptr};
static SliceGdiObject g_black_pen{&SliceDeviceContext::pen, 0, 1, nullptr};
static SliceGdiObject g_system_font{&SliceDeviceContext::font, 0, 1, nullptr};

static void SelectDefaults(SliceDeviceContext& dc) {
    dc.brush = &g_white_brush;
    dc.pen = &g_black_pen;
    dc.font = &g_system_font;
}

static HGDIOBJ AddObject(HGDIOBJ SliceDeviceContext::*place, COLORREF color, int width) {
    auto* object = new SliceGdiObject{place, color, width, nullptr};
    g_objects.insert(object);
    return object;
}

static bool IsStock(HGDIOBJ object) {
    return object == &g_white_brush || object == &g_black_pen || object == &g_system_font;
}

static bool Known(HGDIOBJ object) { return IsStock(object) || g_objects.contains(object); }

static QRect FromRect(const RECT& rect) {
    return QRect(QPoint(rect.left, rect.top), QPoint(rect.right - 1, rect.bottom - 1));
}

static bool Overhangs(const FontData& font, LPCWSTR text, UINT count) {
    return std::any_of(text, text + count,
                       [&](char16_t c) { return c < 256 && GlyphOverhangs(font, c); });
}

// The glyph comes from another font, so it may be wider than its cell and is clipped.
static void DrawMissingGlyph(QPainter& painter, const FontData& font, const QRectF& cell,
                             char16_t c) {
    painter.save();
    painter.setClipRect(cell, Qt::IntersectClip);
    painter.setFont(font.font);
    painter.drawText(QPointF(cell.left(), cell.bottom() - font.descent), QString(QChar(c)));
    painter.restore();
}

// Draws one run of glyphs, each at its own position.
static void DrawGlyphs(SliceDeviceContext& dc, const FontData& font, int x, int y, LPCWSTR text,
                       UINT count, const INT* advances) {
    constexpr UINT kMost = 256;
    std::array<quint32, kMost> glyphs;
    std::array<QPointF, kMost> places;
    const double baseline = y + font.height - font.descent;
    QPainter& painter = *dc.painter;
    painter.setPen(ColorOf(dc.text_color));
    int used = 0;
    double left = x;
    for (UINT i = 0; i < count; ++i) {
        const char16_t c = text[i];
        const quint32 glyph = c < 256 ? font.glyphs[c] : 0;
        const double width = advances ? advances[i] : font.raw.averageCharWidth();
        if (glyph && c != u' ' && used < static_cast<int>(kMost)) {
            glyphs[static_cast<size_t>(used)] = glyph;
            places[static_cast<size_t>(used++)] = QPointF(left, baseline);
        } else if (c > u' ') {
            DrawMissingGlyph(painter, font, QRectF(left, y, width, font.height), c);
        }
        left += width;
    }
    if (used == 0) return;
    font.run.setRawData(glyphs.data(), places.data(), used);
    painter.drawGlyphRun(QPointF(0, 0), font.run);
}

void DrawLineOfText(QPainter& painter, const LineFont& font, QPointF place,
                    const std::u16string& text) {
    constexpr int kMost = 256;
    std::array<quint32, kMost> glyphs;
    std::array<QPointF, kMost> places;
    int used = 0;
    for (const char16_t c : text) {
        if (used == kMost) break;
        glyphs[static_cast<size_t>(used)] = font.glyphs[c];
        places[static_cast<size_t>(used++)] = place;
        place.rx() += LineAdvance(font, c);
    }
    font.run.setRawData(glyphs.data(), places.data(), used);
    painter.drawGlyphRun(QPointF(0, 0), font.run);
}

COLORREF BrushColor(HBRUSH brush) { return Known(brush) ? brush->color : 0x00FFFFFF; }

void ReleaseGdi() {
    for (SliceGdiObject* object : g_objects) delete object;
    g_objects.clear();
    ForgetFonts();
}

HDC BeginPaint(HWND handle, PAINTSTRUCT* paint) {
    Window* window = FindWindowRecord(handle);
    *paint = PAINTSTRUCT{};
    if (!window || !window->widget || !PaintedWidget(*window) ||
        !PaintedWidget(*window)->painting())
        return nullptr;
    auto* dc = new SliceDeviceContext;
    dc->window = handle;
    SelectDefaults(*dc);
    dc->painter = PaintedWidget(*window)->MakePainter();
    paint->hdc = dc;
    const QRect area = window->invalid.boundingRect() & ClientArea(*window);
    paint->rcPaint = RECT{area.left(), area.top(), area.right() + 1, area.bottom() + 1};
    dc->painter->setClipRect(ClientArea(*window), Qt::IntersectClip);
    const bool erase = window->erase;
    window->erase = false;
    window->painted = std::exchange(window->invalid, QRegion());
    if (drawing_observer.paint) drawing_observer.paint(handle);
    if (erase)
        paint->fErase =
            !CallWindowProcedure(*window, WM_ERASEBKGND, reinterpret_cast<WPARAM>(dc), 0);
    return dc;
}

BOOL EndPaint(HWND, const PAINTSTRUCT* paint) {
    delete paint->hdc;
    return TRUE;
}

HDC GetDC(HWND window) {
    auto* dc = new SliceDeviceContext;
    dc->window = window;
    SelectDefaults(*dc);
    return dc;
}

int ReleaseDC(HWND, HDC dc) {
    delete dc;
    return 1;
}

HGDIOBJ GetStockObject(int index) { return index == WHITE_BRUSH ? &g_white_brush : nullptr; }

HGDIOBJ SelectObject(HDC dc, HGDIOBJ object) {
    return dc && Known(object) ? std::exchange(dc->*object->place, object) : nullptr;
}

BOOL DeleteObject(HGDIOBJ object) {
    if (g_objects.erase(object) == 0) return FALSE;
    delete object;
    return TRUE;
}

HFONT CreateFontIndirectW(const LOGFONTW* wanted) {
    auto* object = AddObject(&SliceDeviceContext::font, 0, 1);
    object->font = MakeFont(*wanted);
    return object;
}

HBRUSH CreateSolidBrush(COLORREF color) { return AddObject(&SliceDeviceContext::brush, color, 1); }

HPEN CreatePen(int, int width, COLORREF color) {
    return AddObject(&SliceDeviceContext::pen, color, std::max(width, 1));
}

COLORREF SetTextColor(HDC dc, COLORREF color) {
    return dc ? std::exchange(dc->text_color, color) : 0;
}

COLORREF SetBkColor(HDC dc, COLORREF color) {
    return dc ? std::exchange(dc->back_color, color) : 0;
}

int SetBkMode(HDC dc, int mode) { return dc ? std::exchange(dc->back_mode, mode) : 0; }

int FillRect(HDC dc, const RECT* rect, HBRUSH brush) {
    if (!dc || !dc->painter) return 0;
    dc->painter->fillRect(FromRect(*rect), ColorOf(BrushColor(brush)));
    if (drawing_observer.fill) drawing_observer.fill(dc->window, *rect, BrushColor(brush));
    return 1;
}

BOOL ExtTextOutW(HDC dc, int x, int y, UINT options, const RECT* rect, LPCWSTR text, UINT count,
                 const INT* advances) {
    if (!dc || !dc->painter) return FALSE;
    if (rect && (options & ETO_OPAQUE))
        dc->painter->fillRect(FromRect(*rect), ColorOf(dc->back_color));
    const FontData& font = FontOf(dc);
    const bool clip = rect && (options & ETO_CLIPPED) && Overhangs(font, text, count);
    if (clip) {
        dc->painter->save();
        dc->painter->setClipRect(FromRect(*rect), Qt::IntersectClip);
    }
    DrawGlyphs(*dc, font, x, y, text, count, advances);
    if (clip) dc->painter->restore();
    if (drawing_observer.text)
        drawing_observer.text({dc->window, x, y, rect ? *rect : RECT{x, y, x, y}, text, count,
                               dc->text_color, dc->back_color,
                               advances && count ? advances[0] : 0});
    return TRUE;
}

int DrawTextW(HDC dc, LPCWSTR text, int count, RECT* rect, UINT format) {
    if (!dc || !rect || !(format & DT_CALCRECT)) return 0;
    const FontData& font = FontOf(dc);
    const QString shown = QString::fromUtf16(text, count < 0 ? -1 : count);
    double width = 0;
    const auto glyphs = font.raw.glyphIndexesForString(shown);
    for (const QPointF& advance : font.raw.advancesForGlyphIndexes(glyphs)) width += advance.x();
    rect->right = rect->left + static_cast<LONG>(std::lround(width));
    rect->bottom = rect->top + font.height;
    return font.height;
}

// The last point of a line is not drawn.
static void DrawLine(QPainter& painter, POINT a, POINT b, const QColor& color, int width) {
    const auto low = [](LONG p, LONG q) { return p <= q ? p : q + 1; };
    if (a.y == b.y) {
        painter.fillRect(low(a.x, b.x), a.y, std::abs(b.x - a.x), width, color);
    } else if (a.x == b.x) {
        painter.fillRect(a.x, low(a.y, b.y), width, std::abs(b.y - a.y), color);
    } else {
        painter.setPen(QPen(color, width));
        painter.drawLine(a.x, a.y, b.x, b.y);
    }
}

BOOL Polyline(HDC dc, const POINT* points, int count) {
    if (!dc || !dc->painter || count < 2) return FALSE;
    const COLORREF color = dc->pen && Known(dc->pen) ? dc->pen->color : 0;
    const int width = dc->pen && Known(dc->pen) ? dc->pen->width : 1;
    for (int i = 1; i < count; ++i) {
        const POINT a = points[i - 1], b = points[i];
        DrawLine(*dc->painter, a, b, ColorOf(color), width);
        if (drawing_observer.line) drawing_observer.line(dc->window, a, b, color);
    }
    return TRUE;
}

BOOL GetTextMetricsW(HDC dc, TEXTMETRICW* metrics) {
    if (!dc) return FALSE;
    const FontData& font = FontOf(dc);
    *metrics = TEXTMETRICW{};
    metrics->tmHeight = font.height;
    // The descent is never more than the room below the baseline, where the program draws its
    // underline.
    metrics->tmDescent = std::max(static_cast<LONG>(std::floor(font.descent)), LONG{1});
    metrics->tmAscent = metrics->tmHeight - metrics->tmDescent;
    // Some fonts have lines that are lower than their letters. A cell is not.
    metrics->tmExternalLeading = std::max(static_cast<LONG>(std::lround(font.leading)), LONG{0});
    metrics->tmAveCharWidth = static_cast<LONG>(std::lround(font.raw.averageCharWidth()));
    metrics->tmMaxCharWidth = static_cast<LONG>(std::ceil(font.raw.maxCharWidth()));
    metrics->tmPitchAndFamily = font.fixed ? 0 : TMPF_FIXED_PITCH;
    return TRUE;
}

int GetDeviceCaps(HDC, int index) {
    const QSize size = DeviceScreen()->size();
    return index == HORZRES ? size.width() : index == VERTRES ? size.height() : 0;
}
