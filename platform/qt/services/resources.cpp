// Walks the entries of a .res file image.
#include "platform/qt/services/resources.h"

#include "platform/qt/services/accelerator_cache.h"
#include "platform/qt/services/wide_text.h"

namespace {

const uint8_t* g_image = nullptr;
size_t g_size = 0;

constexpr size_t kFixedHeader = 16;  // what follows the two names: version, flags, language, ...

bool IsNumber(LPCWSTR name) { return reinterpret_cast<UINT_PTR>(name) <= 0xFFFF; }

bool SameName(const ResourceName& name, LPCWSTR wanted) {
    if (IsNumber(wanted))
        return name.is_number && name.number == reinterpret_cast<UINT_PTR>(wanted);
    return !name.is_number && CompareWithoutCase(name.text.c_str(), wanted) == 0;
}

struct Entry {
    ResourceName type;
    ResourceName name;
    const uint8_t* bytes = nullptr;
    size_t size = 0;
};

bool TakeEntry(ResourceReader* reader, Entry* entry) {
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

}  // namespace

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

void SetResourceImage(const uint8_t* image, size_t size) {
    FreeAcceleratorTables();
    g_image = image;
    g_size = image ? size : 0;
}

bool FindResourceBytes(LPCWSTR type, LPCWSTR name, const uint8_t** bytes, size_t* size) {
    ResourceReader reader{g_image, g_size};
    Entry entry;
    while (reader.position < reader.size && TakeEntry(&reader, &entry)) {
        if (!SameName(entry.type, type) || !SameName(entry.name, name)) continue;
        *bytes = entry.bytes;
        *size = entry.size;
        return true;
    }
    return false;
}
