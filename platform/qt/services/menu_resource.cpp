// Reads the menu template: a header of two words, then items of flags, id (not for submenus) and
// text, each submenu followed by its own items; a flag marks the last item of each level.
#include "platform/qt/services/menu_resource.h"

#include "platform/qt/services/resources.h"

namespace {

constexpr WORD kSubmenu = 0x10;
constexpr WORD kLastItem = 0x80;
constexpr int kDeepest = 4;  // levels

// An empty result stands for a damaged menu.
std::vector<MenuItem> ReadItems(ResourceReader* reader, int level) {
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

}  // namespace

std::vector<MenuItem> ReadMenu(WORD name) {
    const uint8_t* bytes = nullptr;
    size_t size = 0;
    if (!FindResourceBytes(MAKEINTRESOURCE(kResourceMenu), MAKEINTRESOURCE(name), &bytes, &size))
        return {};
    ResourceReader reader{bytes, size};
    reader.TakeWord();               // version
    reader.Skip(reader.TakeWord());  // what the header has beyond these two words
    return ReadItems(&reader, 1);
}
