// SPDX-License-Identifier: MIT
// The toolbars of the running program: what the command bar shows, and what each button does.
#include <gtest/gtest.h>
#include <QtTest/qtestmouse.h>
#include <QtTest/qtesttouch.h>
#include <QAccessible>
#include <QPointingDevice>
#include <QToolButton>
#include <set>

#include "platform/qt/services/resources.h"
#include "platform/qt/window/device_screen.h"
#include "platform/qt/window/window.h"
#include "platform/qt/window/window_widget.h"
#include "session/session_state.h"
#include "settings/settings.h"
#include "settings/toolbars.h"
#include "tests/qt_driver/driver.h"
#include "tests/support/fake_host.h"
#include "tests/support/person.h"
#include "tests/support/sessions.h"

namespace {

using Names = std::vector<std::string>;

const char kMayClose[] = "Warning: Do you really want to close this session";
const char kMayCancel[] =
    "Warning: I am busy making a connection. Do you want to cancel the request";

// ---- the bar on the screen; for the window thread

std::vector<QToolButton*> Buttons() {
    const Window* bar = FindWindowRecord(session.command_bar);
    if (!bar) return {};
    const auto found = bar->widget->findChildren<QToolButton*>();
    return std::vector<QToolButton*>(found.begin(), found.end());
}

QToolButton* ButtonNamed(const std::string& name) {
    for (QToolButton* button : Buttons())
        if (button->accessibleName().toStdString() == name) return button;
    return nullptr;
}

Names NamesNow() {
    Names names;
    for (const QToolButton* button : Buttons())
        names.push_back(button->accessibleName().toStdString());
    return names;
}

QPoint CenterOf(const QToolButton* button) {
    return button->mapTo(DeviceScreen(), button->rect().center());
}

// ---- the person

Names Shown() {
    Names names;
    OnWindowThread([&] { names = NamesNow(); });
    return names;
}

bool Shows(const Names& names) {
    return Eventually([&] { return NamesNow() == names; }, 3000);
}

bool ShowsButton(const std::string& name) {
    return Eventually([&] { return ButtonNamed(name) != nullptr; }, 5000);
}

// Clicks the mouse on the screen where the button is.
void Press(const std::string& name) {
    OnWindowThread([&] {
        const QToolButton* button = ButtonNamed(name);
        ASSERT_NE(button, nullptr) << name;
        QTest::mouseClick(DeviceScreen()->windowHandle(), Qt::LeftButton, Qt::NoModifier,
                          CenterOf(button));
    });
}

void Tap(const std::string& name) {
    OnWindowThread([&] {
        static QPointingDevice* const glass = QTest::createTouchDevice();
        const QToolButton* button = ButtonNamed(name);
        ASSERT_NE(button, nullptr) << name;
        QWindow* screen = DeviceScreen()->windowHandle();
        QTest::touchEvent(screen, glass).press(0, CenterOf(button), screen);
        QTest::touchEvent(screen, glass).release(0, CenterOf(button), screen);
    });
}

// ---- the device

void StoreAllRows(DWORD value) {
    for (int i = 0; i < kToolbarRows; i++) {
        WCHAR name[16];
        wsprintfW(name, TEXT("tbar%d"), i);
        WriteNumber(name, value);
    }
}

Stage OfWidth(int width, const std::function<void()>& before = {}) {
    Stage stage;
    stage.width = width;
    stage.height = 320;
    stage.before = before;
    return stage;
}

void WithAllButtons(const std::function<void()>& person) {
    RunProgram(OfWidth(640, [] { StoreAllRows(7); }), [&] {
        ASSERT_TRUE(Eventually([] { return Buttons().size() == 27; }));
        person();
    });
}

// All 27 buttons, and a session with the host.
void WithAllButtonsOnline(FakeHost& host, const std::function<void()>& person) {
    WithAllButtons([&] {
        BeginSession(host);
        ASSERT_TRUE(ShowsButton("disconnect"));
        person();
    });
}

const Names kNarrow1 = {"swap toolbar", "connect", "larger font", "smaller font", "ENTER",
                        "P1",           "P2",      "P3",          "P4",           "P5"};
const Names kNarrow2 = {"swap toolbar", "cut", "paste", "ENTER", "P7",
                        "P8",           "P9",  "P10",   "P11",   "P12"};
const Names kNarrow3 = {"swap toolbar", "ENTER", "P13", "P14", "P15",
                        "P16",          "P17",   "P18", "P19", "P20"};

Names NamesOfAllRows(size_t count) {
    Names names;
    for (size_t i = 0; i < count; i++) names.push_back(toolbar_buttons[i].name);
    return names;
}

}  // namespace

