// The program's compiled resources (a .res file image, as `windres -O res` writes it): finding one
// by type and name, and the bounds-checked reader for what is inside.
#ifndef QUILL_PLATFORM_QT_SERVICES_RESOURCES_H
#define QUILL_PLATFORM_QT_SERVICES_RESOURCES_H

#include <string>

#include "windows_ce.h"

inline constexpr WORD kResourceBitmap = 2;
inline constexpr WORD kResourceIcon = 3;
inline constexpr WORD kResourceMenu = 4;
inline constexpr WORD kResourceDialog = 5;
inline constexpr WORD kResourceAccelerator = 9;
inline constexpr WORD kResourceData = 10;
inline constexpr WORD kResourceIconGroup = 14;

// The image stays the caller's and must outlive its use. Tables loaded before are freed.
void SetResourceImage(const uint8_t* image, size_t size);

// Type and name each by number (MAKEINTRESOURCE) or by text, which is compared without case. False
// where there is no such resource, or the image is damaged before it.
bool FindResourceBytes(LPCWSTR type, LPCWSTR name, const uint8_t** bytes, size_t* size);

// Reads little-endian fields from the front of a run of bytes. A read past the end gives 0 or an
// empty text, and makes `ok` false for good.
struct ResourceReader {
    const uint8_t* bytes = nullptr;
    size_t size = 0;
    size_t position = 0;
    bool ok = true;

    bool Has(size_t count);  // that many bytes are left; false ends the reading
    WORD TakeWord();
    DWORD TakeDword();
    std::u16string TakeText();  // up to its terminator, which is taken too
    void Skip(size_t count);
    void Align();  // to the next multiple of 4
};

// A number (0xFFFF, number) or a text, as resources name things.
struct ResourceName {
    bool is_number = false;
    WORD number = 0;
    std::u16string text;
};
ResourceName TakeResourceName(ResourceReader* reader);

#endif
