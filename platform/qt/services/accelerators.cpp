// Accelerator tables from the resources.
#include "platform/qt/services/accelerators.h"

#include <map>
#include <memory>

#include "platform/qt/services/accelerator_cache.h"
#include "platform/qt/services/resources.h"

namespace {

constexpr WORD kLastRow = 0x80;

// By where they lie in the image, so that a table loaded twice is the same one.
std::map<const uint8_t*, std::unique_ptr<SliceAccelerators>> g_tables;

// Rows of four words: flags, key, command, padding; the last one says so.
std::unique_ptr<SliceAccelerators> ReadTable(ResourceReader reader) {
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

}  // namespace

void FreeAcceleratorTables() { g_tables.clear(); }

HACCEL LoadAcceleratorsW(HINSTANCE, LPCWSTR name) {
    const uint8_t* bytes = nullptr;
    size_t size = 0;
    if (!FindResourceBytes(MAKEINTRESOURCE(kResourceAccelerator), name, &bytes, &size))
        return nullptr;
    std::unique_ptr<SliceAccelerators>& table = g_tables[bytes];
    if (!table) table = ReadTable({bytes, size});
    return table.get();
}
