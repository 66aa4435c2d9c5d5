// SPDX-License-Identifier: MIT
// Fonts and glyphs of the slice, checked on a picture: clipping to the cell, and shared fonts.
#include <QImage>

#include "platform/qt/window/gdi.h"
#include "platform/qt/window/window.h"
#include "tests/platform/test_windows.h"

namespace {

int CALLBACK TakeFirst(const LOGFONTW* font, const TEXTMETRICW*, DWORD, LPARAM result) {
    *reinterpret_cast<LOGFONTW*>(result) = *font;
    return 0;
}

HFONT SlantedFont(LONG height) {
    LOGFONTW wanted = {};
    EnumFontFamiliesW(nullptr, nullptr, TakeFirst, reinterpret_cast<LPARAM>(&wanted));
    wanted.lfHeight = height;
    wanted.lfItalic = 1;
    return CreateFontIndirectW(&wanted);
}

class Glyphs : public WindowTest {
  protected:
    // Draws one character, black on white, clipped to a cell.
    void DrawInCell(WCHAR character, const RECT& cell) {
        answer = [=, this](const Heard& now, LRESULT*) {
            if (now.message != WM_PAINT || now.window != child) return false;
            PAINTSTRUCT paint;
            HDC dc = BeginPaint(child, &paint);
            const RECT all = {0, 0, 100, 60};
            FillRect(dc, &all, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
            HGDIOBJ before = SelectObject(dc, font);
            const INT advance = static_cast<INT>(cell.right - cell.left);
            ExtTextOutW(dc, static_cast<int>(cell.left), static_cast<int>(cell.top),
                        ETO_OPAQUE | ETO_CLIPPED, &cell, &character, 1, &advance);
            SelectObject(dc, before);
            EndPaint(child, &paint);
            return true;
        };
    }
    int InkOutside(const RECT& cell) {
        const QImage picture = FindWindowRecord(child)->widget->grab().toImage();
        int ink = 0;
        for (int y = 0; y < picture.height(); y++)
            for (int x = 0; x < picture.width(); x++)
                if (x < cell.left || x >= cell.right || y < cell.top || y >= cell.bottom)
                    ink += qGray(picture.pixel(x, y)) < 255;
        return ink;
    }

    HWND child = nullptr;
    HFONT font = nullptr;
};

}  // namespace

TEST_F(Glyphs, AreClippedToTheirCell) {
    child = Child(1, 0, 0, 0, 100, 60);
    font = SlantedFont(40);
    HDC dc = GetDC(child);
    SelectObject(dc, font);
    const FontData& data = FontOf(dc);
    int leaving = 0;
    for (WCHAR c = '!'; c < 256; c++) {
        if (!data.glyphs[c] || !GlyphOverhangs(data, c)) continue;
        leaving++;
        const LONG width = static_cast<LONG>(data.raw.averageCharWidth());
        const RECT cell = {40, 10, 40 + width, 50};
        DrawInCell(c, cell);
        EXPECT_EQ(0, InkOutside(cell)) << "character " << int{c};
    }
    EXPECT_GT(leaving, 0);
    ReleaseDC(child, dc);
    DeleteObject(font);
}

// True if both handles share one font. Deletes both.
static bool OneFont(HFONT one, HFONT other) {
    const bool same = one->font == other->font;
    DeleteObject(one);
    DeleteObject(other);
    return same;
}

TEST_F(Glyphs, AFontAskedForAgainIsTheOneMadeLast) {
    LOGFONTW wanted = {};
    EnumFontFamiliesW(nullptr, nullptr, TakeFirst, reinterpret_cast<LPARAM>(&wanted));
    wanted.lfHeight = 23;
    const auto differs = [&](const std::function<void(LOGFONTW*)>& change) {
        LOGFONTW changed = wanted;
        change(&changed);
        return !OneFont(CreateFontIndirectW(&wanted), CreateFontIndirectW(&changed));
    };
    EXPECT_TRUE(OneFont(CreateFontIndirectW(&wanted), CreateFontIndirectW(&wanted)));
    EXPECT_TRUE(differs([](LOGFONTW* font) { font->lfHeight = 24; }));
    EXPECT_TRUE(differs([](LOGFONTW* font) { font->lfItalic = 1; }));
    EXPECT_TRUE(differs([](LOGFONTW* font) { font->lfWeight = FW_BOLD; }));
    EXPECT_TRUE(differs([](LOGFONTW* font) { font->lfFaceName[0] ^= 1; }));
}

TEST_F(Glyphs, AFontOutlivesTheNextAndItsOwnObject) {
    child = Child(1, 0, 0, 0, 100, 60);
    font = SlantedFont(40);
    HDC dc = GetDC(child);
    SelectObject(dc, font);
    const double width = FontOf(dc).raw.averageCharWidth();
    DeleteObject(SlantedFont(40));
    DeleteObject(SlantedFont(17));
    EXPECT_EQ(40, FontOf(dc).height);
    EXPECT_EQ(width, FontOf(dc).raw.averageCharWidth());
    ReleaseDC(child, dc);
    DeleteObject(font);
}
