// Bitmaps and icons among the resources.
#ifndef QUILL_PLATFORM_QT_SERVICES_BITMAPS_H
#define QUILL_PLATFORM_QT_SERVICES_BITMAPS_H

#include <vector>

#include "platform/qt/services/resources.h"

// Rows from the top, pixels from the left, each 0x00RRGGBB (an icon's: 0xAARRGGBB).
struct Bitmap {
    int width = 0;
    int height = 0;
    std::vector<uint32_t> pixels;
};

inline constexpr int kLargestBitmap = 1024;  // pixels of either side

// A device-independent bitmap without file header: 1, 4, 8, 24 or 32 bits a pixel, uncompressed,
// rows from the bottom or (negative height) from the top. False for every other one, and for one
// that is larger than kLargestBitmap or shorter than it says.
bool ReadBitmap(ResourceReader reader, Bitmap* bitmap);

// One size of an icon: the same with rows from the bottom, whose height counts twice, and a mask of
// one bit a pixel behind the colours. The pixels are 0xAARRGGBB, opaque or seen through.
bool ReadIcon(ResourceReader reader, Bitmap* bitmap);

#endif