TEST(Toolbar, WideScreenStartsWithNineteenButtonsOnBar1) {
    RunProgram(OfWidth(640), [] {
        EXPECT_TRUE(Shows({"swap toolbar", "connect", "cut", "paste", "larger font", "smaller font",
                           "ENTER", "P1", "P2", "P3", "P4", "P5", "P6", "P7", "P8", "P9", "P10",
                           "P12", "P20"}));
    });
}

TEST(Toolbar, ScreenOf350PixelsIsWideAndOf349Narrow) {
    RunProgram(OfWidth(350), [] {
        EXPECT_TRUE(ShowsButton("cut"));
        EXPECT_EQ(16u, Shown().size());
    });
    RunProgram(OfWidth(349), [] { EXPECT_TRUE(Shows(kNarrow1)); });
}

TEST(Toolbar, SwapStepsThroughTheBarsOfANarrowScreenWhichAllLackP6) {
    RunProgram(OfWidth(240), [] {
        for (const Names& bar : {kNarrow1, kNarrow2, kNarrow3, kNarrow1}) {
            EXPECT_TRUE(Shows(bar));
            Press("swap toolbar");
        }
    });
}

TEST(Toolbar, AWindowOf240PixelsShowsElevenButtonsAtMost) {
    RunProgram(OfWidth(240, [] { StoreAllRows(7); }), [] {
        EXPECT_TRUE(Shows(NamesOfAllRows(11)));
        OnWindowThread([] {
            for (const QToolButton* button : Buttons()) {
                EXPECT_TRUE(button->isVisible());
                EXPECT_LE(CenterOf(button).x() + button->width() / 2, 240);
            }
        });
    });
}

TEST(Toolbar, ButtonsAreCountedByTheWidthAtTheStart) {
    RunProgram(OfWidth(21 * 13 + 20, [] { StoreAllRows(7); }), [] {
        EXPECT_TRUE(Shows(NamesOfAllRows(13)));
        ResizeDevice(640, 320);
        Press("swap toolbar");
        EXPECT_TRUE(Eventually([] { return session.toolbar == 2; }));
        EXPECT_TRUE(Shows(NamesOfAllRows(13)));
        ResizeDevice(120, 320);
        Press("swap toolbar");
        EXPECT_TRUE(Eventually([] { return session.toolbar == 3; }));
        EXPECT_TRUE(Shows(NamesOfAllRows(13)));
    });
}

TEST(Toolbar, EachWhole21PixelsHoldAButton) {
    const std::pair<int, size_t> widths[] = {{230, 10}, {231, 11}, {232, 11}, {251, 11},
                                             {252, 12}, {566, 26}, {567, 27}, {588, 27}};
    for (const auto& [width, buttons] : widths) {
        RunProgram(OfWidth(width, [] { StoreAllRows(7); }), [&, count = buttons] {
            EXPECT_TRUE(Shows(NamesOfAllRows(count))) << width;
            PostToMain(WM_COMMAND, 40020);
            EXPECT_TRUE(Eventually([] { return session.toolbar == 2; }));
            EXPECT_TRUE(Shows(NamesOfAllRows(count))) << width;
        });
    }
}

TEST(Toolbar, BarOfOneButtonShowsItWithItsTip) {
    const auto before = [] {
        StoreAllRows(4);
        WriteNumber(TEXT("tbar6"), 2);
    };
    RunProgram(OfWidth(640, before), [] {
        ASSERT_TRUE(Eventually([] { return Buttons().size() == 26; }));
        PostToMain(WM_COMMAND, 40020);
        EXPECT_TRUE(Shows({"ENTER"}));
        OnWindowThread([] {
            ASSERT_NE(ButtonNamed("ENTER"), nullptr);
            EXPECT_EQ(ButtonNamed("ENTER")->toolTip(), "ENTER");
        });
    });
}

