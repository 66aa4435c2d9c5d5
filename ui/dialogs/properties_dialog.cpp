// The "Properties" sheet.
#include "resources/resource_ids.h"
#include "session/session_ports.h"
#include "session/session_state.h"
#include "ui/dialogs/dialog_tools.h"
#include "ui/dialogs/dialogs.h"

namespace {

struct PageRow {
    WORD id;
    DLGPROC procedure;
};

const PageRow kPages[] = {
    {IDD_OTHER_PAGE, OtherPageProc},
    {IDD_TOOLBAR_PAGE, ToolbarPageProc},
    {IDD_KEYBOARD_PAGE, KeyboardPageProc},
};
constexpr UINT kPageCount = static_cast<UINT>(sizeof kPages / sizeof kPages[0]);

}  // namespace

void ShowPropertiesSheet() {
    PROPSHEETPAGEW pages[kPageCount] = {};
    for (UINT i = 0; i < kPageCount; i++) {
        pages[i].dwSize = sizeof pages[i];
        pages[i].hInstance = session.instance;
        pages[i].pszTemplate = MAKEINTRESOURCE(kPages[i].id);
        pages[i].pfnDlgProc = kPages[i].procedure;
    }
    PROPSHEETHEADERW sheet = {};
    sheet.dwSize = sizeof sheet;
    sheet.dwFlags = PSH_PROPSHEETPAGE | PSH_NOAPPLYNOW;
    sheet.hwndParent = session.main_window;
    sheet.hInstance = session.instance;
    sheet.pszCaption = TEXT("Properties");
    sheet.nPages = kPageCount;
    sheet.ppsp = pages;
    PropertySheetW(&sheet);
    session_ports.rebuild_menu_bar();  // the page "Toolbar" may have changed its buttons
    SettingsChanged();
    SaveIfEnabled();
}
