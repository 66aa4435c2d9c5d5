// SPDX-License-Identifier: MIT
// The command bar: a toolbar that keeps the height and place that the program gives it. It has an
// image list for its pictures, and uses the toolbar's tool tips. Each picture exists at 16 and at
// 32 pixels; above 100 % the larger one is used, and averaged to the size that the monitor's scale
// asks for.
#include "device.h"

#include <algorithm>
#include <map>
#include <vector>

constexpr int kPlainPixels = 16;
constexpr int kTwiceAsLarge = 10000;      // added to a bitmap's number: the larger one
constexpr uint32_t kBarColor = 0xC0C0C0;  // marks the pixels that show the bar

namespace {

// Pixels are 0xAARRGGBB, from the top; the colours are multiplied by their alpha.
struct Picture {
    int width = 0;
    int height = 0;
    std::vector<uint32_t> pixels;
};

}  // namespace

static BITMAPINFO PixelFormat(int width, int height) {
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    return info;
}

static Picture Load(HINSTANCE instance, int id) {
    const auto bitmap = static_cast<HBITMAP>(
        LoadImageW(instance, MAKEINTRESOURCEW(id), IMAGE_BITMAP, 0, 0, LR_CREATEDIBSECTION));
    BITMAP shape = {};
    if (!bitmap || !GetObjectW(bitmap, sizeof(shape), &shape)) return {};
    Picture picture = {shape.bmWidth, shape.bmHeight, {}};
    picture.pixels.resize(static_cast<size_t>(picture.width) * static_cast<size_t>(picture.height));
    BITMAPINFO info = PixelFormat(picture.width, picture.height);
    HDC screen = GetDC(nullptr);
    GetDIBits(screen, bitmap, 0, static_cast<UINT>(picture.height), picture.pixels.data(), &info,
              DIB_RGB_COLORS);
    ReleaseDC(nullptr, screen);
    DeleteObject(bitmap);
    for (uint32_t& pixel : picture.pixels) {
        pixel &= 0xFFFFFF;
        pixel = pixel == kBarColor ? 0 : pixel | 0xFF000000;
    }
    return picture;
}

// Returns how much of the pixel `from` overlaps the pixel `to` when `from_size` pixels become
// `to_size`.
static int Overlap(int from, int to, int from_size, int to_size) {
    return std::max(0, std::min((from + 1) * to_size, (to + 1) * from_size) -
                           std::max(from * to_size, to * from_size));
}

static uint32_t Average(const Picture& from, int x, int y, int width, int height) {
    uint64_t sums[4] = {}, whole = 0;
    for (int row = y * from.height / height; row < from.height; ++row) {
        const int high = Overlap(row, y, from.height, height);
        if (!high) break;
        for (int col = x * from.width / width; col < from.width; ++col) {
            const auto area = static_cast<uint64_t>(high * Overlap(col, x, from.width, width));
            if (!area) break;
            const uint32_t pixel = from.pixels[static_cast<size_t>(row * from.width + col)];
            for (int i = 0; i < 4; ++i) sums[i] += area * (pixel >> (8 * i) & 0xFF);
            whole += area;
        }
    }
    uint32_t result = 0;
    for (int i = 0; i < 4; ++i)
        result |= static_cast<uint32_t>((sums[i] + whole / 2) / whole) << (8 * i);
    return result;
}

int BarPictureSide() { return DevicePixels(kPlainPixels); }

HBITMAP LoadBarPictures(HINSTANCE instance, int id) {
    const int side = BarPictureSide();
    Picture from = side > kPlainPixels ? Load(instance, id + kTwiceAsLarge) : Picture();
    if (!from.height) from = Load(instance, id);
    if (!from.height) return nullptr;
    const int width = from.width * side / from.height;
    const BITMAPINFO info = PixelFormat(width, side);
    void* bits = nullptr;
    const HBITMAP bitmap = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    if (!bitmap) return nullptr;
    auto* pixel = static_cast<uint32_t*>(bits);
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < width; ++x) *pixel++ = Average(from, x, y, width, side);
    return bitmap;
}

// ---------------------------------------------------------------- the bar

constexpr int kButtonWidth = 23;  // pixels at 100 %
constexpr int kButtonHeight = 22;

namespace {

// The bitmaps of each bar in the order in which they were added, to load them again for another
// scale.
struct Source {
    HINSTANCE instance;
    int id;
};

}  // namespace
static std::map<HWND, std::vector<Source>> sources;

