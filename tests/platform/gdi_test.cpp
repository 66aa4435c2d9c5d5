// SPDX-License-Identifier: MIT
// Fonts and their metrics, the state of a device context, and the results of drawing calls.
#include <set>

#include "tests/platform/known_gap.h"
#include "tests/platform/test_windows.h"

namespace {

struct Faces {
    std::vector<LOGFONTW> fixed;
    int called = 0;
    int most = 1000;
};

int CALLBACK TakeFace(const LOGFONTW* font, const TEXTMETRICW* metrics, DWORD, LPARAM faces) {
    auto* all = reinterpret_cast<Faces*>(faces);
    all->called++;
    if (!(metrics->tmPitchAndFamily & TMPF_FIXED_PITCH)) all->fixed.push_back(*font);
    return all->called < all->most;
}

class Gdi : public WindowTest {
  protected:
    void SetUp() override {
        WindowTest::SetUp();
        dc = GetDC(top);
        ASSERT_NE(nullptr, dc);
    }
    void TearDown() override {
        ReleaseDC(top, dc);
        WindowTest::TearDown();
    }
    Faces AllFaces(int most = 1000) const {
        Faces faces;
        faces.most = most;
        EnumFontFamiliesW(dc, nullptr, TakeFace, reinterpret_cast<LPARAM>(&faces));
        return faces;
    }
    HFONT Font(LONG height, LONG weight = FW_NORMAL) const {
        const Faces faces = AllFaces();
        LOGFONTW font = faces.fixed.empty() ? LOGFONTW{} : faces.fixed[0];
        font.lfHeight = height;
        font.lfWidth = 0;
        font.lfWeight = weight;
        font.lfCharSet = DEFAULT_CHARSET;
        font.lfOutPrecision = font.lfClipPrecision = font.lfQuality = 0;
        return CreateFontIndirectW(&font);
    }
    TEXTMETRICW Metrics(HFONT font) const {
        TEXTMETRICW metrics = {};
        HGDIOBJ before = SelectObject(dc, font);
        EXPECT_TRUE(GetTextMetricsW(dc, &metrics));
        SelectObject(dc, before);
        return metrics;
    }
    LONG WidthOf(HFONT font, LPCWSTR text) const {
        RECT rect = {};
        HGDIOBJ before = SelectObject(dc, font);
        DrawTextW(dc, text, lstrlenW(text), &rect, DT_CALCRECT | DT_SINGLELINE | DT_NOPREFIX);
        SelectObject(dc, before);
        return rect.right - rect.left;
    }

    HDC dc = nullptr;
};

}  // namespace

TEST_F(Gdi, AFixedPitchFaceExists) {
    const Faces faces = AllFaces();
    ASSERT_FALSE(faces.fixed.empty());
    for (const LOGFONTW& face : faces.fixed) EXPECT_NE(0, face.lfFaceName[0]);
}

TEST_F(Gdi, EachFaceIsListedOnce) {
    KNOWN_GAP_ON_WINE("a face comes once for each of its character sets");
    std::set<Text> names;
    const Faces faces = AllFaces();
    for (const LOGFONTW& face : faces.fixed) EXPECT_TRUE(names.insert(face.lfFaceName).second);
}

TEST_F(Gdi, EnumerationStopsWhenTheCallbackReturnsZero) { EXPECT_EQ(1, AllFaces(1).called); }

TEST_F(Gdi, HeightIsThatOfTheWholeCell) {
    KNOWN_GAP_ON_WINDOWS("a pixel of a font is two of the desktop's, so that 8 can be read");
    for (LONG height : {8, 12, 16, 20}) {
        HFONT font = Font(height);
        EXPECT_EQ(height, Metrics(font).tmHeight);
        DeleteObject(font);
    }
}

TEST_F(Gdi, HeightGrowsWithTheFont) {
    HFONT small = Font(8), large = Font(16);
    EXPECT_LT(Metrics(small).tmHeight, Metrics(large).tmHeight);
    EXPECT_LT(WidthOf(small, TEXT("JULEMANDEN")), WidthOf(large, TEXT("JULEMANDEN")));
    DeleteObject(small);
    DeleteObject(large);
}

