// SPDX-License-Identifier: MIT
// The compiled resources: finds an entry in a .res file image and reads each kind of entry.
#include "platform/qt/services/resources.h"

#include <cstdlib>
#include <map>
#include <memory>

#include "platform/qt/services/services.h"

constexpr size_t kFixedHeader = 16;  // what follows the two names: version, flags, language, ...

static bool IsNumber(LPCWSTR name) { return reinterpret_cast<UINT_PTR>(name) <= 0xFFFF; }

static bool SameName(const ResourceName& name, LPCWSTR wanted) {
    if (IsNumber(wanted))
        return name.is_number && name.number == reinterpret_cast<UINT_PTR>(wanted);
    return !name.is_number && CompareWithoutCase(name.text.c_str(), wanted) == 0;
}

namespace {

struct Entry {
    ResourceName type;
    ResourceName name;
    const uint8_t* bytes = nullptr;
    size_t size = 0;
};

}  // namespace

// In the image's order, up to the first that is damaged.
static std::vector<Entry> g_entries;

static bool TakeEntry(ResourceReader* reader, Entry* entry) {
    const size_t start = reader->position;
    entry->size = reader->TakeDword();
    const size_t header = reader->TakeDword();
    entry->type = TakeResourceName(reader);
    entry->name = TakeResourceName(reader);
    reader->Align();
    reader->Skip(kFixedHeader);
    if (!reader->ok || start + header != reader->position) return false;
    entry->bytes = reader->bytes + reader->position;
    reader->Skip(entry->size);
    if (reader->position < reader->size) reader->Align();
    return reader->ok;
}

bool ResourceReader::Has(size_t count) {
    if (!ok || size - position < count) ok = false;
    return ok;
}

WORD ResourceReader::TakeWord() {
    if (!Has(2)) return 0;
    const WORD value = static_cast<WORD>(bytes[position] | (bytes[position + 1] << 8));
    position += 2;
    return value;
}

DWORD ResourceReader::TakeDword() {
    const DWORD low = TakeWord();
    return low | (static_cast<DWORD>(TakeWord()) << 16);
}

std::u16string ResourceReader::TakeText() {
    std::u16string text;
    for (WORD unit = TakeWord(); unit; unit = TakeWord()) text.push_back(unit);
    return ok ? text : std::u16string();
}

void ResourceReader::Skip(size_t count) {
    if (Has(count)) position += count;
}

void ResourceReader::Align() { Skip((4 - position % 4) % 4); }

ResourceName TakeResourceName(ResourceReader* reader) {
    ResourceName name;
    ResourceReader ahead = *reader;
    name.is_number = ahead.TakeWord() == 0xFFFF;
    if (name.is_number) {
        reader->TakeWord();
        name.number = reader->TakeWord();
    } else {
        name.text = reader->TakeText();
    }
    return name;
}

// The loaded tables live as long as the image.
static void FreeAcceleratorTables();

void SetResourceImage(const uint8_t* image, size_t size) {
    FreeAcceleratorTables();
    g_entries.clear();
    ResourceReader reader{image, image ? size : 0};
    for (Entry entry; reader.position < reader.size && TakeEntry(&reader, &entry);)
        g_entries.push_back(entry);
}

bool FindResourceBytes(LPCWSTR type, LPCWSTR name, const uint8_t** bytes, size_t* size) {
    for (const Entry& entry : g_entries) {
        if (!SameName(entry.type, type) || !SameName(entry.name, name)) continue;
        *bytes = entry.bytes;
        *size = entry.size;
        return true;
    }
    return false;
}

// ---------------------------------------------------------------- accelerators

constexpr WORD kLastRow = 0x80;

// By their address in the image, so that loading a table twice returns the same one.
static std::map<const uint8_t*, std::unique_ptr<SliceAccelerators>> g_tables;

// A row has four words: flags, key, command, padding. A flag marks the last row.
static std::unique_ptr<SliceAccelerators> ReadTable(ResourceReader reader) {
    auto table = std::make_unique<SliceAccelerators>();
    for (;;) {
        const WORD flags = reader.TakeWord();
        const WORD key = reader.TakeWord();
        const WORD command = reader.TakeWord();
        reader.TakeWord();
        if (!reader.ok) return nullptr;
        table->rows.push_back({static_cast<WORD>(flags & ~kLastRow), key, command});
        if (flags & kLastRow) return table;
    }
}