TEST(Toolbar, RowOnNoBarIsNeverShownAndAnEmptyBarShowsNothing) {
    const auto before = [] {
        StoreAllRows(5);  // bars 1 and 3
        WriteNumber(TEXT("tbar6"), 0);
    };
    RunProgram(OfWidth(640, before), [] {
        EXPECT_TRUE(Eventually([] { return Buttons().size() == 26; }));
        EXPECT_EQ(nullptr, ButtonNamed("ENTER"));
        Press("swap toolbar");
        EXPECT_TRUE(Shows({}));
        PostToMain(WM_COMMAND, 40020);  // there is no button to press
        OnWindowThread([] { EXPECT_EQ(2, session.toolbar); });
    });
}

TEST(Toolbar, Row5Of7PutsSmallerFontOnAllThreeBars) {
    RunProgram(OfWidth(640, [] { WriteNumber(TEXT("tbar5"), 7); }), [] {
        for (int bar = 1; bar <= 3; bar++) {
            EXPECT_TRUE(Eventually([&] { return session.toolbar == bar; }));
            EXPECT_TRUE(ShowsButton("smaller font"));
            Press("swap toolbar");
        }
    });
}

TEST(Toolbar, OnlyTheThreeLowBitsOfAValueShowButtons) {
    const auto before = [] {
        StoreAllRows(0xFFFFFFFF);
        WriteString(TEXT("tbar1"), TEXT("a text that is not a number"));
        WriteString(TEXT("tbar2"), TEXT(""));
        WriteNumber(TEXT("tbar3"), 0xFFFFFFF8);
        WriteNumber(TEXT("tbar27"), 7);
        WriteNumber(TEXT("tbar-1"), 7);
    };
    RunProgram(OfWidth(640, before), [] {
        for (int bar = 1; bar <= 3; bar++) {
            EXPECT_TRUE(Eventually([&] { return session.toolbar == bar; }));
            const Names shown = Shown();
            EXPECT_LE(shown.size(), 26u);
            EXPECT_GE(shown.size(), 24u);
            EXPECT_EQ(0, std::count(shown.begin(), shown.end(), "paste"));
            Press("swap toolbar");
        }
    });
}

TEST(Toolbar, ConnectBecomesDisconnectAndBack) {
    FakeHost host;
    RunProgram(OfWidth(240), [&] {
        EXPECT_TRUE(ShowsButton("connect"));
        BeginSession(host);
        EXPECT_TRUE(ShowsButton("disconnect"));
        OnWindowThread([] { EXPECT_EQ(nullptr, ButtonNamed("connect")); });
        Press("disconnect");
        EXPECT_TRUE(host.Closed());
        EXPECT_TRUE(ShowsButton("connect"));
        OnWindowThread([] { EXPECT_EQ(nullptr, ButtonNamed("disconnect")); });
    });
}

TEST(Toolbar, ConnectOpensItsDialogWhoseOkConnects) {
    FakeHost host;
    WithAllButtons([&] {
        SetHost(u"127.0.0.1", host.port);
        Press("connect");
        ASSERT_TRUE(Eventually([] { return DialogTitle() == "Connect"; }));
        OnWindowThread([] { EXPECT_TRUE(ClickControl(IDCANCEL)); });
        ASSERT_TRUE(Eventually([] { return ShownDialog() == nullptr; }));
        EXPECT_TRUE(ShowsButton("connect"));
        Press("connect");
        ASSERT_TRUE(Eventually([] { return DialogTitle() == "Connect"; }));
        OnWindowThread([] { EXPECT_TRUE(ClickControl(IDOK)); });
        ASSERT_TRUE(host.Accept());
        host.Send("hello");
        EXPECT_TRUE(ShowsButton("disconnect"));
    });
}