TEST_F(Gdi, MetricsAddUp) {
    HFONT font = Font(16);
    const TEXTMETRICW metrics = Metrics(font);
    EXPECT_EQ(metrics.tmHeight, metrics.tmAscent + metrics.tmDescent);
    EXPECT_GT(metrics.tmAscent, metrics.tmDescent);
    EXPECT_GT(metrics.tmAveCharWidth, 0);
    EXPECT_GE(metrics.tmExternalLeading, 0);
    DeleteObject(font);
}

TEST_F(Gdi, EveryCharacterOfAFixedFaceIsEquallyWide) {
    HFONT font = Font(16);
    const LONG ten = WidthOf(font, TEXT("JULEMANDEN"));
    EXPECT_GT(ten, 0);
    EXPECT_EQ(ten, WidthOf(font, TEXT("iiiiiiiiii")));
    EXPECT_EQ(ten, WidthOf(font, TEXT("WWWWWWWWWW")));
    DeleteObject(font);
}

TEST_F(Gdi, AmpersandIsACharacterWithNoPrefix) {
    HFONT font = Font(16);
    EXPECT_EQ(WidthOf(font, TEXT("axb")), WidthOf(font, TEXT("a&b")));
    DeleteObject(font);
}

TEST_F(Gdi, SelectingReturnsThePreviousObject) {
    HFONT one = Font(8), other = Font(12);
    HGDIOBJ first = SelectObject(dc, one);
    EXPECT_NE(nullptr, first);
    EXPECT_EQ(static_cast<HGDIOBJ>(one), SelectObject(dc, other));
    EXPECT_EQ(static_cast<HGDIOBJ>(other), SelectObject(dc, first));
    EXPECT_TRUE(DeleteObject(one));
    EXPECT_TRUE(DeleteObject(other));
    EXPECT_FALSE(DeleteObject(nullptr));
}

TEST_F(Gdi, SettingAColourReturnsThePreviousOne) {
    EXPECT_EQ(RGB(0, 0, 0), SetTextColor(dc, RGB(1, 2, 3)));
    EXPECT_EQ(RGB(1, 2, 3), SetTextColor(dc, 0));
    EXPECT_EQ(RGB(255, 255, 255), SetBkColor(dc, RGB(4, 5, 6)));
    EXPECT_EQ(RGB(4, 5, 6), SetBkColor(dc, 0));
    EXPECT_EQ(OPAQUE, SetBkMode(dc, TRANSPARENT));
    EXPECT_EQ(TRANSPARENT, SetBkMode(dc, OPAQUE));
}

TEST_F(Gdi, ScreenMetricsMatchTheDeviceContext) {
    EXPECT_EQ(GetSystemMetrics(SM_CXSCREEN), GetDeviceCaps(dc, HORZRES));
    EXPECT_EQ(GetSystemMetrics(SM_CYSCREEN), GetDeviceCaps(dc, VERTRES));
    EXPECT_GT(GetSystemMetrics(SM_CXSCREEN), 100);
    EXPECT_GT(GetSystemMetrics(SM_CXVSCROLL), 0);
    EXPECT_GT(GetSystemMetrics(SM_CYHSCROLL), 0);
}

TEST_F(Gdi, DrawingInAPaintSucceeds) {
    HWND child = Child(1, 0, 0, 0, 100, 60);
    int drawn = 0;
    answer = [&](const Heard& now, LRESULT*) {
        if (now.message != WM_PAINT || now.window != child) return false;
        PAINTSTRUCT paint;
        HDC on = BeginPaint(child, &paint);
        const RECT cell = {0, 0, 30, 16};
        const INT advances[] = {10, 10, 10};
        const POINT line[] = {{0, 0}, {20, 0}};
        HBRUSH brush = CreateSolidBrush(RGB(0, 0, 255));
        HPEN pen = CreatePen(PS_SOLID, 1, RGB(255, 0, 0));
        HGDIOBJ before = SelectObject(on, pen);
        drawn += FillRect(on, &cell, brush) != 0;
        drawn += Polyline(on, line, 2) != 0;
        drawn += ExtTextOutW(on, 0, 0, ETO_OPAQUE | ETO_CLIPPED, &cell, TEXT("abc"), 3, advances);
        SelectObject(on, before);
        DeleteObject(pen);
        DeleteObject(brush);
        EndPaint(child, &paint);
        return true;
    };
    InvalidateRect(child, nullptr, TRUE);
    UpdateWindow(child);
    EXPECT_EQ(3, drawn);
}
