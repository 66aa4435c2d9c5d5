// A dialog's template as the resources hold it (DIALOG and DIALOGEX), read into records.
#ifndef QUILL_PLATFORM_QT_SERVICES_DIALOG_TEMPLATE_H
#define QUILL_PLATFORM_QT_SERVICES_DIALOG_TEMPLATE_H

#include <vector>

#include "platform/qt/services/resources.h"

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

#endif
