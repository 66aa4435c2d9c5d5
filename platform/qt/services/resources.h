// SPDX-License-Identifier: MIT
// The program's compiled resources (a .res file image, as `windres -O res` writes it): finding one
// by type and name, the bounds-checked reader for what is inside, and the kinds: accelerators,
// menus, templates of dialogs (DIALOG and DIALOGEX), bitmaps and icons.
#ifndef QUILL_PLATFORM_QT_SERVICES_RESOURCES_H
#define QUILL_PLATFORM_QT_SERVICES_RESOURCES_H

#include <string>
#include <vector>

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

inline constexpr WORD kAcceleratorKey = 0x01;  // `key` is a virtual key, else a character
inline constexpr WORD kAcceleratorShift = 0x04;
inline constexpr WORD kAcceleratorControl = 0x08;
inline constexpr WORD kAcceleratorAlt = 0x10;

struct AcceleratorRow {
    WORD flags;
    WORD key;
    WORD command;
};

struct SliceAccelerators {
    std::vector<AcceleratorRow> rows;
};

struct MenuItem {
    std::u16string text;  // with & before its mnemonic; empty: a separator
    WORD id = 0;          // of the command; 0 for a submenu and a separator
    std::vector<MenuItem> items;
};

// The menu's top-level items. Empty where there is no such menu or it is damaged.
std::vector<MenuItem> ReadMenu(WORD name);

// Places and sizes are dialog units; those of an item count from the dialog's corner.
struct DialogItem {
    DWORD style = 0;
    int x = 0, y = 0, width = 0, height = 0;
    int id = 0;
    ResourceName window_class;  // 0x80 button, 0x81 edit, ... or by text
    std::u16string text;
};

struct DialogTemplate {
    DWORD style = 0;
    int x = 0, y = 0, width = 0, height = 0;
    std::u16string caption;
    std::vector<DialogItem> items;
};

// False for bytes that are no template, or end before it does.
bool ReadDialogTemplate(const uint8_t* bytes, size_t size, DialogTemplate* result);

// The same, by the resource's name; false also where there is none.
bool LoadDialogTemplate(LPCWSTR name, DialogTemplate* result);

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
