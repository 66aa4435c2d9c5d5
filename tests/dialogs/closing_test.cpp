// SPDX-License-Identifier: MIT
// What happens when a dialog closes: every button repaints the terminal, and the settings are saved
// unless saving is disabled.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>

#include "session/session_state.h"
#include "tests/dialogs/dialog_cases.h"
#include "tests/dialogs/dialog_person.h"
#include "tests/dialogs/stored.h"
#include "tests/support/person.h"

namespace {

std::atomic<int> g_repaints;  // repaints requested outside ui/view/view.cpp

struct Closing {
    const char* dialog;
    Qt::Key key;
};

void PrintTo(const Closing& each, std::ostream* out) {
    *out << each.dialog << (each.key == Qt::Key_Escape ? "ByEsc" : "ByEnter");
}

class AfterDialog : public testing::TestWithParam<Closing> {
  protected:
    // Opens the dialog; for a page it returns the sheet.
    static HWND Open() {
        const auto row =
            std::find_if(dialog_cases.begin(), dialog_cases.end(),
                         [](const DialogCase& each) { return each.name == GetParam().dialog; });
        HWND dialog = row->open();
        if (row->caption == "Properties") OnWindowThread([&] { dialog = GetParent(dialog); });
        return dialog;
    }
    static void Close(HWND dialog) {
        PressKey(GetParam().key);
        ASSERT_TRUE(Closed(dialog));
    }
};

TEST_P(AfterDialog, TheTerminalIsRepainted) {
    RunProgram({}, [] {
        const HWND dialog = Open();
        OnWindowThread([] { g_repaints = 0; });
        Close(dialog);
        EXPECT_TRUE(Eventually([] { return g_repaints > 0; }, 2000));
    });
}

const Closing kClosings[] = {
    {"Connect", Qt::Key_Escape},  // no Enter here: connecting repaints too
    {"Other", Qt::Key_Escape},   {"Other", Qt::Key_Return},     {"Font", Qt::Key_Escape},
    {"Font", Qt::Key_Return},    {"AutoLogin", Qt::Key_Escape}, {"AutoLogin", Qt::Key_Return},
    {"SignOn", Qt::Key_Escape},  {"SignOn", Qt::Key_Return},
};

INSTANTIATE_TEST_SUITE_P(Each, AfterDialog, testing::ValuesIn(kClosings),
                         testing::PrintToStringParamName());

class SavingDialog : public AfterDialog {};

TEST_P(SavingDialog, SavesWhenItIsClosed) {
    const std::string root = FreshRoot();
    RunProgram({.root = root}, [&] {
        Close(Open());
        EXPECT_TRUE(Eventually([&] { return StoredNumber(root, "fsize") == 8; }));
    });
}

TEST_P(SavingDialog, SavesNothingAfterAReset) {
    const std::string root = FreshRoot();
    RunProgram({.root = root}, [&] {
        OnWindowThread([] { session.save_settings = 0; });
        Close(Open());
        OnWindowThread([] {});
        EXPECT_EQ(StoredNumber(root, "fsize"), kNotStored);
    });
    EXPECT_EQ(StoredNumber(root, "fsize"), kNotStored) << "nor at the program's end";
}

const Closing kSavings[] = {
    {"Other", Qt::Key_Escape}, {"Other", Qt::Key_Return},     {"Font", Qt::Key_Escape},
    {"Font", Qt::Key_Return},  {"AutoLogin", Qt::Key_Escape}, {"AutoLogin", Qt::Key_Return},
};

INSTANTIATE_TEST_SUITE_P(Each, SavingDialog, testing::ValuesIn(kSavings),
                         testing::PrintToStringParamName());

}  // namespace

void RealRepaintTerminal() __asm__("__real__Z15RepaintTerminalv");
void CountedRepaintTerminal() __asm__("__wrap__Z15RepaintTerminalv");
void CountedRepaintTerminal() {
    g_repaints++;
    RealRepaintTerminal();
}
