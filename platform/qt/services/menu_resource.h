// Menus as the compiled resources hold them.
#ifndef QUILL_PLATFORM_QT_SERVICES_MENU_RESOURCE_H
#define QUILL_PLATFORM_QT_SERVICES_MENU_RESOURCE_H

#include <string>
#include <vector>

#include "windows_ce.h"

struct MenuItem {
    std::u16string text;  // with & before its mnemonic; empty: a separator
    WORD id = 0;          // of the command; 0 for a submenu and a separator
    std::vector<MenuItem> items;
};

// The menu's top-level items. Empty where there is no such menu or it is damaged.
std::vector<MenuItem> ReadMenu(WORD name);

#endif
