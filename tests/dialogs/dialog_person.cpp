// SPDX-License-Identifier: MIT
// The person at a dialog: runs the actions of tests/qt_driver/driver.h on the window thread.
#include "tests/dialogs/dialog_person.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <QLineEdit>
#include <QTabBar>

#include "platform/qt/window/window.h"
#include "tests/qt_driver/driver.h"
#include "tests/support/person.h"

namespace {

// Runs an action of the person; `dialog` must be the topmost dialog, sheet or page.
void Do(HWND dialog, int id, const std::function<bool()>& action) {
    OnWindowThread([&] {
        EXPECT_TRUE(dialog == ShownDialog() || dialog == ShownPage()) << "another one is on top";
        EXPECT_TRUE(action()) << "control " << id << " is not there, or cannot be worked";
    });
    // The action may have posted messages.
    EXPECT_TRUE(Eventually([] { return !MessagesWaiting(); }));
}

const QTabBar* TabsOf(HWND sheet) {
    const Window* window = FindWindowRecord(sheet);
    return window ? window->widget->findChild<QTabBar*>() : nullptr;
}

}  // namespace

HWND AwaitDialog(const std::string& caption) {
    HWND dialog = nullptr;
    std::string seen;
    Eventually([&] {
        seen = DialogTitle().toStdString();
        dialog = ShownDialog();
        return seen == caption && FindWindowRecord(dialog)->widget->isVisible();
    });
    EXPECT_EQ(seen, caption) << "the dialog did not come";
    return seen == caption ? dialog : nullptr;
}

HWND OpenDialog(WORD command, const std::string& caption) {
    PostToMain(WM_COMMAND, command);
    return AwaitDialog(caption);
}

bool Closed(HWND dialog) {
    const bool closed = Eventually([=] { return !IsWindow(dialog); });
    EXPECT_TRUE(closed) << "the dialog did not close";
    return closed;
}

void ClickControl(HWND dialog, int id) {
    Do(dialog, id, [=] { return ClickControl(id); });
}

void TypeInto(HWND dialog, int id, const std::u16string& text) {
    Do(dialog, id, [=] { return TypeInto(id, QString::fromStdU16String(text)); });
}

void ClickLine(HWND dialog, int id, int line) {
    Do(dialog, id, [=] { return ClickEntry(id, line); });
}

void ClickTab(HWND sheet, const std::string& caption) {
    const std::vector<std::string> tabs = Tabs(sheet);
    const auto tab = std::find(tabs.begin(), tabs.end(), caption);
    ASSERT_NE(tab, tabs.end()) << "no tab " << caption;
    const int index = static_cast<int>(tab - tabs.begin());
    OnWindowThread([=] { TurnPage(index); });
    EXPECT_TRUE(Eventually([=] {
        const Window* page = FindWindowRecord(ShownPage());
        return TabsOf(sheet)->currentIndex() == index && page->widget->isVisible();
    })) << "the tab did not come: "
        << caption;
}

std::vector<std::string> Tabs(HWND sheet) {
    std::vector<std::string> tabs;
    OnWindowThread([&] {
        const QTabBar* bar = TabsOf(sheet);
        for (int i = 0; bar && i < bar->count(); i++) tabs.push_back(bar->tabText(i).toStdString());
    });
    return tabs;
}

HWND PageOf(HWND sheet) {
    HWND page = nullptr;
    OnWindowThread(
        [&] { page = reinterpret_cast<HWND>(SendMessageW(sheet, PSM_GETCURRENTPAGEHWND, 0, 0)); });
    return page;
}

std::u16string TextOf(HWND dialog, int id) {
    QString text;
    Do(dialog, id, [&] { return text = ControlText(id), DialogWidgetOf(id) != nullptr; });
    return text.toStdU16String();
}

std::u16string ShownText(HWND dialog, int id) {
    QString text;
    Do(dialog, id, [&] {
        const auto* edit = qobject_cast<QLineEdit*>(DialogWidgetOf(id));
        if (edit) text = edit->displayText();
        return edit != nullptr;
    });
    return text.toStdU16String();
}

bool Marked(HWND dialog, int id) {
    bool marked = false;
    Do(dialog, id, [&] { return marked = ControlChecked(id), DialogWidgetOf(id) != nullptr; });
    return marked;
}

std::vector<std::u16string> Lines(HWND dialog, int id) {
    std::vector<std::u16string> lines;
    Do(dialog, id, [&] {
        for (const QString& entry : ControlEntries(id)) lines.push_back(entry.toStdU16String());
        return DialogWidgetOf(id) != nullptr;
    });
    return lines;
}

int SelectedLine(HWND dialog, int id) {
    int line = -1;
    OnWindowThread(
        [&] { line = static_cast<int>(SendDlgItemMessageW(dialog, id, LB_GETCURSEL, 0, 0)); });
    return line;
}

int FocusedControl(HWND dialog) {
    int id = 0;
    OnWindowThread([&] {
        const HWND focus = GetFocus();
        if (GetParent(focus) == dialog) id = GetDlgCtrlID(focus);
    });
    return id;
}

RECT Place(HWND dialog, int id) {
    RECT place = {};
    OnWindowThread([&] { GetWindowRect(id ? GetDlgItem(dialog, id) : dialog, &place); });
    return place;
}