static HIMAGELIST PicturesOf(HWND bar) {
    return reinterpret_cast<HIMAGELIST>(SendMessageW(bar, TB_GETIMAGELIST, 0, 0));
}

static HIMAGELIST MakePictures(HWND bar) {
    const int side = BarPictureSide();
    HIMAGELIST pictures = ImageList_Create(side, side, ILC_COLOR32, 32, 32);
    SendMessageW(bar, TB_SETIMAGELIST, 0, reinterpret_cast<LPARAM>(pictures));
    SendMessageW(bar, TB_SETBUTTONSIZE, 0,
                 MAKELPARAM(DevicePixels(kButtonWidth), DevicePixels(kButtonHeight)));
    return pictures;
}

// Returns the index of the first picture, or -1.
static int AddPictures(HIMAGELIST pictures, const Source& source) {
    const HBITMAP bitmap = LoadBarPictures(source.instance, source.id);
    if (!bitmap) return -1;
    const int first = ImageList_Add(pictures, bitmap, nullptr);
    DeleteObject(bitmap);
    return first;
}

static void SetTip(HWND tips, HWND bar, int index, LPWSTR text) {
    TBBUTTON button = {};
    if (!SendMessageW(bar, TB_GETBUTTON, static_cast<WPARAM>(index),
                      reinterpret_cast<LPARAM>(&button)))
        return;
    TTTOOLINFOW tool = {};
    tool.cbSize = sizeof(tool);
    tool.hwnd = bar;
    tool.uId = static_cast<UINT_PTR>(button.idCommand);
    tool.lpszText = text;
    SendMessageW(tips, TTM_UPDATETIPTEXTW, 0, reinterpret_cast<LPARAM>(&tool));
}

HWND CommandBar_Create(HINSTANCE instance, HWND parent, int id) {
    RECT room = {};
    GetClientRect(parent, &room);
    const HWND bar =
        CreateWindowExW(0, TOOLBARCLASSNAMEW, nullptr,
                        WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | TBSTYLE_FLAT | TBSTYLE_TOOLTIPS |
                            CCS_NORESIZE | CCS_NOPARENTALIGN | CCS_NODIVIDER,
                        0, 0, room.right, DevicePixels(kCommandBarHeight), parent,
                        reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), instance, nullptr);
    if (bar) SendMessageW(bar, TB_BUTTONSTRUCTSIZE, sizeof(TBBUTTON), 0);
    return bar;
}

BOOL CommandBar_Show(HWND bar, BOOL show) { return ShowWindow(bar, show ? SW_SHOW : SW_HIDE); }

int CommandBar_Height(HWND bar) {
    RECT rect = {};
    GetWindowRect(bar, &rect);
    return rect.bottom - rect.top;
}

void CommandBar_Destroy(HWND bar) {
    const HIMAGELIST pictures = PicturesOf(bar);
    if (!DestroyWindow(bar)) return;
    if (pictures) ImageList_Destroy(pictures);
    sources.erase(bar);
}

int CommandBar_AddBitmap(HWND bar, HINSTANCE instance, int id, int, int, int) {
    HIMAGELIST pictures = PicturesOf(bar);
    if (!pictures) pictures = MakePictures(bar);
    const Source source = {instance, id};
    const int first = AddPictures(pictures, source);
    if (first >= 0) sources[bar].push_back(source);
    return first;
}

void RescaleCommandBar(HWND bar) {
    RECT rect = {};
    GetWindowRect(bar, &rect);
    SetWindowPos(bar, nullptr, 0, 0, rect.right - rect.left, DevicePixels(kCommandBarHeight),
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    const HIMAGELIST before = PicturesOf(bar);
    if (!before) return;
    const HIMAGELIST pictures = MakePictures(bar);
    for (const Source& source : sources[bar]) AddPictures(pictures, source);
    ImageList_Destroy(before);
    InvalidateRect(bar, nullptr, TRUE);
}

BOOL CommandBar_InsertButton(HWND bar, int index, const TBBUTTON* button) {
    return SendMessageW(bar, TB_INSERTBUTTONW, static_cast<WPARAM>(index),
                        reinterpret_cast<LPARAM>(button)) != 0;
}

BOOL CommandBar_AddToolTips(HWND bar, UINT count, LPWSTR* tips) {
    const auto window = reinterpret_cast<HWND>(SendMessageW(bar, TB_GETTOOLTIPS, 0, 0));
    if (!window || !tips) return FALSE;
    for (UINT i = 0; i < count; ++i) SetTip(window, bar, static_cast<int>(i), tips[i]);
    return TRUE;
}
