// Dialog templates: two layouts, told apart by the words that the newer one begins with.
#include "platform/qt/services/dialog_template.h"

namespace {

constexpr WORD kExtendedVersion = 1;
constexpr WORD kExtendedSignature = 0xFFFF;

int TakeShort(ResourceReader* reader) { return static_cast<int16_t>(reader->TakeWord()); }

template <typename Record>
void TakePlace(ResourceReader* reader, Record* record) {
    record->x = TakeShort(reader);
    record->y = TakeShort(reader);
    record->width = TakeShort(reader);
    record->height = TakeShort(reader);
}

bool IsExtended(ResourceReader reader) {
    const WORD version = reader.TakeWord();
    return reader.TakeWord() == kExtendedSignature && version == kExtendedVersion;
}

// Size and face; the newer layout has weight, slant and character set between them.
void SkipFont(ResourceReader* reader, bool extended) {
    reader->Skip(extended ? 6 : 2);
    reader->TakeText();
}

WORD TakeHeader(ResourceReader* reader, bool extended, DialogTemplate* result) {
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

DialogItem TakeItem(ResourceReader* reader, bool extended) {
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

}  // namespace

bool ReadDialogTemplate(const uint8_t* bytes, size_t size, DialogTemplate* result) {
    ResourceReader reader{bytes, size};
    *result = DialogTemplate();
    const bool extended = IsExtended(reader);
    const WORD count = TakeHeader(&reader, extended, result);
    for (WORD i = 0; i < count && reader.ok; i++)
        result->items.push_back(TakeItem(&reader, extended));
    return reader.ok && result->width >= 0 && result->height >= 0;
}

bool LoadDialogTemplate(LPCWSTR name, DialogTemplate* result) {
    const uint8_t* bytes = nullptr;
    size_t size = 0;
    return FindResourceBytes(MAKEINTRESOURCE(kResourceDialog), name, &bytes, &size) &&
           ReadDialogTemplate(bytes, size, result);
}
