// SPDX-License-Identifier: MIT
// The input panel: a keyboard for the stylus, and the rows of the terminal that it covers.
#include <gtest/gtest.h>
#include <QBackingStore>
#include <QtTest/QTest>

#include "platform/qt/shell/shell.h"
#include "platform/qt/window/device_screen.h"
#include "platform/qt/window/messages.h"
#include "platform/qt/window/window.h"
#include "session/session_state.h"
#include "tests/app/soft_keyboard.h"
#include "tests/qt_driver/driver.h"
#include "tests/support/drawn.h"
#include "tests/support/fake_host.h"
#include "tests/support/person.h"
#include "tests/support/sessions.h"
#include "ui/view/view.h"

namespace {

void Tap(const QString& label) {
    OnWindowThread([&] {
        PanelKey* key = KeyLabelled(label);
        ASSERT_NE(key, nullptr) << label.toStdString();
        QTest::mouseClick(key, Qt::LeftButton);
    });
}

bool Covered(int rows) {
    return Eventually([=] { return session.view.covered_rows == rows; });
}

int RowsExpected(bool with_bar) {
    const int height =
        kInputPanelHeight - session.status_height - (with_bar ? GetSystemMetrics(SM_CYHSCROLL) : 0);
    return height / session.view.cell_height + 1;
}

// Runs the person's actions on a small device with a session.
void OnSmallDevice(FakeHost& host, const std::function<void()>& person) {
    RunProgram(SmallDevice(), [&] {
        SetHost(u"127.0.0.1", host.port);
        Connect();
        ASSERT_TRUE(host.Accept());
        host.Send("hello");
        ASSERT_TRUE(TerminalShows("hello"));
        person();
    });
}

TEST(InputPanel, ButtonShowsAndHidesItAndTheShellReportsIt) {
    RunProgram(SmallDevice(), [] {
        ASSERT_TRUE(Eventually([] { return session.view.cell_height > 0; }));
        for (const bool up : {true, false}) {
            TapPanelButton();
            OnWindowThread([&] {
                SIPINFO panel = {};
                panel.cbSize = sizeof(panel);
                ASSERT_TRUE(SHSipInfo(SPI_GETSIPINFO, 0, &panel, 0));
                EXPECT_EQ(panel.fdwFlags & SIPF_ON, up ? SIPF_ON : 0u);
                EXPECT_EQ(panel.rcSipRect.bottom - panel.rcSipRect.top, kInputPanelHeight);
                EXPECT_EQ(panel.rcSipRect.bottom, 320 - 26);
                EXPECT_EQ(panel.rcVisibleDesktop.bottom, up ? 320 - 26 - kInputPanelHeight : 320);
            });
        }
    });
}

TEST(InputPanel, CoveredRowsAreCountedFromItsHeight) {
    FakeHost host;
    OnSmallDevice(host, [] {
        int wanted = 0;
        OnWindowThread([&] {
            UpdateWindow(session.client_window);
            ASSERT_LT(session.view.visible_columns, 80) << "there is a horizontal bar";
            wanted = RowsExpected(true);
        });
        TapPanelButton();
        EXPECT_TRUE(Covered(wanted));
        TapPanelButton();
        EXPECT_TRUE(Covered(0));
    });
}

TEST(InputPanel, CoveredRowsAreCountedWithoutAHorizontalBar) {
    FakeHost host;
    WithSession(host, [] {
        int wanted = 0;
        OnWindowThread([&] {
            UpdateWindow(session.client_window);
            ASSERT_EQ(session.view.visible_columns, 80);
            wanted = RowsExpected(false);
        });
        TapPanelButton();
        EXPECT_TRUE(Covered(wanted));
    });
}

TEST(InputPanel, CoveredRowsAreCountedWithoutAStatusBar) {
    FakeHost host;
    OnSmallDevice(host, [] {
        int wanted = 0;
        OnWindowThread([&] {
            session.settings.hidestatus = 1;
            PostMessageW(session.main_window, WM_SETTINGCHANGE, 0, 0);
            session.status_height = 0;
            UpdateWindow(session.client_window);
            wanted = RowsExpected(true);
        });
        TapPanelButton();
        EXPECT_TRUE(Covered(wanted));
    });
}

TEST(InputPanel, CoveredRowsAreCountedAgainForALargerFont) {
    FakeHost host;
    OnSmallDevice(host, [] {
        TapPanelButton();
        ASSERT_TRUE(Eventually([] { return session.view.covered_rows > 0; }));
        int before = 0;
        OnWindowThread([&] { before = session.view.covered_rows; });
        for (int i = 0; i < 8; i++) PostToMain(WM_COMMAND, 40009);
        EXPECT_TRUE(Eventually([&] {
            return session.view.covered_rows < before &&
                   session.view.covered_rows == RowsExpected(true);
        }));
    });
}

TEST(InputPanel, ItsButtonIsDownWhileItIsShown) {
    RunProgram(SmallDevice(), [] {
        for (const DWORD shown : {DWORD{SIPF_ON}, DWORD{0}, DWORD{SIPF_ON}}) {
            OnWindowThread([=] {
                SIPINFO panel = {};
                panel.cbSize = sizeof(panel);
                panel.fdwFlags = shown;
                SHSipInfo(SPI_SETSIPINFO, 0, &panel, 0);
                EXPECT_EQ(ShellMenuStrip()->panel_button()->isChecked(), shown != 0);
            });
        }
    });
}

bool CursorAboveThePanel() {
    UpdateWindow(session.client_window);
    const int row = session.screen.cursor_row - session.view.view_top;
    RECT client;
    GetWindowRect(session.client_window, &client);
    return client.top + row * session.view.cell_height <= ShellInputPanel()->geometry().top();
}

TEST(InputPanel, CursorRowStaysOutOfTheCoveredRows) {
    FakeHost host;
    OnSmallDevice(host, [&] {
        TapPanelButton();
        ASSERT_TRUE(Eventually([] { return session.view.covered_rows > 0; }));
        host.Send("\033[24;1Hat the foot");
        ASSERT_TRUE(TerminalShows("at the foot"));
        EXPECT_TRUE(Eventually(CursorAboveThePanel));
    });
}

TEST(InputPanel, CursorRowIsVisibleAsSoonAsThePanelIsUp) {
    FakeHost host;
    OnSmallDevice(host, [&] {
        host.Send("\033[24;1Hat the foot");
        ASSERT_TRUE(TerminalShows("at the foot"));
        TapPanelButton();
        ASSERT_TRUE(Eventually([] { return session.view.covered_rows > 0; }));
        EXPECT_TRUE(Eventually(CursorAboveThePanel));
        EXPECT_NE(DrawnText().find("at the foot"), std::string::npos) << DrawnText();
    });
}

TEST(InputPanel, ViewThatDoesNotFollowTheCursorStaysAtTheTop) {
    FakeHost host;
    OnSmallDevice(host, [&] {
        OnWindowThread([] { session.settings.followcursor = 0; });
        host.Send("\033[24;1Hat the foot");
        ASSERT_TRUE(TerminalShows("at the foot"));
        TapPanelButton();
        ASSERT_TRUE(Eventually([] { return session.view.covered_rows > 0; }));
        OnWindowThread([] {
            UpdateWindow(session.client_window);
            EXPECT_EQ(session.view.view_top, 0);
        });
    });
}

TEST(InputPanel, HidingItTakesTheViewBackToTheTop) {
    FakeHost host;
    OnSmallDevice(host, [&] {
        OnWindowThread([] { session.settings.followcursor = 0; });
        TapPanelButton();
        ASSERT_TRUE(Eventually([] { return session.view.covered_rows > 0; }));
        OnWindowThread([] {
            UpdateWindow(session.client_window);
            session.view.view_top = 3, session.view.view_left = 5;
        });
        TapPanelButton();
        EXPECT_TRUE(Covered(0));
        OnWindowThread([] {
            EXPECT_EQ(session.view.view_top, 0);
            EXPECT_EQ(session.view.view_left, 0);
        });
    });
}

TEST(InputPanel, OfflineTheRowsAreCountedAndTheTerminalIsUnchanged) {
    RunProgram(SmallDevice(), [] {
        ASSERT_TRUE(Eventually([] { return session.view.visible_rows > 0; }));
        int before = 0;
        OnWindowThread([&] { before = session.view.visible_rows; });
        TapPanelButton();
        ASSERT_TRUE(Eventually([] { return session.view.covered_rows > 0; }));
        OnWindowThread([&] {
            UpdateWindow(session.client_window);
            EXPECT_EQ(session.view.visible_rows, before);
        });
    });
}

TEST(InputPanel, BarsHigherThanThePanelLeaveNoRowCovered) {
    FakeHost host;
    OnSmallDevice(host, [] {
        OnWindowThread([] {
            UpdateWindow(session.client_window);
            const int bars = GetSystemMetrics(SM_CYHSCROLL), cell = session.view.cell_height;
            const std::pair<int, int> heights[] = {{kInputPanelHeight - bars, 1},
                                                   {kInputPanelHeight - bars + cell, 0},
                                                   {kInputPanelHeight - bars + 9 * cell, 0}};
            ShellInputPanel()->show();
            for (const auto& [height, covered] : heights) {
                session.status_height = height;
                SendMessageW(session.main_window, WM_SETTINGCHANGE, SPI_SETSIPINFO, 0);
                EXPECT_EQ(session.view.covered_rows, covered) << height;
            }
        });
    });
}

// Integer division truncates, so a covered piece counts as a whole row.
TEST(InputPanel, PartOfACellBelowThePanelCountsAsARow) {
    FakeHost host;
    OnSmallDevice(host, [] {
        OnWindowThread([] {
            UpdateWindow(session.client_window);
            const int bars = GetSystemMetrics(SM_CYHSCROLL), cell = session.view.cell_height;
            const std::pair<int, int> missing[] = {{1, 1}, {cell - 1, 1}, {cell, 0}, {cell + 1, 0}};
            ShellInputPanel()->show();
            for (const auto& [pixels, covered] : missing) {
                session.status_height = kInputPanelHeight - bars + pixels;
                SendMessageW(session.main_window, WM_SETTINGCHANGE, SPI_SETSIPINFO, 0);
                EXPECT_EQ(session.view.covered_rows, covered) << pixels;
            }
        });
    });
}

TEST(InputPanel, RepeatedMessagesOfItLeaveAScrolledViewWhereItIs) {
    FakeHost host;
    OnSmallDevice(host, [] {
        OnWindowThread([] { session.settings.followcursor = 0; });
        const auto scroll_and_repeat = [] {
            OnWindowThread([] {
                UpdateWindow(session.client_window);
                for (int i = 0; i < 2; i++) {
                    SendMessageW(session.client_window, WM_VSCROLL, SB_LINEDOWN, 0);
                    SendMessageW(session.client_window, WM_HSCROLL, SB_LINEDOWN, 0);
                }
                const int top = session.view.view_top, left = session.view.view_left;
                EXPECT_GT(top + left, 0);
                UpdateWindow(session.client_window);
                const int paints = PaintCount();
                for (int i = 0; i < 3; i++)
                    SendMessageW(session.main_window, WM_SETTINGCHANGE, SPI_SETSIPINFO, 0);
                UpdateWindow(session.client_window);
                EXPECT_EQ(session.view.view_top, top);
                EXPECT_EQ(session.view.view_left, left);
                EXPECT_EQ(PaintCount(), paints) << "nothing was laid out";
            });
        };
        for (int times = 0; times < 2; times++) {
            TapPanelButton();
            ASSERT_TRUE(Eventually([] { return session.view.covered_rows > 0; }));
            scroll_and_repeat();
            TapPanelButton();
            ASSERT_TRUE(Covered(0));
            scroll_and_repeat();
        }
    });
}

TEST(InputPanel, OtherSettingChangesDoNothing) {
    FakeHost host;
    OnSmallDevice(host, [] {
        OnWindowThread([] {
            ShellInputPanel()->show();
            SendMessageW(session.main_window, WM_SETTINGCHANGE, 47, 0);
            EXPECT_EQ(session.view.covered_rows, 0);
            SendMessageW(session.main_window, WM_SETTINGCHANGE, SPI_SETSIPINFO, 0);
            EXPECT_GT(session.view.covered_rows, 0);
        });
    });
}

TEST(InputPanel, EveryKeyReachesTheHostAsOnAKeyboard) {
    const struct {
        const char* label;
        const char* bytes;
    } rows[] = {
        {"Esc", "\033"},      {"1", "1"},           {"0", "0"},           {"-", "-"},
        {"=", "="},           {"Bksp", "\b"},       {"Tab", "\t"},        {"q", "q"},
        {"p", "p"},           {"[", "["},           {"\\", "\\"},         {"a", "a"},
        {"l", "l"},           {";", ";"},           {"'", "'"},           {"Enter", "\r"},
        {"z", "z"},           {"m", "m"},           {",", ","},           {"/", "/"},
        {"Del", "\177"},      {"`", "`"},           {"Space", " "},       {"\u2191", "\033[A"},
        {"\u2190", "\033[D"}, {"\u2193", "\033[B"}, {"\u2192", "\033[C"},
    };
    FakeHost host;
    OnSmallDevice(host, [&] {
        TapPanelButton();
        for (const auto& row : rows) {
            Tap(QString::fromUtf8(row.label));
            EXPECT_EQ(host.Read(std::strlen(row.bytes)), row.bytes) << row.label;
        }
        EXPECT_EQ(host.ReadSome(50), "");
    });
}

TEST(InputPanel, ALatchDoesNotCountForAButtonOfTheBar) {
    FakeHost host;
    OnSmallDevice(host, [&] {
        TapPanelButton();
        for (const char* latch : {"Shift", "Ctl"}) {
            Tap(latch), Tap("Enter");
            EXPECT_EQ(host.Read(1), "\r");
            OnWindowThread([] {
                for (QToolButton* button : DeviceScreen()->findChildren<QToolButton*>())
                    if (button->accessibleName() == "P1") QTest::mouseClick(button, Qt::LeftButton);
            });
            EXPECT_EQ(host.Read(2), "\217P") << latch;
        }
    });
}

TEST(InputPanel, LatchesHoldForOneKey) {
    FakeHost host;
    OnSmallDevice(host, [&] {
        TapPanelButton();
        Tap("Shift"), Tap("A"), Tap("a");
        EXPECT_EQ(host.Read(2), "Aa");
        Tap("Shift"), Tap("!"), Tap("1");
        EXPECT_EQ(host.Read(2), "!1");
        Tap("Ctl"), Tap("c");
        EXPECT_EQ(host.Read(1), "\x03");
        Tap("Ctl"), Tap("5");
        EXPECT_EQ(host.Read(5), "\033[15~");
        Tap("Ctl"), Tap("Shift"), Tap(")");
        EXPECT_EQ(host.Read(5), "\033[34~");
        Tap("Fn"), Tap("F5");
        EXPECT_EQ(host.Read(5), "\033[15~");
        Tap("Shift"), Tap("Fn"), Tap("F1");
        EXPECT_EQ(host.Read(5), "\033[25~");
        Tap("Fn"), Tap("PU");
        EXPECT_EQ(host.Read(3), "\2335~");
        Tap("Shift"), Tap("Shift"), Tap("a");
        EXPECT_EQ(host.Read(1), "a") << "a latch tapped twice is off again";
    });
}

// The same as on a real keyboard; Ctl with Space is the character 0.
TEST(InputPanel, CtlMakesControlCharactersThatAreNoLetters) {
    FakeHost host;
    OnSmallDevice(host, [&] {
        TapPanelButton();
        for (const char* label : {"[", "\\", "]", "/", "Space", "x"}) Tap("Ctl"), Tap(label);
        EXPECT_EQ(host.Read(6), std::string("\x1b\x1c\x1d\x1f\0\x18", 6));
    });
}

TEST(InputPanel, CapitalsHoldUntilTappedAgain) {
    FakeHost host;
    OnSmallDevice(host, [&] {
        TapPanelButton();
        Tap("CAP"), Tap("A"), Tap("B"), Tap("1");
        Tap("Shift"), Tap("a");
        Tap("CAP"), Tap("c");
        EXPECT_EQ(host.Read(5), "AB1ac");
    });
}

TEST(InputPanel, KeysFillItWithoutOverlapOnEveryWidth) {
    RunProgram(SmallDevice(), [] {
        ASSERT_TRUE(Eventually([] { return session.view.font != nullptr; }));
        TapPanelButton();
        for (const int width : {100, 240, 241, 640, 1279, 4000}) {
            ResizeDevice(width, 320);
            OnWindowThread([=] {
                QRegion taken;
                for (PanelKey* key : ShellInputPanel()->findChildren<PanelKey*>()) {
                    EXPECT_FALSE(taken.intersects(key->geometry())) << width;
                    taken += key->geometry();
                }
                EXPECT_EQ(taken.boundingRect(), ShellInputPanel()->rect());
                EXPECT_EQ(taken.rectCount(), 1) << width;
            });
        }
    });
}

TEST(InputPanel, EachLetterAndDigitIsAFifteenthOfARowWide) {
    RunProgram(SmallDevice(), [] {
        TapPanelButton();
        for (const int width : {240, 640, 1500}) {
            ResizeDevice(width, 320);
            OnWindowThread([=] {
                int keys = 0;
                for (PanelKey* key : ShellInputPanel()->findChildren<PanelKey*>()) {
                    if (key->text().size() != 1 || !key->text()[0].isLetterOrNumber()) continue;
                    EXPECT_NEAR(width / 15.0, key->width(), 1) << key->text().toStdString();
                    ++keys;
                }
                EXPECT_EQ(26 + 10, keys);
            });
        }
    });
}

TEST(InputPanel, KeysAreInTheOrderOfAKeyboard) {
    RunProgram(SmallDevice(), [] {
        TapPanelButton();
        OnWindowThread([] {
            std::map<int, std::map<int, QString>> rows;
            for (PanelKey* key : ShellInputPanel()->findChildren<PanelKey*>())
                rows[key->y()][key->x()] = key->text();
            QStringList labels;
            for (const auto& [y, keys] : rows) {
                QStringList row;
                for (const auto& [x, label] : keys) row += label;
                labels += row.join('|');
            }
            EXPECT_EQ((QStringList{
                          "Esc|1|2|3|4|5|6|7|8|9|0|-|=|Bksp", "Tab|q|w|e|r|t|y|u|i|o|p|[|]|\\",
                          "CAP|a|s|d|f|g|h|j|k|l|;|'|Enter", "Shift|z|x|c|v|b|n|m|,|.|/|\u2191|Del",
                          "Ctl|Fn|`| |\u2190|\u2193|\u2192"}),
                      labels)
                << labels.join('\n').toStdString();
        });
    });
}

// True if there is ink between a key's label and its frame. Call it on the window thread.
bool TouchesItsEdge(PanelKey* key) {
    const QImage face = key->grab().toImage().convertToFormat(QImage::Format_Grayscale8);
    for (const int x : {1, 2, face.width() - 3, face.width() - 2})
        for (int y = 3; y < face.height() - 3; y++)
            if (face.pixelColor(x, y).value() < 96) return true;
    return false;
}

TEST(InputPanel, EveryLabelKeepsClearOfItsKeysEdge) {
    RunProgram(SmallDevice(), [] {
        TapPanelButton();
        for (const char* latch : {"", "Shift", "Fn"}) {
            if (*latch) Tap(latch);
            OnWindowThread([=] {
                for (PanelKey* key : ShellInputPanel()->findChildren<PanelKey*>()) {
                    if (key->accessibleName() == latch) continue;  // light on dark
                    EXPECT_FALSE(TouchesItsEdge(key)) << key->text().toStdString();
                }
            });
            if (*latch) Tap(latch);
        }
    });
}

TEST(InputPanel, EverySizeOfTheDeviceWhileItIsUpAndTheHostFloods) {
    FakeHost host;
    OnSmallDevice(host, [&] {
        TapPanelButton();
        const QSize sizes[] = {{100, 80}, {4000, 3000}, {240, 320}, {640, 240}, {101, 2000}};
        for (const QSize& size : sizes) {
            for (int i = 0; i < 40; i++) host.Send("flooding with text\r\n");
            ResizeDevice(size.width(), size.height());
            OnWindowThread([] {
                UpdateWindow(session.client_window);
                EXPECT_GE(session.view.visible_rows, 0);
                EXPECT_LE(session.view.visible_rows, 25);
            });
        }
        ResizeDevice(240, 320);
        TapPanelButton();
        host.Send("\033[2J\033[Hdone");
        EXPECT_TRUE(TerminalShows("done"));
    });
}

// ---------------------------------------------------------------- over the terminal

// What the store of the screen holds. Asking the toolkit for a picture would paint it anew.
QImage Stored() { return static_cast<QImage*>(ReadyStore(DeviceScreen())->paintDevice())->copy(); }

bool AllIsPainted() {
    for (const Window* window : AllWindows())
        if (!window->invalid.isEmpty()) return false;
    return ReadyStore(DeviceScreen()) != nullptr;
}

bool CoversTheTerminal() {
    const QWidget* terminal = FindWindowRecord(session.client_window)->widget;
    const QRect place(terminal->mapTo(DeviceScreen(), QPoint()), terminal->size());
    return ShellInputPanel()->geometry().contains(place);
}

// Between the small and the large size the corner of the scroll bars moves. From then on, until the
// toolkit itself paints the terminal, it takes the terminal for a widget that nothing covers.
TEST(InputPanel, ATerminalWhollyUnderItDoesNotPaintOverIt) {
    RunProgram(SmallDevice(640, 480), [&] {
        for (const QSize& size : {QSize(121, 95), QSize(480, 352), QSize(856, 845)}) {
            ResizeDevice(size.width(), size.height());
            ASSERT_TRUE(Eventually(AllIsPainted));
        }
        TapPanelButton();
        ASSERT_TRUE(Eventually(AllIsPainted));
        ResizeDevice(121, 95);
        ASSERT_TRUE(Eventually([] { return AllIsPainted() && CoversTheTerminal(); }));
        OnWindowThread([] {
            const QImage before = Stored();
            for (const HWND window : {session.client_window, session.status_window}) {
                const int paints = PaintCount();
                InvalidateRect(window, nullptr, TRUE);
                UpdateWindow(window);
                EXPECT_EQ(PaintCount(), paints + 1);
                EXPECT_TRUE(FindWindowRecord(window)->invalid.isEmpty());
                EXPECT_EQ(before, Stored());
            }
        });
    });
}

}  // namespace