namespace {

// The transparent pixels of a picture, line by line.
std::string Holes(const QImage& image) {
    std::string holes;
    for (int y = 0; y < image.height(); y++)
        for (int x = 0; x < image.width(); x++) holes += qAlpha(image.pixel(x, y)) ? '#' : '.';
    return holes;
}

std::string HolesOfResource(int id) {
    const uint8_t* bytes = nullptr;
    size_t size = 0;
    Bitmap bitmap;
    EXPECT_TRUE(
        FindResourceBytes(MAKEINTRESOURCE(kResourceBitmap), MAKEINTRESOURCE(id), &bytes, &size))
        << id;
    EXPECT_TRUE(ReadBitmap({bytes, size}, &bitmap)) << id;
    std::string holes;
    for (const uint32_t pixel : bitmap.pixels) holes += pixel == 0xC0C0C0 ? '.' : '#';
    return holes;
}

std::string HolesOfButton(const std::string& name, double ratio) {
    const QToolButton* button = ButtonNamed(name);
    return button ? Holes(button->icon().pixmap(QSize(16, 16), ratio).toImage()) : "no button";
}

}  // namespace

TEST(Toolbar, EachButtonShowsItsBitmapAndATwiceAsLargeOneOnFinerScreens) {
    WithAllButtons([] {
        OnWindowThread([] {
            std::set<std::string> pictures;
            for (int i = 0; i < kToolbarRows; i++) {
                const ToolbarButton& row = toolbar_buttons[i];
                EXPECT_EQ(HolesOfResource(row.bitmapId), HolesOfButton(row.name, 1)) << row.name;
                EXPECT_EQ(HolesOfResource(row.bitmapId + 10000), HolesOfButton(row.name, 2))
                    << row.name;
                EXPECT_EQ(256u, HolesOfButton(row.name, 1).size());
                EXPECT_EQ(1024u, HolesOfButton(row.name, 2).size());
                pictures.insert(HolesOfButton(row.name, 1));
                pictures.insert(HolesOfButton(row.name, 2));
            }
            EXPECT_EQ(2u * kToolbarRows, pictures.size()) << "two buttons look the same";
        });
    });
}

TEST(Toolbar, DisconnectShowsBitmap1539) {
    FakeHost host;
    WithAllButtonsOnline(host, [] {
        OnWindowThread([] {
            EXPECT_EQ(HolesOfResource(1539), HolesOfButton("disconnect", 1));
            EXPECT_EQ(HolesOfResource(11539), HolesOfButton("disconnect", 2));
            EXPECT_NE(HolesOfResource(1540), HolesOfResource(1539));
        });
    });
}

TEST(Toolbar, PictureIsDrawnOnTheScreen) {
    WithAllButtons([] {
        const QImage picture = Picture();
        OnWindowThread([&] {
            for (const QToolButton* button : Buttons()) {
                const QRect place(button->mapTo(DeviceScreen(), QPoint(0, 0)), button->size());
                int dark = 0;
                for (int y = place.top(); y <= place.bottom(); y++)
                    for (int x = place.left(); x <= place.right(); x++)
                        dark += qGray(picture.pixel(x, y)) < 64;
                EXPECT_GT(dark, 20) << button->accessibleName().toStdString();
            }
        });
    });
}

TEST(Toolbar, ToolTipAndScreenReaderGiveTheName) {
    WithAllButtons([] {
        OnWindowThread([] {
            const std::vector<QToolButton*> buttons = Buttons();
            for (size_t i = 0; i < buttons.size(); i++) {
                const QString name = toolbar_buttons[i].name;
                EXPECT_EQ(name, buttons[i]->toolTip());
                QAccessibleInterface* reader = QAccessible::queryAccessibleInterface(buttons[i]);
                ASSERT_NE(reader, nullptr);
                EXPECT_EQ(QAccessible::Button, reader->role());
                EXPECT_EQ(name, reader->text(QAccessible::Name));
            }
        });
    });
}

struct KeyButton {
    const char* name;
    const char* bytes;
};

