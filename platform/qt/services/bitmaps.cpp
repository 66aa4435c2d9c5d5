// Decodes the bitmaps and icons of the resources.
#include "platform/qt/services/bitmaps.h"

#include <cstdlib>

namespace {

constexpr DWORD kHeaderSize = 40;
constexpr DWORD kUncompressed = 0;
constexpr DWORD kMostHints = 256;  // colours that come with pixels that name none

struct Header {
    int width = 0;
    int height = 0;  // negative: from the top
    WORD bits = 0;
    DWORD colors = 0;  // in the palette that follows; 0: all that the bits can name
};

// Bit depths, and what one pixel of a row is: an index into the palette, or the colour itself.
struct DepthRow {
    WORD bits;
    uint32_t (*pixel)(const uint8_t* row, int x, const std::vector<uint32_t>& palette);
};

uint32_t Named(const std::vector<uint32_t>& palette, unsigned index) {
    return index < palette.size() ? palette[index] : 0;
}

uint32_t OneBit(const uint8_t* row, int x, const std::vector<uint32_t>& palette) {
    return Named(palette, (row[x / 8] >> (7 - x % 8)) & 1u);
}

uint32_t FourBits(const uint8_t* row, int x, const std::vector<uint32_t>& palette) {
    return Named(palette, x % 2 ? row[x / 2] & 15u : row[x / 2] >> 4);
}

uint32_t EightBits(const uint8_t* row, int x, const std::vector<uint32_t>& palette) {
    return Named(palette, row[x]);
}

uint32_t Color(const uint8_t* bytes) {
    return static_cast<uint32_t>(bytes[0] | (bytes[1] << 8) | (bytes[2] << 16));
}

uint32_t ThreeBytes(const uint8_t* row, int x, const std::vector<uint32_t>&) {
    return Color(row + 3 * x);
}

uint32_t FourBytes(const uint8_t* row, int x, const std::vector<uint32_t>&) {
    return Color(row + 4 * x);
}

const DepthRow kDepths[] = {
    {1, OneBit}, {4, FourBits}, {8, EightBits}, {24, ThreeBytes}, {32, FourBytes},
};

const DepthRow* DepthOf(WORD bits) {
    for (const DepthRow& row : kDepths)
        if (row.bits == bits) return &row;
    return nullptr;
}

bool SideFits(int side) { return side >= 1 && side <= kLargestBitmap; }

bool TakeHeader(ResourceReader* reader, Header* header) {
    const DWORD size = reader->TakeDword();
    header->width = static_cast<int>(reader->TakeDword());
    header->height = static_cast<int>(reader->TakeDword());
    reader->Skip(2);  // planes
    header->bits = reader->TakeWord();
    const DWORD compression = reader->TakeDword();
    reader->Skip(12);  // size of the picture, resolution
    header->colors = reader->TakeDword();
    reader->Skip(4);  // important colours
    if (!reader->ok || size < kHeaderSize || compression != kUncompressed) return false;
    reader->Skip(size - kHeaderSize);
    if (header->height < -kLargestBitmap) return false;
    return SideFits(header->width) && SideFits(std::abs(header->height));
}

bool TakePalette(ResourceReader* reader, const Header& header, std::vector<uint32_t>* palette) {
    const DWORD most = header.bits <= 8 ? 1u << header.bits : kMostHints;
    const DWORD count = header.colors || header.bits > 8 ? header.colors : most;
    if (count > most) return false;
    for (DWORD i = 0; i < count; i++) palette->push_back(reader->TakeDword() & 0xFFFFFF);
    return reader->ok;
}

size_t StrideOf(int width, WORD bits) { return (static_cast<size_t>(width) * bits + 31) / 32 * 4; }

// The pixels of `bits` each that come next, named by the palette.
bool TakePixels(ResourceReader* reader, const Header& header, WORD bits,
                const std::vector<uint32_t>& palette, Bitmap* bitmap) {
    const DepthRow* depth = DepthOf(bits);
    const int height = std::abs(header.height);
    const size_t stride = StrideOf(header.width, bits);
    const uint8_t* rows = reader->bytes + reader->position;
    if (!depth || !reader->Has(stride * static_cast<size_t>(height))) return false;
    *bitmap = {header.width, height, {}};
    for (int y = 0; y < height; y++) {
        const int line = header.height < 0 ? y : height - 1 - y;
        const uint8_t* row = rows + stride * static_cast<size_t>(line);
        for (int x = 0; x < header.width; x++)
            bitmap->pixels.push_back(depth->pixel(row, x, palette));
    }
    reader->Skip(stride * static_cast<size_t>(height));
    return true;
}

}  // namespace

bool ReadBitmap(ResourceReader reader, Bitmap* bitmap) {
    Header header;
    std::vector<uint32_t> palette;
    if (!TakeHeader(&reader, &header) || !TakePalette(&reader, header, &palette)) return false;
    return TakePixels(&reader, header, header.bits, palette, bitmap);
}

bool ReadIcon(ResourceReader reader, Bitmap* bitmap) {
    Header header;
    std::vector<uint32_t> palette;
    if (!TakeHeader(&reader, &header) || !TakePalette(&reader, header, &palette)) return false;
    if (header.height < 2 || header.height % 2) return false;
    header.height /= 2;  // it counts the mask in
    Bitmap mask;
    if (!TakePixels(&reader, header, header.bits, palette, bitmap)) return false;
    if (!TakePixels(&reader, header, 1, {0xFF000000u, 0}, &mask)) return false;
    for (size_t i = 0; i < bitmap->pixels.size(); i++) bitmap->pixels[i] |= mask.pixels[i];
    return true;
}
