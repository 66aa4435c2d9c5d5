// SPDX-License-Identifier: MIT
// What the tests of dialogs share: a dialog procedure that records its messages and runs the
// actions that a test has set. Window thread only.
#ifndef QUILL_TESTS_PLATFORM_TEST_DIALOGS_H
#define QUILL_TESTS_PLATFORM_TEST_DIALOGS_H

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "windows_ce.h"

using Text = std::basic_string<WCHAR>;
using Action = std::function<void(HWND dialog)>;

// The templates and controls of dialogs_test.rc.
inline constexpr int kEverything = 100, kExtended = 101, kFirstPage = 102, kSecondPage = 103,
                     kUnknownClass = 105, kMissing = 199;
inline constexpr int kName = 200, kPassword = 201, kHost = 202, kPlain = 203, kAutomatic = 204,
                     kOne = 206, kTwo = 207, kThree = 208, kLeft = 209, kRight = 210, kFont = 211,
                     kHint = 212, kDigits = 213, kOff = 214, kAdvanced = 215;
inline constexpr int kDropList = 300, kSorted = 301;
inline constexpr int kType = 400, kChange = 401, kBell = 402;

struct Notice {
    int id;
    int code;
    HWND control;
};

// Actions of a test: during WM_INITDIALOG, at a message posted by it, some time later, and when
// kAdvanced is pressed.
extern Action g_on_init, g_act, g_on_shown, g_on_advanced;
extern std::vector<Notice> g_notices;  // each WM_COMMAND, in order
extern WPARAM g_init_focus;            // the WPARAM of WM_INITDIALOG
extern LPARAM g_init_parameter;
extern INT_PTR g_init_answer;

INT_PTR Show(int id, HWND owner = nullptr, LPARAM parameter = 0);
void On(int id, const Action& act);  // opens the dialog, acts on it and closes it by OK
LRESULT Tell(HWND dialog, int id, UINT message, WPARAM wparam = 0, LPARAM lparam = 0);
LRESULT TellText(HWND dialog, int id, UINT message, WPARAM wparam, const WCHAR* text);
Text TextOf(HWND dialog, int id);
Text EntryOf(HWND dialog, int id, UINT message, WPARAM row);  // of a list or combo box
int NoticesOf(int id, int code);

class DialogTest : public testing::Test {
  protected:
    void SetUp() override;  // resets everything above
    void TearDown() override;
};

#endif