const KeyButton kKeyButtons[] = {
    {"ENTER", "\r"},     {"P1", "\217P"},     {"P2", "\217Q"},     {"P3", "\217R"},
    {"P4", "\217S"},     {"P5", "\033[15~"},  {"P6", "\033[17~"},  {"P7", "\033[18~"},
    {"P8", "\033[19~"},  {"P9", "\033[20~"},  {"P10", "\033[21~"}, {"P11", "\033[23~"},
    {"P12", "\033[24~"}, {"P13", "\033[25~"}, {"P14", "\033[26~"}, {"P15", "\033[28~"},
    {"P16", "\033[29~"}, {"P17", "\033[31~"}, {"P18", "\033[32~"}, {"P19", "\033[33~"},
    {"P20", "\033[34~"},
};

TEST(Toolbar, EachKeyButtonSendsItsKeysSequence) {
    FakeHost host;
    WithAllButtonsOnline(host, [&] {
        for (const KeyButton& button : kKeyButtons) {
            Press(button.name);
            EXPECT_EQ(button.bytes, host.Read(std::strlen(button.bytes))) << button.name;
        }
        EXPECT_EQ("", host.ReadSome(50));
    });
}

TEST(Toolbar, KeyButtonsSendNothingOffline) {
    FakeHost host;
    WithAllButtons([&] {
        for (const KeyButton& button : kKeyButtons) Press(button.name);
        BeginSession(host);
        EXPECT_EQ("", host.ReadSome(50));
    });
}

TEST(Toolbar, KeyButtonSendsWhatTheKeyTableWasChangedTo) {
    FakeHost host;
    RunProgram(OfWidth(640, [] { WriteString(TEXT("key2"), TEXT("abc\\015")); }), [&] {
        BeginSession(host);
        ASSERT_TRUE(ShowsButton("disconnect"));
        Press("P3");
        EXPECT_EQ("abc\r", host.Read(4));
    });
}

TEST(Toolbar, FingerPressesAButtonAsTheMouseDoes) {
    FakeHost host;
    WithAllButtonsOnline(host, [&] {
        Tap("P5");
        EXPECT_EQ("\033[15~", host.Read(5));
        Tap("swap toolbar");
        EXPECT_TRUE(Eventually([] { return session.toolbar == 2; }));
    });
}

TEST(Toolbar, QuickPressesAllCount) {
    FakeHost host;
    WithAllButtonsOnline(host, [&] {
        OnWindowThread([] {
            QWindow* screen = DeviceScreen()->windowHandle();
            QTest::mouseDClick(screen, Qt::LeftButton, Qt::NoModifier, CenterOf(ButtonNamed("P1")));
        });
        EXPECT_EQ("\217P\217P", host.Read(4));
    });
}

TEST(Toolbar, PressReleasedOutsideTheButtonDoesNothing) {
    FakeHost host;
    WithAllButtonsOnline(host, [&] {
        OnWindowThread([] {
            QWindow* screen = DeviceScreen()->windowHandle();
            const QPoint on = CenterOf(ButtonNamed("P1")), beside = on + QPoint(0, 100);
            QTest::mousePress(screen, Qt::LeftButton, Qt::NoModifier, on);
            EXPECT_TRUE(ButtonNamed("P1")->isDown());
            QTest::mouseMove(screen, beside);
            QTest::mouseRelease(screen, Qt::LeftButton, Qt::NoModifier, beside);
            EXPECT_FALSE(ButtonNamed("P1")->isDown());
        });
        EXPECT_EQ("", host.ReadSome(50));
    });
}

TEST(Toolbar, KeyboardStaysWithTheTerminal) {
    FakeHost host;
    WithAllButtonsOnline(host, [&] {
        Press("P1");
        EXPECT_EQ("\217P", host.Read(2));
        TypeText("ls ");
        EXPECT_EQ("ls ", host.Read(3));
        OnWindowThread([] {  // a press on the bar next to the buttons too
            QTest::mouseClick(DeviceScreen()->windowHandle(), Qt::LeftButton, Qt::NoModifier,
                              QPoint(635, 10));
            for (const QToolButton* button : Buttons()) EXPECT_FALSE(button->hasFocus());
            EXPECT_EQ(FindWindowRecord(session.main_window)->widget,
                      qobject_cast<WindowWidget*>(QApplication::focusWidget()));
        });
        TypeText("-l ");
        EXPECT_EQ("-l ", host.Read(3));
    });
}

