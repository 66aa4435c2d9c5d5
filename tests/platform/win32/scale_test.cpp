// SPDX-License-Identifier: MIT
// The monitor's scale: everything is drawn at 100, 125, 150 and 200 %, and the program follows a
// change.
#include <set>

#include "resources/resource_ids.h"
#include "tests/platform/test_windows.h"

namespace {

constexpr int kPicture = 1540;  // the connect button, 16x16; 11540 has 32x32
const UINT kScales[] = {96, 120, 144, 192};

class Scale : public WindowTest {
  public:
    void SetUp() override {
        WindowTest::SetUp();
        before = DeviceDpi();
    }
    void TearDown() override {
        Change(before);
        WindowTest::TearDown();
    }
    // Sends the message of the desktop, with the rectangle that it suggests for the window.
    void Change(UINT dpi) {
        RECT place = {};
        GetWindowRect(top, &place);
        SendMessageW(top, WM_DPICHANGED, MAKEWPARAM(dpi, dpi), reinterpret_cast<LPARAM>(&place));
    }
    static LONG HeightOf(HFONT font) {
        HDC dc = GetDC(nullptr);
        HGDIOBJ last = SelectObject(dc, font);
        TEXTMETRICW metrics = {};
        GetTextMetricsW(dc, &metrics);
        SelectObject(dc, last);
        ReleaseDC(nullptr, dc);
        return metrics.tmHeight;
    }
    UINT before = 96;
};

HIMAGELIST PicturesOf(HWND bar) {
    return reinterpret_cast<HIMAGELIST>(SendMessageW(bar, TB_GETIMAGELIST, 0, 0));
}

std::vector<uint32_t> PixelsOf(HBITMAP bitmap) {
    DIBSECTION shape = {};
    GetObjectW(bitmap, sizeof(shape), &shape);
    const auto* first = static_cast<const uint32_t*>(shape.dsBm.bmBits);
    return {first, first + shape.dsBm.bmWidth * shape.dsBm.bmHeight};
}

}  // namespace

TEST(Manifest, MakesTheProgramAwareOfTheMonitorsScale) {
    EXPECT_TRUE(IsProcessDPIAware());
    EXPECT_EQ(DPI_AWARENESS_PER_MONITOR_AWARE,
              GetAwarenessFromDpiAwarenessContext(GetThreadDpiAwarenessContext()));
    // Wine counts every program as aware; so this is what the manifest says.
    wchar_t setting[64] = {};
    EXPECT_TRUE(QueryActCtxSettingsW(0, nullptr,
                                     L"http://schemas.microsoft.com/SMI/2016/WindowsSettings",
                                     L"dpiAwareness", setting, 64, nullptr));
    EXPECT_STREQ(L"PerMonitorV2, PerMonitor", setting);
}

// Windows has the current common controls in a separate folder.
TEST(Manifest, AsksForTheCommonControlsOfToday) {
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(GetModuleHandleW(L"comctl32.dll"), path, MAX_PATH);
    CharLowerW(path);
    EXPECT_NE(nullptr, wcsstr(path, L"\\winsxs\\"));
}

TEST(Manifest, LeavesTheCodePageToTheUser) {
    wchar_t digits[8] = {};
    GetLocaleInfoW(LOCALE_SYSTEM_DEFAULT, LOCALE_IDEFAULTANSICODEPAGE, digits, 8);
    EXPECT_EQ(_wtoi(digits), static_cast<int>(GetACP()));
}

TEST_F(Scale, FontKeepsItsHandleAndTakesTheNewSize) {
    LOGFONTW font = {};
    font.lfHeight = 10;
    Change(96);
    const HFONT handle = CreateFontIndirectW(&font);
    const LONG plain = HeightOf(handle);
    for (const UINT dpi : kScales) {
        Change(dpi);
        EXPECT_NEAR(plain * static_cast<LONG>(dpi) / 96, HeightOf(handle), 1) << dpi;
    }
    Change(96);
    EXPECT_EQ(plain, HeightOf(handle));
    EXPECT_TRUE(DeleteObject(handle));
}

TEST_F(Scale, CommandBarTakesTheNewHeightAndItsPicturesTheNewSize) {
    Change(96);
    const HWND bar = CommandBar_Create(GetModuleHandleW(nullptr), top, 1);
    ASSERT_EQ(0, CommandBar_AddBitmap(bar, GetModuleHandleW(nullptr), kPicture, 1, 16, 16));
    ASSERT_EQ(1, CommandBar_AddBitmap(bar, GetModuleHandleW(nullptr), kPicture + 1, 1, 16, 16));
    for (const UINT dpi : kScales) {
        Change(dpi);
        const int wanted = static_cast<int>(16 * dpi / 96);
        int width = 0, height = 0;
        ImageList_GetIconSize(PicturesOf(bar), &width, &height);
        EXPECT_EQ(wanted, width);
        EXPECT_EQ(wanted, height);
        EXPECT_EQ(2, ImageList_GetImageCount(PicturesOf(bar)));
        EXPECT_EQ(MulDiv(26, static_cast<int>(dpi), 96), CommandBar_Height(bar));
    }
    CommandBar_Destroy(bar);
}

