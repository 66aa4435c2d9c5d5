// SPDX-License-Identifier: MIT
// The command bar: a toolbar that keeps the height and place that the program gives it. It has an
// image list for its pictures, and uses the toolbar's tool tips.
#include <map>
#include <vector>

#include "device.h"

constexpr int kButtonWidth = 23;  // pixels at 100 %
constexpr int kButtonHeight = 22;

namespace {

// The bitmaps of each bar in the order in which they were added, to load them again for another
// scale.
struct Source {
    HINSTANCE instance;
    int id;
};

}  // namespace
static std::map<HWND, std::vector<Source>> sources;

static HIMAGELIST PicturesOf(HWND bar) {
    return reinterpret_cast<HIMAGELIST>(SendMessageW(bar, TB_GETIMAGELIST, 0, 0));
}

static HIMAGELIST MakePictures(HWND bar) {
    const int side = BarPictureSide();
    HIMAGELIST pictures = ImageList_Create(side, side, ILC_COLOR32, 32, 32);
    SendMessageW(bar, TB_SETIMAGELIST, 0, reinterpret_cast<LPARAM>(pictures));
    SendMessageW(bar, TB_SETBUTTONSIZE, 0,
                 MAKELPARAM(DevicePixels(kButtonWidth), DevicePixels(kButtonHeight)));
    return pictures;
}

// Returns the index of the first picture, or -1.
static int AddPictures(HIMAGELIST pictures, const Source& source) {
    const HBITMAP bitmap = LoadBarPictures(source.instance, source.id);
    if (!bitmap) return -1;
    const int first = ImageList_Add(pictures, bitmap, nullptr);
    DeleteObject(bitmap);
    return first;
}

static void SetTip(HWND tips, HWND bar, int index, LPWSTR text) {
    TBBUTTON button = {};
    if (!SendMessageW(bar, TB_GETBUTTON, static_cast<WPARAM>(index),
                      reinterpret_cast<LPARAM>(&button)))
        return;
    TTTOOLINFOW tool = {};
    tool.cbSize = sizeof(tool);
    tool.hwnd = bar;
    tool.uId = static_cast<UINT_PTR>(button.idCommand);
    tool.lpszText = text;
    SendMessageW(tips, TTM_UPDATETIPTEXTW, 0, reinterpret_cast<LPARAM>(&tool));
}

HWND CommandBar_Create(HINSTANCE instance, HWND parent, int id) {
    RECT room = {};
    GetClientRect(parent, &room);
    const HWND bar =
        CreateWindowExW(0, TOOLBARCLASSNAMEW, nullptr,
                        WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | TBSTYLE_FLAT | TBSTYLE_TOOLTIPS |
                            CCS_NORESIZE | CCS_NOPARENTALIGN | CCS_NODIVIDER,
                        0, 0, room.right, DevicePixels(kCommandBarHeight), parent,
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

void CommandBar_Destroy(HWND bar) {
    const HIMAGELIST pictures = PicturesOf(bar);
    if (!DestroyWindow(bar)) return;
    if (pictures) ImageList_Destroy(pictures);
    sources.erase(bar);
}

int CommandBar_AddBitmap(HWND bar, HINSTANCE instance, int id, int, int, int) {
    HIMAGELIST pictures = PicturesOf(bar);
    if (!pictures) pictures = MakePictures(bar);
    const Source source = {instance, id};
    const int first = AddPictures(pictures, source);
    if (first >= 0) sources[bar].push_back(source);
    return first;
}

void RescaleCommandBar(HWND bar) {
    RECT rect = {};
    GetWindowRect(bar, &rect);
    SetWindowPos(bar, nullptr, 0, 0, rect.right - rect.left, DevicePixels(kCommandBarHeight),
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    const HIMAGELIST before = PicturesOf(bar);
    if (!before) return;
    const HIMAGELIST pictures = MakePictures(bar);
    for (const Source& source : sources[bar]) AddPictures(pictures, source);
    ImageList_Destroy(before);
    InvalidateRect(bar, nullptr, TRUE);
}

BOOL CommandBar_InsertButton(HWND bar, int index, const TBBUTTON* button) {
    return SendMessageW(bar, TB_INSERTBUTTONW, static_cast<WPARAM>(index),
                        reinterpret_cast<LPARAM>(button)) != 0;
}

BOOL CommandBar_AddToolTips(HWND bar, UINT count, LPWSTR* tips) {
    const auto window = reinterpret_cast<HWND>(SendMessageW(bar, TB_GETTOOLTIPS, 0, 0));
    if (!window || !tips) return FALSE;
    for (UINT i = 0; i < count; ++i) SetTip(window, bar, static_cast<int>(i), tips[i]);
    return TRUE;
}