TEST(Toolbar, FontButtonsStepTheSizeAndKeepItInItsRange) {
    WithAllButtons([] {
        int height = 0;
        OnWindowThread([&] { height = session.view.cell_height; });
        Press("larger font");
        EXPECT_TRUE(Eventually([&] { return session.view.cell_height == height + 1; }));
        Press("smaller font");
        EXPECT_TRUE(Eventually([&] { return session.view.cell_height == height; }));
        for (int i = 0; i < 30; i++) Press("smaller font");
        OnWindowThread([] { EXPECT_EQ(1u, session.settings.fsize); });
        for (int i = 0; i < 40; i++) Press("larger font");
        OnWindowThread([] { EXPECT_EQ(25u, session.settings.fsize); });
    });
}

TEST(Toolbar, SwapGoesFrom3To1AndASessionDoesNotChangeTheBar) {
    FakeHost host;
    WithAllButtonsOnline(host, [&] {
        for (const int next : {2, 3, 1, 2}) {
            Press("swap toolbar");
            EXPECT_TRUE(Eventually([&] { return session.toolbar == next; })) << next;
        }
        host.Drop();
        EXPECT_TRUE(DismissBox("Error: Connection to the UNIX Host has been closed..."));
        EXPECT_TRUE(ShowsButton("connect"));
        OnWindowThread([] { EXPECT_EQ(2, session.toolbar); });
    });
}

TEST(Toolbar, DisconnectAsksUnlessConfirmExitIs0) {
    for (const DWORD confirm : {1u, 2u}) {
        FakeHost host;
        WithAllButtonsOnline(host, [&] {
            OnWindowThread([&] { session.settings.confirm_exit = confirm; });
            Press("disconnect");
            EXPECT_EQ(kMayClose, AwaitBox());
            PressCancel();
            Press("P1");
            EXPECT_EQ("\217P", host.Read(2)) << "the session goes on";
            Press("disconnect");
            EXPECT_TRUE(DismissBox(kMayClose));
            EXPECT_TRUE(host.Closed());
            EXPECT_TRUE(ShowsButton("connect"));
        });
    }
}

TEST(Toolbar, BarIsRebuiltAfterEveryPressOfTheConnectButton) {
    FakeHost host;
    WithAllButtonsOnline(host, [&] {
        const auto bar = [] {
            HWND shown = nullptr;
            OnWindowThread([&] { shown = session.command_bar; });
            return shown;
        };
        OnWindowThread([] { session.settings.confirm_exit = 1; });
        const HWND first = bar();
        PostToMain(WM_COMMAND, 40021);
        ASSERT_EQ(AwaitBox(), kMayClose);
        EXPECT_EQ(bar(), first) << "not before the answer";
        PressCancel();
        EXPECT_NE(bar(), first) << "also after a cancel";
        OnWindowThread([] {
            session.settings.confirm_exit = 0;
            const HWND before = session.command_bar;
            SendMessageW(session.main_window, WM_COMMAND, 40021, 0);
            EXPECT_NE(session.command_bar, before) << "before the end of the session is told";
            EXPECT_EQ(session.connected.load(), 1u);
        });
        EXPECT_TRUE(ShowsButton("connect"));
    });
}

TEST(Toolbar, PositionWithoutAButtonDoesNothing) {
    FakeHost host;
    WithAllButtonsOnline(host, [&] {
        std::string title;
        OnWindowThread([&] {
            title = Title();
            lstrcpyW(session.settings.host, u"other");
            for (const WPARAM id : {WPARAM{40020 + 27}, WPARAM{40069}})
                SendMessageW(session.main_window, WM_COMMAND, id, 0);
            EXPECT_EQ(Title(), title) << "not even the status line is written";
        });
        EXPECT_EQ(host.ReadSome(50), "");
    });
}