static void FreeAcceleratorTables() { g_tables.clear(); }

HACCEL LoadAcceleratorsW(HINSTANCE, LPCWSTR name) {
    const uint8_t* bytes = nullptr;
    size_t size = 0;
    if (!FindResourceBytes(MAKEINTRESOURCE(kResourceAccelerator), name, &bytes, &size))
        return nullptr;
    std::unique_ptr<SliceAccelerators>& table = g_tables[bytes];
    if (!table) table = ReadTable({bytes, size});
    return table.get();
}

// ---------------------------------------------------------------- menus

// A menu is a header of two words and then items. An item is flags, id (not for submenus) and text;
// a submenu is followed by its own items. A flag marks the last item of each level.

constexpr WORD kSubmenu = 0x10;
constexpr WORD kLastItem = 0x80;
constexpr int kDeepest = 4;  // levels

// Returns an empty list for a damaged menu.
static std::vector<MenuItem> ReadItems(ResourceReader* reader, int level) {
    std::vector<MenuItem> items;
    for (WORD flags = 0; !(flags & kLastItem);) {
        flags = reader->TakeWord();
        MenuItem item;
        if (!(flags & kSubmenu)) item.id = reader->TakeWord();
        item.text = reader->TakeText();
        if (flags & kSubmenu && level < kDeepest) item.items = ReadItems(reader, level + 1);
        if (!reader->ok || (flags & kSubmenu && item.items.empty())) return {};
        items.push_back(std::move(item));
    }
    return items;
}

std::vector<MenuItem> ReadMenu(WORD name) {
    const uint8_t* bytes = nullptr;
    size_t size = 0;
    if (!FindResourceBytes(MAKEINTRESOURCE(kResourceMenu), MAKEINTRESOURCE(name), &bytes, &size))
        return {};
    ResourceReader reader{bytes, size};
    reader.TakeWord();               // version
    reader.Skip(reader.TakeWord());  // skips the rest of the header
    return ReadItems(&reader, 1);
}

// ---------------------------------------------------------------- dialogs

// A template has one of two layouts; the newer one begins with a version and a signature.

constexpr WORD kExtendedVersion = 1;
constexpr WORD kExtendedSignature = 0xFFFF;

static int TakeShort(ResourceReader* reader) { return static_cast<int16_t>(reader->TakeWord()); }

template <typename Record>
static void TakePlace(ResourceReader* reader, Record* record) {
    record->x = TakeShort(reader);
    record->y = TakeShort(reader);
    record->width = TakeShort(reader);
    record->height = TakeShort(reader);
}

static bool IsExtended(ResourceReader reader) {
    const WORD version = reader.TakeWord();
    return reader.TakeWord() == kExtendedSignature && version == kExtendedVersion;
}

// Skips size and face. The newer layout has weight, slant and character set between them.
static void SkipFont(ResourceReader* reader, bool extended) {
    reader->Skip(extended ? 6 : 2);
    reader->TakeText();
}

static WORD TakeHeader(ResourceReader* reader, bool extended, DialogTemplate* result) {
    if (extended) reader->Skip(12);  // version, signature, help id, extended style
    result->style = reader->TakeDword();
    if (!extended) reader->Skip(4);  // extended style
    const WORD count = reader->TakeWord();
    TakePlace(reader, result);
    TakeResourceName(reader);  // menu
    TakeResourceName(reader);  // class
    result->caption = reader->TakeText();
    if (result->style & DS_SETFONT) SkipFont(reader, extended);
    return count;
}

static DialogItem TakeItem(ResourceReader* reader, bool extended) {
    DialogItem item;
    reader->Align();
    if (extended) reader->Skip(8);  // help id, extended style
    item.style = reader->TakeDword();
    if (!extended) reader->Skip(4);  // extended style
    TakePlace(reader, &item);
    item.id = extended ? static_cast<int>(reader->TakeDword()) : reader->TakeWord();
    item.window_class = TakeResourceName(reader);
    item.text = TakeResourceName(reader).text;
    reader->Skip(reader->TakeWord());  // the control's own data
    return item;
}

