// SPDX-License-Identifier: MIT
// The command bar's pictures in the size that the monitor's scale asks for. Each picture exists at
// 16 and at 32 pixels; above 100 % the larger one is used, and averaged to the size.
#include <algorithm>
#include <vector>

#include "device.h"

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
