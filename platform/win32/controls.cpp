// The command bar: a toolbar that keeps the height and place that the program gives it.
#include "device.h"

HWND CommandBar_Create(HINSTANCE instance, HWND parent, int id) {
    RECT room = {};
    GetClientRect(parent, &room);
    const HWND bar =
        CreateWindowExW(0, TOOLBARCLASSNAMEW, nullptr,
                        WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | TBSTYLE_FLAT | TBSTYLE_TOOLTIPS |
                            CCS_NORESIZE | CCS_NOPARENTALIGN | CCS_NODIVIDER,
                        0, 0, room.right, kCommandBarHeight, parent,
                        reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), instance, nullptr);
    if (bar) SendMessageW(bar, TB_BUTTONSTRUCTSIZE, sizeof(TBBUTTON), 0);
    return bar;
}

BOOL CommandBar_Show(HWND bar, BOOL show) { return ShowWindow(bar, show ? SW_SHOW : SW_HIDE); }

int CommandBar_Height(HWND bar) {
    RECT rect = {};
    GetWindowRect(bar, &rect);
    return rect.bottom - rect.top;
}

void CommandBar_Destroy(HWND bar) { DestroyWindow(bar); }