TEST(Toolbar, PressWhileConnectingAsksAndOkCancelsTheAttempt) {
    FakeHost host;  // accepts and sends nothing
    WithAllButtons([&] {
        SetHost(u"127.0.0.1", host.port);
        Connect();
        ASSERT_TRUE(Eventually([] { return session.connect_pending == 1; }));
        ASSERT_TRUE(ShowsButton("connect"));
        Press("connect");
        EXPECT_EQ(kMayCancel, AwaitBox());
        PressCancel();
        OnWindowThread([] { EXPECT_EQ(1u, session.connect_pending); });
        Press("connect");
        EXPECT_TRUE(DismissBox(kMayCancel));
        EXPECT_TRUE(Eventually([] { return session.connect_pending == 0; }));
        EXPECT_TRUE(DismissBox("Error: Not possible to create a session to the UNIX Host"));
        EXPECT_TRUE(ShowsButton("connect"));
    });
}

TEST(Toolbar, PressWhileDiallingSaysSoInTheTerminalAndHangsUp) {
    WithAllButtons([] {
        OnWindowThread([] {
            session.dialling = 1;
            session.ras_connection = reinterpret_cast<HRASCONN>(static_cast<UINT_PTR>(4));
        });
        Press("connect");
        EXPECT_TRUE(TerminalShows("Abort modem dialing"));
        OnWindowThread([] {
            EXPECT_EQ(nullptr, session.ras_connection);
            EXPECT_EQ(2, session.screen.cursor_row);
            EXPECT_EQ(1, session.screen.cursor_col);
        });
    });
}

TEST(Toolbar, CommandsOutsideTheButtonsRangeDoNothing) {
    FakeHost host;
    WithAllButtonsOnline(host, [&] {
        for (const WPARAM id : {40020 + 27, 40069, 40070}) PostToMain(WM_COMMAND, id);
        EXPECT_EQ("", host.ReadSome(50));
        OnWindowThread([] { EXPECT_EQ(1, session.toolbar); });
        PostToMain(WM_COMMAND, 40020 + 26);
        EXPECT_EQ("\033[34~", host.Read(5));
    });
}

TEST(Toolbar, BarAcceptsOnlyPicturesOfTheResources) {
    WithAllButtons([] {
        OnWindowThread([] {
            const HWND bar = session.command_bar;
            EXPECT_EQ(27, CommandBar_AddBitmap(bar, nullptr, 1540, 1, 16, 16));
            EXPECT_EQ(-1, CommandBar_AddBitmap(bar, nullptr, 1538, 1, 16, 16)) << "not there";
            EXPECT_EQ(-1, CommandBar_AddBitmap(bar, nullptr, 1540, 2, 16, 16)) << "one picture";
            EXPECT_EQ(-1, CommandBar_AddBitmap(bar, nullptr, 1540, INT32_MAX, 16, 16));
            EXPECT_EQ(-1, CommandBar_AddBitmap(bar, nullptr, 1540, 0, 16, 16));
            EXPECT_EQ(-1, CommandBar_AddBitmap(bar, nullptr, -1, 1, 16, 16));
            EXPECT_EQ(-1, CommandBar_AddBitmap(nullptr, nullptr, 1540, 1, 16, 16)) << "no bar";
            EXPECT_EQ(-1, CommandBar_AddBitmap(bar, nullptr, INT32_MAX, 1, 16, 16));
            TBBUTTON button = {};
            button.iBitmap = 99;
            EXPECT_TRUE(CommandBar_InsertButton(bar, 99, &button)) << "a button without picture";
            EXPECT_FALSE(Buttons().back()->isEnabled());
            EXPECT_FALSE(CommandBar_InsertButton(bar, -1, &button));
            EXPECT_FALSE(CommandBar_InsertButton(bar, 0, nullptr));
            EXPECT_FALSE(CommandBar_AddToolTips(bar, 1, nullptr));
        });
    });
}

TEST(Toolbar, DestroyedBarAcceptsNothing) {
    WithAllButtons([] {
        OnWindowThread([] {
            const HWND gone = session.command_bar;
            SendMessageW(session.main_window, WM_COMMAND, 40020, 0);
            ASSERT_NE(gone, session.command_bar);
            TBBUTTON button = {};
            LPWSTR tips[1] = {};
            EXPECT_EQ(-1, CommandBar_AddBitmap(gone, nullptr, 1540, 1, 16, 16));
            EXPECT_FALSE(CommandBar_InsertButton(gone, 0, &button));
            EXPECT_FALSE(CommandBar_AddToolTips(gone, 1, tips));
        });
    });
}
