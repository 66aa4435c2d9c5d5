// SPDX-License-Identifier: MIT
// Decodes intact and damaged bitmaps and icons of the resources.
#include "platform/qt/services/resources.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

using Bytes = std::vector<uint8_t>;
using Pixels = std::vector<uint32_t>;

void Add(Bytes* to, uint32_t value, int count) {
    for (int i = 0; i < count; i++) to->push_back(static_cast<uint8_t>(value >> (8 * i)));
}

struct Shape {
    int32_t width = 2;
    int32_t height = 2;
    WORD bits = 4;
    DWORD colors = 0;
    DWORD compression = 0;
    DWORD header = 40;
};

Bytes MakeBitmap(const Shape& shape, const Pixels& palette, const Bytes& rows) {
    Bytes bytes;
    Add(&bytes, shape.header, 4);
    Add(&bytes, static_cast<uint32_t>(shape.width), 4);
    Add(&bytes, static_cast<uint32_t>(shape.height), 4);
    Add(&bytes, 1, 2);
    Add(&bytes, shape.bits, 2);
    Add(&bytes, shape.compression, 4);
    Add(&bytes, 0, 4), Add(&bytes, 0, 4), Add(&bytes, 0, 4);
    Add(&bytes, shape.colors, 4);
    Add(&bytes, 0, 4);
    for (const uint32_t color : palette) Add(&bytes, color, 4);
    bytes.insert(bytes.end(), rows.begin(), rows.end());
    return bytes;
}

// Decodes from a block of exactly that size, so that the sanitizer sees a read past its end.
bool Decode(const Bytes& bytes, size_t size, Bitmap* bitmap) {
    const std::unique_ptr<uint8_t[]> copy(new uint8_t[size]);
    std::copy(bytes.begin(), bytes.begin() + static_cast<long>(size), copy.get());
    return ReadBitmap({copy.get(), size}, bitmap);
}

Pixels PixelsOf(const Bytes& bytes) {
    Bitmap bitmap;
    return Decode(bytes, bytes.size(), &bitmap) ? bitmap.pixels : Pixels();
}

Pixels Ramp(uint32_t count) {
    Pixels colors;
    for (uint32_t i = 0; i < count; i++) colors.push_back(0x010101 * i);
    return colors;
}

constexpr uint32_t kRed = 0xFF0000, kGreen = 0x00FF00, kBlue = 0x0000FF, kWhite = 0xFFFFFF;

TEST(Bitmaps, OneBitPixelsStartAtTheHighestBit) {
    const Bytes rows = {0x40, 0x80, 0, 0, 0xFF, 0x00, 0, 0};
    const Pixels pixels = PixelsOf(MakeBitmap({.width = 9, .bits = 1}, {kRed, kBlue}, rows));
    const Pixels top(8, kBlue), bottom = {kRed, kBlue, kRed, kRed, kRed, kRed, kRed, kRed, kBlue};
    Pixels expected = top;
    expected.push_back(kRed);
    expected.insert(expected.end(), bottom.begin(), bottom.end());
    EXPECT_EQ(expected, pixels);
}

TEST(Bitmaps, FourBitPixelsStartAtTheHighNibble) {
    const Bytes rows = {0x01, 0x20, 0, 0, 0xF3, 0x40, 0, 0};
    const Pixels colors = Ramp(16);
    EXPECT_EQ((Pixels{colors[15], colors[3], colors[4], colors[0], colors[1], colors[2]}),
              PixelsOf(MakeBitmap({.width = 3, .bits = 4}, colors, rows)));
}

TEST(Bitmaps, EightBitPixelsIndex256Colours) {
    const Pixels colors = Ramp(256);
    EXPECT_EQ((Pixels{colors[255], colors[7], colors[0], colors[128]}),
              PixelsOf(MakeBitmap({.bits = 8}, colors, {0, 128, 0, 0, 255, 7, 0, 0})));
}

TEST(Bitmaps, BytesOfAColourAreBlueGreenRed) {
    const Bytes three = {0xFF, 0, 0, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0, 0xFF, 0, 0xFF, 0, 0, 0};
    EXPECT_EQ((Pixels{kRed, kGreen, kBlue, kWhite}), PixelsOf(MakeBitmap({.bits = 24}, {}, three)));
    const Bytes four = {0xFF, 0, 0, 0x80, 0xFF, 0xFF, 0, 0};
    EXPECT_EQ((Pixels{kBlue, 0x00FFFF}), PixelsOf(MakeBitmap({.height = 1, .bits = 32}, {}, four)));
}

TEST(Bitmaps, EachPixelOfALongRowHasItsOwnBytes) {
    Bytes three, four;
    Pixels expected;
    for (uint32_t i = 0; i < 16; ++i) {
        expected.push_back(0x102030 + 0x070503 * i);
        Add(&three, expected.back(), 3);
        Add(&four, expected.back(), 4);
    }
    EXPECT_EQ(expected, PixelsOf(MakeBitmap({.width = 16, .height = 1, .bits = 24}, {}, three)));
    EXPECT_EQ(expected, PixelsOf(MakeBitmap({.width = 16, .height = 1, .bits = 32}, {}, four)));
}

