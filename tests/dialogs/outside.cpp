// SPDX-License-Identifier: MIT
// The dialogs on an X server, operated by its mouse and keyboard (xdotool); outside_test.sh runs
// it. The tests read the stored values with SQLite.
#include <gtest/gtest.h>
#include <QThread>

#include "platform/qt/window/device_screen.h"
#include "platform/qt/window/window.h"
#include "resources/resource_ids.h"
#include "session/session_state.h"
#include "tests/dialogs/dialog_person.h"
#include "tests/dialogs/stored.h"
#include "tests/support/person.h"

namespace {

void Xdotool(const std::string& what) {
    ASSERT_EQ(std::system(("xdotool " + what).c_str()), 0) << what;
    QThread::msleep(60);
}

void Type(const std::string& text) { Xdotool("type --delay 15 '" + text + "'"); }
void Key(const std::string& keys) { Xdotool("key --delay 15 " + keys); }

// Clicks a point of the control, `across` pixels from its left edge; 0: its middle.
void MouseOn(HWND dialog, int id, int across = 0) {
    QPoint place;
    OnWindowThread([&] {
        const Window* control = FindWindowRecord(GetDlgItem(dialog, id));
        ASSERT_NE(control, nullptr) << id;
        const QRect room = control->widget->rect();
        place = QPoint(across ? across : room.center().x(), room.center().y());
        place = control->widget->mapToGlobal(place) * control->widget->devicePixelRatioF();
    });
    Xdotool("mousemove " + std::to_string(place.x()) + " " + std::to_string(place.y()));
    Xdotool("click 1");
    QThread::msleep(100);
}

// Replaces the text of the field.
void TypeInField(HWND dialog, int id, const std::string& text) {
    MouseOn(dialog, id, 8);
    Key("ctrl+a");
    Type(text);
}

// Without a window manager the test itself has to move the keyboard focus.
void GiveKeyboard(HWND window) {
    WId desktop_window = 0;
    OnWindowThread([&] {
        const Window* record = FindWindowRecord(window);
        QWidget* widget = record ? record->widget->window() : DeviceScreen();
        desktop_window = widget->winId();
    });
    Xdotool("windowfocus --sync " + std::to_string(desktop_window));
    QThread::msleep(200);
}

HWND AwaitWithKeyboard(const std::string& caption) {
    const HWND dialog = AwaitDialog(caption);
    GiveKeyboard(dialog);
    return dialog;
}

// Opens the dialogs by keys only, with the accelerators of the main window.
HWND OpenByKeys(const std::string& keys, const std::string& caption) {
    EXPECT_TRUE(Eventually([] { return session.main_window != nullptr; }));
    GiveKeyboard(nullptr);
    Key(keys);
    return AwaitWithKeyboard(caption);
}

Stage FreshStage() {
    Stage stage;
    stage.root = FreshRoot();
    return stage;
}

TEST(OutsideDialogs, ConnectIsFilledInByMouse) {
    const Stage stage = FreshStage();
    RunProgram(stage, [&] {
        const HWND connect = OpenByKeys("ctrl+shift+n", "Connect");
        TypeInField(connect, IDC_HOST, "no.invalid");
        MouseOn(connect, IDC_ADVANCED);
        const HWND advanced = AwaitWithKeyboard("Connect Advanced");
        MouseOn(advanced, IDC_CONFIRM_EXIT, 6);
        MouseOn(advanced, IDC_SSH1, 6);
        MouseOn(advanced, IDC_BLOWFISH, 6);
        TypeInField(advanced, IDC_PORT, "65559");
        MouseOn(advanced, IDOK);
        ASSERT_TRUE(Closed(advanced));
        MouseOn(connect, IDOK);
        ASSERT_TRUE(Closed(connect));
        EXPECT_EQ(AwaitBox(), "Error: Cannot connect to the UNIX Host");
        PressOk();
        EXPECT_EQ(StoredText(stage.root, "host"), u"no.invalid");
        EXPECT_EQ(StoredText(stage.root, "hist0a"), u"no.invalid");
        EXPECT_EQ(StoredNumber(stage.root, "port"), 65559u);
        EXPECT_EQ(StoredNumber(stage.root, "confirm_exit"), 1u);
        EXPECT_EQ(StoredNumber(stage.root, "ssh_type"), 2u);
        EXPECT_EQ(StoredNumber(stage.root, "ssh_type2"), 0u);
        EXPECT_EQ(StoredNumber(stage.root, "exit_dis"), 0u);
    });
}

TEST(OutsideDialogs, ConnectIsFilledInByKeysOnly) {
    const Stage stage = FreshStage();
    RunProgram(stage, [&] {
        const HWND connect = OpenByKeys("ctrl+shift+n", "Connect");
        Type("keys.invalid");
        Key("Tab space");
        const HWND advanced = AwaitWithKeyboard("Connect Advanced");
        Key("Tab space Tab Tab Tab ctrl+a");
        Type("2222");
        Key("Return");
        ASSERT_TRUE(Closed(advanced));
        GiveKeyboard(connect);
        Key("Tab Return");
        ASSERT_TRUE(Closed(connect));
        EXPECT_EQ(AwaitBox(), "Error: Cannot connect to the UNIX Host");
        PressOk();
        EXPECT_EQ(StoredText(stage.root, "host"), u"keys.invalid");
        EXPECT_EQ(StoredNumber(stage.root, "port"), 2222u);
        EXPECT_EQ(StoredNumber(stage.root, "exit_dis"), 1u);
    });
}

TEST(OutsideDialogs, PropertiesAreSetByMouse) {
    const Stage stage = FreshStage();
    RunProgram(stage, [&] {
        const HWND sheet = OpenByKeys("alt+s p", "Properties");
        const HWND page = PageOf(sheet);
        TypeInField(page, IDC_TERMTYPE, "xterm");
        MouseOn(page, IDC_BELL, 6);
        MouseOn(page, IDC_HIDESTATUS, 6);
        EXPECT_EQ(session.status_window, nullptr);
        MouseOn(sheet, IDOK);
        ASSERT_TRUE(Closed(sheet));
        EXPECT_EQ(StoredText(stage.root, "termtype"), u"xterm");
        EXPECT_EQ(StoredNumber(stage.root, "bell"), 0u);
        EXPECT_EQ(StoredNumber(stage.root, "hidestatus"), 1u);
        EXPECT_EQ(StoredNumber(stage.root, "alive"), 1u);
    });
}

TEST(OutsideDialogs, AutoLoginIsFilledInByKeysAndLeftByEsc) {
    const Stage stage = FreshStage();
    RunProgram(stage, [&] {
        HWND dialog = OpenByKeys("alt+s Down Down Return", "Auto Login");
        Type("name:");
        Key("Tab");
        Type("anna");
        Key("Return");
        ASSERT_TRUE(Closed(dialog));
        EXPECT_EQ(StoredText(stage.root, "sear1"), u"name:");
        EXPECT_EQ(StoredText(stage.root, "resp1"), u"anna");
        dialog = OpenByKeys("alt+s Down Down Return", "Auto Login");
        Type("other");
        Key("Escape");
        ASSERT_TRUE(Closed(dialog));
        EXPECT_EQ(StoredText(stage.root, "sear1"), u"name:");
    });
}

TEST(OutsideDialogs, FontIsChosenByMouseAndKeys) {
    const Stage stage = FreshStage();
    RunProgram(stage, [&] {
        const HWND dialog = OpenByKeys("alt+s f", "Font");
        Key("Home");
        MouseOn(dialog, IDC_FONT_ITALIC, 6);
        MouseOn(dialog, IDOK);
        ASSERT_TRUE(Closed(dialog));
        EXPECT_EQ(StoredText(stage.root, "fname"),
                  std::u16string(session.view.faces[0].font.lfFaceName));
        EXPECT_EQ(StoredNumber(stage.root, "font_italic"), 1u);
        EXPECT_EQ(StoredNumber(stage.root, "font_bold"), 0u);
    });
}

}  // namespace