// At 200 % no pixels are averaged: they are those of the drawing of 32x32.
TEST_F(Scale, PicturesOfTwiceTheSizeUseTheLargerDrawings) {
    Change(192);
    const HMODULE module = GetModuleHandleW(nullptr);
    const HBITMAP shown = LoadBarPictures(module, kPicture);
    const auto drawn = static_cast<HBITMAP>(LoadImageW(module, MAKEINTRESOURCEW(kPicture + 10000),
                                                       IMAGE_BITMAP, 0, 0, LR_CREATEDIBSECTION));
    HDC from = CreateCompatibleDC(nullptr);
    const HGDIOBJ last = SelectObject(from, drawn);
    const std::vector<uint32_t> pixels = PixelsOf(shown);
    ASSERT_EQ(32u * 32u, pixels.size());
    std::set<uint32_t> colors;
    for (int i = 0; i < 32 * 32; i++) {
        const COLORREF color = GetPixel(from, i % 32, i / 32);
        const uint32_t pixel = color == RGB(0xC0, 0xC0, 0xC0)
                                   ? 0
                                   : 0xFF000000u | static_cast<uint32_t>(GetRValue(color)) << 16 |
                                         static_cast<uint32_t>(GetGValue(color)) << 8 |
                                         GetBValue(color);
        ASSERT_EQ(pixel, pixels[static_cast<size_t>(i)]) << i;
        colors.insert(pixel);
    }
    EXPECT_GT(colors.size(), 2u);
    SelectObject(from, last);
    DeleteDC(from);
    DeleteObject(drawn);
    DeleteObject(shown);
}

// At 150 % each pixel is the average of the pixels that it covers, so the ink stays the same.
TEST_F(Scale, PicturesBetweenTheTwoDrawingsAreAveraged) {
    uint64_t weight[2] = {};
    const UINT dpi[] = {192, 144};
    for (int i = 0; i < 2; i++) {
        Change(dpi[i]);
        const HBITMAP shown = LoadBarPictures(GetModuleHandleW(nullptr), kPicture);
        const std::vector<uint32_t> pixels = PixelsOf(shown);
        for (const uint32_t pixel : pixels) weight[i] += pixel >> 24;
        weight[i] = weight[i] * 10000 / pixels.size();
        DeleteObject(shown);
    }
    EXPECT_GT(weight[0], 0u);
    EXPECT_NEAR(static_cast<double>(weight[0]), static_cast<double>(weight[1]),
                static_cast<double>(weight[0]) / 100);
}

TEST_F(Scale, WindowTakesTheSuggestedRectangleAndIsLaidOut) {
    RECT place = {40, 50, 640, 500}, now = {};
    heard.clear();
    SendMessageW(top, WM_DPICHANGED, MAKEWPARAM(144, 144), reinterpret_cast<LPARAM>(&place));
    GetWindowRect(top, &now);
    EXPECT_EQ(600, now.right - now.left);
    EXPECT_EQ(450, now.bottom - now.top);
    EXPECT_FALSE(Of(WM_SIZE, top).empty());
    heard.clear();
    SendMessageW(top, WM_DPICHANGED, MAKEWPARAM(192, 192), reinterpret_cast<LPARAM>(&place));
    EXPECT_FALSE(Of(WM_SIZE, top).empty());  // the size is the same, but the cells change
}

// The system says one scale, and the monitor has another one: after a change without a new log-on.
TEST_F(Scale, WindowThatOpensAtAnotherScaleHasItsSizeInThatScale) {
    const auto size_of = [](int width, int height, UINT scale) {
        const HWND window = CreateWindowExW(0, L"STATIC", nullptr, 0, 0, 0, width, height, nullptr,
                                            nullptr, GetModuleHandleW(nullptr), nullptr);
        EXPECT_EQ(scale, DeviceDpi());
        RECT outer = {};
        GetWindowRect(window, &outer);
        DestroyWindow(window);
        return std::pair(outer.right - outer.left, outer.bottom - outer.top);
    };
    const auto wanted = size_of(300, 200, before);
    Change(2 * before);
    EXPECT_EQ(wanted, size_of(600, 400, before));
    Change(before / 2);
    EXPECT_EQ(wanted, size_of(150, 100, before));
}

static Scale* self;
static UINT seen;

static void CALLBACK ChangeUnderTheBox(HWND, UINT, UINT_PTR id, DWORD) {
    KillTimer(nullptr, id);
    self->Change(192);
    seen = DeviceDpi();
    PostMessageW(FindWindowW(nullptr, L"Quill scale test"), WM_COMMAND, IDOK, 0);
}

TEST_F(Scale, ChangeIsAppliedWhileABoxIsOpen) {
    self = this;
    seen = 0;
    SetTimer(nullptr, 0, 300, ChangeUnderTheBox);
    EXPECT_EQ(IDOK, MessageBoxW(top, L"!", L"Quill scale test", MB_OKCANCEL));
    EXPECT_EQ(192u, seen);
    EXPECT_TRUE(IsWindowEnabled(top));
}
