// The command bar: a toolbar that keeps the height and place that the program gives it. Its
// pictures stand in an image list of its own; its tips in the toolbar's tool tips.
#include "device.h"

namespace {

constexpr int kPicturePixels = 16;
constexpr COLORREF kBarColor = RGB(0xC0, 0xC0, 0xC0);  // in the bitmaps: what shows the bar

HIMAGELIST PicturesOf(HWND bar) {
    return reinterpret_cast<HIMAGELIST>(SendMessageW(bar, TB_GETIMAGELIST, 0, 0));
}

HIMAGELIST MakePictures(HWND bar) {
    HIMAGELIST pictures =
        ImageList_Create(kPicturePixels, kPicturePixels, ILC_COLOR24 | ILC_MASK, 32, 32);
    SendMessageW(bar, TB_SETIMAGELIST, 0, reinterpret_cast<LPARAM>(pictures));
    return pictures;
}

void SetTip(HWND tips, HWND bar, int index, LPWSTR text) {
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

}  // namespace

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

void CommandBar_Destroy(HWND bar) {
    const HIMAGELIST pictures = PicturesOf(bar);
    if (DestroyWindow(bar) && pictures) ImageList_Destroy(pictures);
}

int CommandBar_AddBitmap(HWND bar, HINSTANCE instance, int id, int, int, int) {
    HBITMAP bitmap = static_cast<HBITMAP>(
        LoadImageW(instance, MAKEINTRESOURCEW(id), IMAGE_BITMAP, 0, 0, LR_CREATEDIBSECTION));
    if (!bitmap) return -1;
    HIMAGELIST pictures = PicturesOf(bar);
    if (!pictures) pictures = MakePictures(bar);
    const int first = ImageList_AddMasked(pictures, bitmap, kBarColor);
    DeleteObject(bitmap);
    return first;
}

BOOL CommandBar_InsertButton(HWND bar, int index, const TBBUTTON* button) {
    return SendMessageW(bar, TB_INSERTBUTTONW, static_cast<WPARAM>(index),
                        reinterpret_cast<LPARAM>(button)) != 0;
}

BOOL CommandBar_AddToolTips(HWND bar, UINT count, LPWSTR* tips) {
    const auto window = reinterpret_cast<HWND>(SendMessageW(bar, TB_GETTOOLTIPS, 0, 0));
    if (!window || !tips) return FALSE;
    for (UINT i = 0; i < count; i++) SetTip(window, bar, static_cast<int>(i), tips[i]);
    return TRUE;
}