TEST(Bitmaps, ANegativeHeightCountsFromTheTop) {
    const Bytes rows = {0x10, 0, 0, 0, 0x23, 0, 0, 0};
    const Pixels colors = Ramp(16);
    EXPECT_EQ((Pixels{colors[1], colors[0], colors[2], colors[3]}),
              PixelsOf(MakeBitmap({.height = -2, .bits = 4}, colors, rows)));
}

TEST(Bitmaps, AShorterPaletteIsTakenAndOtherIndexesAreBlack) {
    EXPECT_EQ((Pixels{kBlue, 0}), PixelsOf(MakeBitmap({.height = 1, .bits = 4, .colors = 2},
                                                      {kRed, kBlue}, {0x1F, 0, 0, 0})));
}

TEST(Bitmaps, ALongerHeaderIsSkipped) {
    Bytes bytes = MakeBitmap({.width = 1, .height = 1, .bits = 32, .header = 44}, {}, {});
    Add(&bytes, 0x12345678, 4);
    Add(&bytes, kGreen, 4);
    EXPECT_EQ(Pixels{kGreen}, PixelsOf(bytes));
}

TEST(Bitmaps, OtherKindsAreRefused) {
    const Bytes rows(64, 0);
    const Pixels colors = Ramp(16);
    const Shape shapes[] = {
        {.bits = 0},
        {.bits = 2},
        {.bits = 16},
        {.bits = 0xFFFF},
        {.compression = 2},
        {.header = 12},
        {.header = 0},
        {.header = 0xFFFFFFFF},
        {.width = 0},
        {.height = 0},
        {.width = -2},
        {.width = 1025},
        {.height = INT32_MIN},
        {.height = -1025},
        {.width = INT32_MAX, .height = INT32_MAX},
        {.colors = 17},
        {.colors = 0xFFFFFFFF},
        {.bits = 24, .colors = 257},
        {.bits = 32, .colors = 0x80000000},
    };
    EXPECT_EQ(4u, PixelsOf(MakeBitmap({}, colors, rows)).size());
    for (const Shape& shape : shapes)
        EXPECT_TRUE(PixelsOf(MakeBitmap(shape, colors, rows)).empty())
            << shape.width << 'x' << shape.height << ' ' << shape.bits << ' ' << shape.colors << ' '
            << shape.header << ' ' << shape.compression;
}

TEST(Bitmaps, BitmapCutAnywhereIsRefused) {
    const Bytes whole = MakeBitmap({.width = 5, .height = 3}, Ramp(16), Bytes(12, 0x5A));
    Bitmap bitmap;
    for (size_t size = 0; size < whole.size(); size++)
        EXPECT_FALSE(Decode(whole, size, &bitmap)) << size;
    EXPECT_TRUE(Decode(whole, whole.size(), &bitmap));
    EXPECT_EQ(15u, bitmap.pixels.size());
}

TEST(Bitmaps, EachChangedByteIsReadWithinItsBounds) {
    const Bytes whole = MakeBitmap({.width = 5, .height = 3}, Ramp(16), Bytes(12, 0x5A));
    for (size_t i = 0; i < whole.size(); i++) {
        for (const int value : {0x00, 0x01, 0x7F, 0x80, 0xFF}) {
            Bytes changed = whole;
            changed[i] = static_cast<uint8_t>(value);
            Bitmap bitmap;
            if (!Decode(changed, changed.size(), &bitmap)) continue;
            EXPECT_EQ(static_cast<size_t>(bitmap.width) * static_cast<size_t>(bitmap.height),
                      bitmap.pixels.size());
        }
    }
}

// Two by two pixels, followed by a mask that makes the lower left one transparent.
Bytes MakeIcon(int32_t height = 4) {
    const Bytes colors_and_mask = {0x01, 0, 0, 0, 0x23, 0, 0, 0, 0x80, 0, 0, 0, 0x00, 0, 0, 0};
    return MakeBitmap({.height = height}, Ramp(16), colors_and_mask);
}

bool DecodeIcon(const Bytes& bytes, size_t size, Bitmap* bitmap) {
    const std::unique_ptr<uint8_t[]> copy(new uint8_t[size]);
    std::copy(bytes.begin(), bytes.begin() + static_cast<long>(size), copy.get());
    return ReadIcon({copy.get(), size}, bitmap);
}

TEST(Icons, MaskMakesPixelsTransparent) {
    const Bytes bytes = MakeIcon();
    Bitmap icon;
    ASSERT_TRUE(DecodeIcon(bytes, bytes.size(), &icon));
    EXPECT_EQ(2, icon.width);
    EXPECT_EQ(2, icon.height);
    EXPECT_EQ((Pixels{0xFF020202, 0xFF030303, 0x00000000, 0xFF010101}), icon.pixels);
}

TEST(Icons, IconCutAnywhereIsRefused) {
    const Bytes whole = MakeIcon();
    Bitmap icon;
    for (size_t size = 0; size < whole.size(); size++)
        EXPECT_FALSE(DecodeIcon(whole, size, &icon)) << size;
}

TEST(Icons, HeightThatIsNotTwiceThePicturesIsRefused) {
    for (const int32_t height : {-4, 0, 1, 3, 2048}) {
        const Bytes bytes = MakeIcon(height);
        Bitmap icon;
        EXPECT_FALSE(DecodeIcon(bytes, bytes.size(), &icon)) << height;
    }
}

}  // namespace
