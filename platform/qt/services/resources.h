// SPDX-License-Identifier: MIT
// The program's compiled resources, a .res file image as `windres -O res` writes it. Finds a
// resource by type and name, has the bounds-checked reader for its bytes, and parses the kinds:
// accelerators, menus, dialog templates (DIALOG and DIALOGEX), bitmaps and icons.
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

// The caller keeps the image, which must outlive its use. Frees the tables that were loaded before.
void SetResourceImage(const uint8_t* image, size_t size);

// Type and name are each a number (MAKEINTRESOURCE) or a text, which is compared without case.
// Returns false if there is no such resource, or if the image is damaged in front of it.
bool FindResourceBytes(LPCWSTR type, LPCWSTR name, const uint8_t** bytes, size_t* size);

// Reads little-endian fields from the front of a run of bytes. A read past the end returns 0 or an
// empty text and sets `ok` to false; `ok` stays false.
struct ResourceReader {
    const uint8_t* bytes = nullptr;
    size_t size = 0;
    size_t position = 0;
    bool ok = true;

    bool Has(size_t count);  // true if so many bytes are left; else `ok` becomes false
    WORD TakeWord();
    DWORD TakeDword();
    std::u16string TakeText();  // reads up to and including the terminator
    void Skip(size_t count);
    void Align();  // to the next multiple of 4
};

// The name of a resource: a number (0xFFFF, number) or a text.
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
    std::u16string text;  // & marks its mnemonic; empty: a separator
    WORD id = 0;          // of the command; 0 for a submenu and a separator
    std::vector<MenuItem> items;
};

// Returns the menu's top-level items; empty if there is no such menu or it is damaged.
std::vector<MenuItem> ReadMenu(WORD name);

// Places and sizes are in dialog units; those of an item are relative to the dialog's corner.
struct DialogItem {
    DWORD style = 0;
    int x = 0, y = 0, width = 0, height = 0;
    int id = 0;
    ResourceName window_class;  // 0x80 button, 0x81 edit, ... or a text
    std::u16string text;
};

struct DialogTemplate {
    DWORD style = 0;
    int x = 0, y = 0, width = 0, height = 0;
    std::u16string caption;
    std::vector<DialogItem> items;
};

// False if the bytes are not a template, or end too early.
bool ReadDialogTemplate(const uint8_t* bytes, size_t size, DialogTemplate* result);

// The same for the resource with that name; false also if there is none.
bool LoadDialogTemplate(LPCWSTR name, DialogTemplate* result);

// Rows from top to bottom, pixels from left to right, each 0x00RRGGBB (an icon's: 0xAARRGGBB).
struct Bitmap {
    int width = 0;
    int height = 0;
    std::vector<uint32_t> pixels;
};

inline constexpr int kLargestBitmap = 1024;  // pixels of either side

// Reads a device-independent bitmap without file header: 1, 4, 8, 24 or 32 bits per pixel,
// uncompressed, rows from the bottom or (negative height) from the top. False for any other format,
// and if it is larger than kLargestBitmap or shorter than its header says.
bool ReadBitmap(ResourceReader reader, Bitmap* bitmap);

// Reads one size of an icon: a bitmap with rows from the bottom, whose header doubles the height,
// followed by a mask of one bit per pixel. The pixels are 0xAARRGGBB, opaque or transparent.
bool ReadIcon(ResourceReader reader, Bitmap* bitmap);

#endif