bool ReadDialogTemplate(const uint8_t* bytes, size_t size, DialogTemplate* result) {
    ResourceReader reader{bytes, size};
    *result = DialogTemplate();
    const bool extended = IsExtended(reader);
    const WORD count = TakeHeader(&reader, extended, result);
    for (WORD i = 0; i < count && reader.ok; ++i)
        result->items.push_back(TakeItem(&reader, extended));
    return reader.ok && result->width >= 0 && result->height >= 0;
}

bool LoadDialogTemplate(LPCWSTR name, DialogTemplate* result) {
    const uint8_t* bytes = nullptr;
    size_t size = 0;
    return FindResourceBytes(MAKEINTRESOURCE(kResourceDialog), name, &bytes, &size) &&
           ReadDialogTemplate(bytes, size, result);
}

// ---------------------------------------------------------------- bitmaps and icons

constexpr DWORD kHeaderSize = 40;
constexpr DWORD kUncompressed = 0;
constexpr WORD kPlainColors = 24, kPaddedColors = 32;  // bits of a pixel without a palette
constexpr DWORD kMostHints = 256;  // palette entries at most for depths that do not use a palette

namespace {

struct Header {
    int width = 0;
    int height = 0;  // negative: rows start at the top
    WORD bits = 0;
    DWORD colors = 0;  // palette entries; 0: as many as the bits can address
};

}  // namespace

static bool IsDepth(WORD bits) {
    return bits == 1 || bits == 4 || bits == 8 || bits == kPlainColors || bits == kPaddedColors;
}

static uint32_t Color(const uint8_t* bytes) {
    return static_cast<uint32_t>(bytes[0] | (bytes[1] << 8) | (bytes[2] << 16));
}

// Up to 8 bits are an index into the palette, and the first pixel of a byte has its highest bits.
static void TakeRow(const uint8_t* row, unsigned bits, const uint32_t* palette, uint32_t* next,
                    const uint32_t* end) {
    if (bits > 8) {
        for (; next < end; row += bits / 8) *next++ = Color(row);
        return;
    }
    const unsigned mask = (1u << bits) - 1;
    for (; next < end; ++row)
        for (unsigned shift = 8; shift > 0 && next < end;)
            *next++ = palette[(*row >> (shift -= bits)) & mask];
}

static bool SideFits(int side) { return side >= 1 && side <= kLargestBitmap; }

static bool TakeHeader(ResourceReader* reader, Header* header) {
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

static bool TakePalette(ResourceReader* reader, const Header& header,
                        std::vector<uint32_t>* palette) {
    const DWORD most = header.bits <= 8 ? 1u << header.bits : kMostHints;
    const DWORD count = header.colors || header.bits > 8 ? header.colors : most;
    if (count > most) return false;
    for (DWORD i = 0; i < count; ++i) palette->push_back(reader->TakeDword() & 0xFFFFFF);
    palette->resize(kMostHints);  // an index without an entry is black
    return reader->ok;
}

static size_t StrideOf(int width, WORD bits) {
    return (static_cast<size_t>(width) * bits + 31) / 32 * 4;
}

// Reads the next pixels, each of `bits` bits, and looks them up in the palette, which has an entry
// for each index.
static bool TakePixels(ResourceReader* reader, const Header& header, WORD bits,
                       const std::vector<uint32_t>& palette, Bitmap* bitmap) {
    const int height = std::abs(header.height);
    const size_t stride = StrideOf(header.width, bits);
    const uint8_t* rows = reader->bytes + reader->position;
    if (!IsDepth(bits) || !reader->Has(stride * static_cast<size_t>(height))) return false;
    *bitmap = {header.width, height, {}};
    bitmap->pixels.resize(static_cast<size_t>(header.width) * static_cast<size_t>(height));
    uint32_t* next = bitmap->pixels.data();
    for (int y = 0; y < height; ++y, next += header.width) {
        const int line = header.height < 0 ? y : height - 1 - y;
        const uint8_t* row = rows + stride * static_cast<size_t>(line);
        TakeRow(row, bits, palette.data(), next, next + header.width);
    }
    reader->Skip(stride * static_cast<size_t>(height));
    return true;
}

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
    header.height /= 2;  // it includes the mask
    Bitmap mask;
    if (!TakePixels(&reader, header, header.bits, palette, bitmap)) return false;
    if (!TakePixels(&reader, header, 1, {0xFF000000u, 0}, &mask)) return false;
    for (size_t i = 0; i < bitmap->pixels.size(); ++i) bitmap->pixels[i] |= mask.pixels[i];
    return true;
}
