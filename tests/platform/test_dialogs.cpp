// SPDX-License-Identifier: MIT
// The dialog procedure of the tests, and helpers for messages to controls.
#include "tests/platform/test_dialogs.h"

Action g_on_init, g_act, g_on_shown, g_on_advanced;
std::vector<Notice> g_notices;
WPARAM g_init_focus;
LPARAM g_init_parameter;
INT_PTR g_init_answer = TRUE;

namespace {

void Forget() {
    g_on_init = g_act = g_on_shown = g_on_advanced = nullptr;
    g_notices.clear();
    g_init_focus = 0;
    g_init_parameter = 0;
    g_init_answer = TRUE;
}

INT_PTR OnInit(HWND dialog, WPARAM wparam, LPARAM lparam) {
    g_init_focus = wparam;
    g_init_parameter = lparam;
    if (g_on_init) g_on_init(dialog);
    PostMessageW(dialog, WM_APP, 0, 0);
    if (g_on_shown) SetTimer(dialog, 1, 50, nullptr);
    return g_init_answer;
}

INT_PTR OnCommand(HWND dialog, WPARAM wparam, LPARAM lparam) {
    const int id = LOWORD(wparam);
    g_notices.push_back({id, HIWORD(wparam), reinterpret_cast<HWND>(lparam)});
    if (id == IDOK || id == IDCANCEL) EndDialog(dialog, id);
    if (id == kAdvanced && g_on_advanced) g_on_advanced(dialog);
    return TRUE;
}

INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_INITDIALOG) return OnInit(dialog, wparam, lparam);
    if (message == WM_COMMAND) return OnCommand(dialog, wparam, lparam);
    if (message != WM_APP && message != WM_TIMER) return FALSE;
    if (const Action act = message == WM_APP ? g_act : g_on_shown) act(dialog);
    return TRUE;
}

}  // namespace

INT_PTR Show(int id, HWND owner, LPARAM parameter) {
    return DialogBoxParamW(nullptr, MAKEINTRESOURCE(id), owner, Procedure, parameter);
}

void On(int id, const Action& act) {
    g_act = [&](HWND dialog) {
        act(dialog);
        EndDialog(dialog, IDOK);
    };
    EXPECT_EQ(IDOK, Show(id));
}

LRESULT Tell(HWND dialog, int id, UINT message, WPARAM wparam, LPARAM lparam) {
    return SendDlgItemMessageW(dialog, id, message, wparam, lparam);
}

LRESULT TellText(HWND dialog, int id, UINT message, WPARAM wparam, const WCHAR* text) {
    return Tell(dialog, id, message, wparam, reinterpret_cast<LPARAM>(text));
}

Text TextOf(HWND dialog, int id) {
    WCHAR text[200];
    const UINT length = GetDlgItemTextW(dialog, id, text, 200);
    EXPECT_EQ(static_cast<UINT>(lstrlenW(text)), length);
    return text;
}

Text EntryOf(HWND dialog, int id, UINT message, WPARAM row) {
    WCHAR text[200] = {};
    EXPECT_EQ(lstrlenW(text), 0);
    const LRESULT length = Tell(dialog, id, message, row, reinterpret_cast<LPARAM>(text));
    EXPECT_EQ(lstrlenW(text), length);
    return text;
}

int NoticesOf(int id, int code) {
    int count = 0;
    for (const Notice& notice : g_notices) count += notice.id == id && notice.code == code;
    return count;
}

void DialogTest::SetUp() { Forget(); }

void DialogTest::TearDown() { Forget(); }
