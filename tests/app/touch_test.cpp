// SPDX-License-Identifier: MIT
// What the README says that a person does, by finger alone. The program is run once for each size
// of screen.
#include <gtest/gtest.h>
#include <QAbstractItemView>
#include <QClipboard>
#include <QComboBox>
#include <QDesktopServices>
#include <QScrollBar>
#include <QThread>
#include <QUrl>

#include "platform/qt/shell/shell.h"
#include "platform/qt/window/window.h"
#include "resources/resource_ids.h"
#include "session/session_state.h"
#include "settings/key_map.h"
#include "settings/toolbars.h"
#include "tests/app/finger.h"
#include "tests/qt_driver/driver.h"
#include "tests/support/person.h"
#include "tests/support/sessions.h"
#include "ui/dialogs/dialogs.h"

namespace {

QString Text(LPCWSTR text) { return FromWide(text); }

bool ProgramEnds() {
    constexpr int kPatience = 10000, kStep = 10;  // milliseconds
    for (int waited = 0; ProgramRuns() && waited < kPatience; waited += kStep)
        QThread::msleep(kStep);
    return !ProgramRuns();
}

Target ListedHost(int row) {
    const auto* box = qobject_cast<QComboBox*>(DialogWidgetOf(IDC_HOST));
    if (!box || !box->view()->isVisible()) return {};
    const QModelIndex index = box->model()->index(row, 0);
    return {box->view()->viewport(), box->view()->visualRect(index).center()};
}

TEST(Touch, TypesAHostOnTheSoftKeyboardAndConnects) {
    OnDevice([](FakeHost& host) {
        SetHost(u"", host.port);
        ShowPanel();
        TapMenu("File", "Connect...");
        ASSERT_TRUE(DialogShown("Connect"));
        TapKeys("127.0.0.1");
        TapControl(IDOK);
        ASSERT_TRUE(host.Accept());
        OnWindowThread([] { EXPECT_EQ(Text(session.settings.host), "127.0.0.1"); });
        host.Send("hello");
        ASSERT_TRUE(TerminalShows("hello"));
        TapKeys("ls");
        EXPECT_EQ(host.Read(2), "ls");
    });
}

// Nobody has shown the soft keyboard: a tap into the field does it. It goes with the dialog.
TEST(Touch, TapsIntoAFieldAndConnects) {
    OnDevice([](FakeHost& host) {
        SetHost(u"", host.port);
        TapMenu("File", "Connect...");
        ASSERT_TRUE(DialogShown("Connect"));
        OnWindowThread([] { EXPECT_TRUE(ShellInputPanel()->isHidden()); });
        TapControl(IDC_HOST);
        TapKeys("127.0.0.1");
        TapControl(IDOK);
        ASSERT_TRUE(host.Accept());
        host.Send("hello");
        ASSERT_TRUE(TerminalShows("hello"));
        OnWindowThread([] {
            EXPECT_EQ(Text(session.settings.host), "127.0.0.1");
            EXPECT_TRUE(ShellInputPanel()->isHidden());
            EXPECT_FALSE(ButtonNamed("Keyboard")->isChecked());
            TapPlace(FindWindowRecord(session.client_window)->widget, QPoint(20, 20));
        });
        OnWindowThread([] {
            EXPECT_TRUE(ShellInputPanel()->isHidden()) << "the terminal has no field";
            EXPECT_EQ(session.view.covered_rows, 0);
        });
    });
}

// In the box that the first answer of an SSH server brings up.
TEST(Touch, SignsOn) {
    OnDevice([](FakeHost&) {
        QMetaObject::invokeMethod(
            qApp, [] { AskSignOn(); }, Qt::QueuedConnection);
        ASSERT_TRUE(DialogShown("Sign on to the host"));
        OnWindowThread([] { EXPECT_TRUE(ShellInputPanel()->isHidden()); });
        TapControl(IDC_SSH_U);
        TapKeys("anna");
        TapControl(IDC_SSH_P);
        TapKey("Shift");
        TapKeys("Pw7");
        TapControl(IDC_SSH_DEF);
        TapControl(IDOK);
        ASSERT_TRUE(DialogGone());
        OnWindowThread([] {
            EXPECT_EQ(Text(session.settings.ssh_u), "anna");
            EXPECT_EQ(Text(session.settings.ssh_p), "Pw7");
            EXPECT_EQ(session.settings.ssh_def, 1u);
            EXPECT_TRUE(ShellInputPanel()->isHidden());
        });
    });
}

// The bar's button opens the same dialog; a host that was dialled before is chosen from the list.
TEST(Touch, ConnectsByTheBarToAHostOfTheHistory) {
    OnDevice([](FakeHost& host) {
        SetHost(u"", host.port);
        OnWindowThread([] {
            lstrcpyW(session.settings.hist0a, u"elsewhere.example");
            lstrcpyW(session.settings.hist1a, u"127.0.0.1");
        });
        TapBar("connect");
        ASSERT_TRUE(DialogShown("Connect"));
        TapTarget(
            [] {
                QWidget* box = DialogWidgetOf(IDC_HOST);
                constexpr int kArrow = 6;  // from the right edge
                return box ? Target{box, QPoint(box->width() - kArrow, box->height() / 2)}
                           : Target{};
            },
            "the arrow of the list");
        TapTarget([] { return ListedHost(1); }, "the second host");
        TapControl(IDOK);
        EXPECT_TRUE(host.Accept());
    });
}

TEST(Touch, ChangesEverythingOfAConnection) {
    OnDevice([](FakeHost&) {
        ShowPanel();
        TapMenu("File", "Connect...");
        ASSERT_TRUE(DialogShown("Connect"));
        TapControl(IDC_ADVANCED);
        ASSERT_TRUE(DialogShown("Connect Advanced"));
        TapControl(IDC_PORT);
        for (const char* label : {"Fn", "End", "Bksp", "Bksp"}) TapKey(label);
        TapKeys("2022");
        for (const int mark : {IDC_AUTOCONNECT, IDC_EXIT_DIS, IDC_CONFIRM_EXIT, IDC_XBOX, IDC_SSH,
                               IDC_SSH1, IDC_BLOWFISH})
            TapControl(mark);
        TapControl(IDOK);
        ASSERT_TRUE(DialogShown("Connect"));
        TapControl(IDCANCEL);
        ASSERT_TRUE(DialogGone());
        OnWindowThread([] {
            EXPECT_EQ(session.settings.port, 2022u);
            EXPECT_EQ(session.settings.autoconnect, 1u);
            EXPECT_EQ(session.settings.exit_dis, 1u);
            EXPECT_EQ(session.settings.confirm_exit, 1u);
            EXPECT_EQ(session.settings.xbox, 1u);
            EXPECT_EQ(session.settings.ssh, 1u);
            EXPECT_EQ(session.settings.ssh_type2, 0u);
            EXPECT_EQ(session.settings.ssh_type, 2u);
        });
    });
}

TEST(Touch, ChangesTheFont) {
    OnDevice([](FakeHost&) {
        TapMenu("Settings", "Font...");
        ASSERT_TRUE(DialogShown("Font"));
        // The face that the device has at first is chosen already.
        QStringList faces;
        OnWindowThread([&] { faces = ControlEntries(IDC_FONTS); });
        TapRow(IDC_FONTS, static_cast<int>(faces.size()) - 1);
        TapControl(IDC_FONT_BOLD);
        TapControl(IDC_FONT_ITALIC);
        TapControl(IDOK);
        ASSERT_TRUE(DialogGone());
        OnWindowThread([&] {
            EXPECT_EQ(Text(session.settings.fname), faces.last());
            EXPECT_EQ(session.settings.font_bold, 1u);
            EXPECT_EQ(session.settings.font_italic, 1u);
        });
    });
}

TEST(Touch, ChangesThePropertiesOnEachPage) {
    OnDevice([](FakeHost&) {
        ShowPanel();
        TapMenu("Settings", "Properties...");
        ASSERT_TRUE(DialogShown("Properties"));
        TapControl(IDC_RAS);
        TapKeys("net");
        for (const int mark :
             {IDC_HIDESTATUS, IDC_FOLLOWCURSOR, IDC_BELL, IDC_NEGO, IDC_HOTSPOT, IDC_ALIVE})
            TapControl(mark);
        TapControl(IDC_HIDESTATUS);  // and back
        TapTab("Toolbar");
        const ToolbarButton& swap = toolbar_buttons[2];
        const int before = static_cast<int>(swap.onBar3);
        TapRow(IDC_BAR3, 2);
        TapRow(IDC_BAR3, 2);
        TapTab("Keyboard");
        TapRow(IDC_KEYS, 1);
        TapControl(IDC_CHANGE);
        ASSERT_TRUE(DialogShown("Change"));
        TapKeys("k");
        TapControl(IDOK);
        ASSERT_TRUE(DialogShown("Properties"));
        TapControl(IDOK);
        ASSERT_TRUE(DialogGone());
        OnWindowThread([&] {
            EXPECT_EQ(Text(session.settings.ras), "net");
            EXPECT_EQ(session.settings.hidestatus, 0u);
            EXPECT_EQ(session.settings.followcursor, 0u);
            EXPECT_EQ(session.settings.bell, 0u);
            EXPECT_EQ(session.settings.nego, 1u);
            EXPECT_EQ(session.settings.hotspot, 1u);
            EXPECT_EQ(session.settings.alive, 0u);
            EXPECT_NE(static_cast<int>(swap.onBar3), before);
            EXPECT_STREQ(key_map[1].text, "k");
        });
    });
}

TEST(Touch, TypesAnAutomaticLogin) {
    OnDevice([](FakeHost&) {
        ShowPanel();
        TapMenu("Settings", "Auto Login...");
        ASSERT_TRUE(DialogShown("Auto Login"));
        TapControl(IDC_RESP1);
        TapKeys("anna");
        TapControl(IDC_SEAR2);
        TapKeys("word");
        TapControl(IDC_RESP2);
        TapKeys("pw\\015");
        TapControl(IDOK);
        ASSERT_TRUE(DialogGone());
        OnWindowThread([] {
            EXPECT_EQ(Text(session.settings.sear1), "ogin");
            EXPECT_EQ(Text(session.settings.resp1), "anna");
            EXPECT_EQ(Text(session.settings.sear2), "word");
            EXPECT_EQ(Text(session.settings.resp2), "pw\\015");
        });
    });
}

bool IsGrey(DWORD color) {
    return (color & 0xFF) == (color >> 8 & 0xFF) && (color & 0xFF) == (color >> 16 & 0xFF);
}

TEST(Touch, ChoosesEachColor) {
    OnDevice([](FakeHost&) {
        const DWORD* const colors[] = {&session.settings.color_bg, &session.settings.color_cursor,
                                       &session.settings.color_fg, &session.settings.color_bold};
        const char* const entries[] = {"Background Color...", "Cursor Color...", "Color Text...",
                                       "Color Bold..."};
        for (int i = 0; i < 4; i++) {
            const DWORD before = *colors[i];
            TapMenu("Settings", entries[i]);
            Tap([] { return InChooser(HasColors); }, entries[i]);
            Tap([] { return InChooser(HasBrightness); }, entries[i]);
            Tap([] { return InChooser(IsOk); }, entries[i]);
            ASSERT_TRUE(Eventually([] { return !ShownColorDialog(); })) << entries[i];
            OnWindowThread([&] {
                EXPECT_NE(*colors[i], before) << entries[i];
                EXPECT_FALSE(IsGrey(*colors[i])) << entries[i];
            });
        }
    });
}

// Two questions and a notice, and the program ends.
TEST(Touch, ResetsTheConfiguration) {
    OnDevice([](FakeHost&) {
        TapMenu("Settings", "Reset configuration...");
        for (const char* text : {"Do you really want to reset the configuration", "Are you sure!",
                                 "Program will exit to complete the reset"}) {
            ASSERT_TRUE(Eventually([&] {
                return ShownMessageBox() && ShownMessageBox()->text() == text;
            })) << text;
            AnswerBox(QMessageBox::Ok);
        }
        EXPECT_TRUE(ProgramEnds());
    });
}

TEST(Touch, FontGrowsAndShrinksByTheBar) {
    OnDevice([](FakeHost&) {
        const int before = session.view.cell_height;
        TapBar("larger font");
        EXPECT_TRUE(Eventually([=] { return session.view.cell_height > before; }));
        TapBar("smaller font");
        EXPECT_TRUE(Eventually([=] { return session.view.cell_height == before; }));
    });
}

void MarkHello() {
    OnWindowThread([] {
        const int cell = session.view.cell_width, middle = session.view.cell_height / 2;
        QWidget* terminal = FindWindowRecord(session.client_window)->widget;
        Drag(terminal, QPoint(cell / 2, middle), QPoint(4 * cell + cell / 2, middle));
    });
    ASSERT_TRUE(Eventually([] { return session.screen.selection_active != 0; }));
}

bool Copied(const char* text) {
    return Eventually([=] { return QApplication::clipboard()->text().trimmed() == text; });
}

TEST(Touch, MarksCopiesAndPastes) {
    InSession([](FakeHost& host) {
        MarkHello();
        TapBar("cut");
        EXPECT_TRUE(Copied("hello"));
        TapBar("paste");
        EXPECT_EQ(host.Read(5), "hello");
    });
}

// Stands in the way of the desktop's viewer.
class Viewer : public QObject {
    Q_OBJECT
  public:
    Viewer() {
        OnWindowThread([this] { QDesktopServices::setUrlHandler("file", this, "Open"); });
    }
    ~Viewer() override {
        OnWindowThread([] { QDesktopServices::unsetUrlHandler("file"); });
    }
    bool Opens() {
        return Eventually([this] { return std::exchange(opened_, {}).endsWith("/telnet.htm"); });
    }
  public Q_SLOTS:
    void Open(const QUrl& url) { opened_ = url.path(); }

  private:
    QString opened_;
};

TEST(Touch, OpensTheHelp) {
    OnDevice([](FakeHost&) {
        Viewer viewer;
        TapMenu("Settings", "Help");
        EXPECT_TRUE(viewer.Opens());
        TapMenu("Settings", "About...");
        TapControl(IDOK);
        EXPECT_TRUE(DialogGone());
    });
}

// The keys of the README's table, on the soft keyboard.
TEST(Touch, EveryKeyOfTheTableIsTapped) {
    InSession([](FakeHost& host) {
        Viewer viewer;
        const auto tap = [](const char* key) {
            for (const char* label : {"Ctl", "Shift", key}) TapKey(label);
        };
        MarkHello();
        ShowPanel();
        tap("C");
        EXPECT_TRUE(Copied("hello"));
        tap("V");
        EXPECT_EQ(host.Read(5), "hello");
        const int before = session.view.cell_height;
        tap("+");
        EXPECT_TRUE(Eventually([=] { return session.view.cell_height > before; }));
        tap("_");
        EXPECT_TRUE(Eventually([=] { return session.view.cell_height == before; }));
        tap("H");
        EXPECT_TRUE(viewer.Opens());
        tap("N");
        EXPECT_TRUE(host.Closed());
        ASSERT_TRUE(Offline());
        tap("N");
        ASSERT_TRUE(DialogShown("Connect"));
        TapControl(IDOK);
        ASSERT_TRUE(host.Accept());
        host.Send("again");
        ASSERT_TRUE(TerminalShows("again"));
        tap("Q");
        EXPECT_TRUE(ProgramEnds());
    });
}

constexpr const char* kFunctionKeys[] = {
    "\217P",    "\217Q",    "\217R",    "\217S",    "\033[15~", "\033[17~", "\033[18~",
    "\033[19~", "\033[20~", "\033[21~", "\033[23~", "\033[24~", "\033[25~", "\033[26~",
    "\033[28~", "\033[29~", "\033[31~", "\033[32~", "\033[33~", "\033[34~"};

struct SentRow {
    const char* name;
    const char* bytes;
};
constexpr SentRow kMenuKeys[] = {
    {"Enter", "\r"},          {"Esc", "\033"},          {"Arrow Up", "\033[A"},
    {"Arrow Down", "\033[B"}, {"Arrow Left", "\033[D"}, {"Arrow Right", "\033[C"},
    {"Page Up", "\2335~"},    {"Page Down", "\2336~"},
};
constexpr SentRow kFnKeys[] = {
    {"PU", "\2335~"},
    {"PD", "\2336~"},
    {"Hm", "\2331~"},
    {"End", "\2334~"},
};

void ExpectSent(FakeHost& host, const std::string& bytes, const std::string& what) {
    EXPECT_EQ(host.Read(bytes.size()), bytes) << what;
}

TEST(Touch, EveryFunctionKeyAndEveryKeyOfTheMenusIsSent) {
    InSession([](FakeHost& host) {
        int number = 0;
        for (const char* bytes : kFunctionKeys) {
            const std::string name = "F" + std::to_string(++number);
            TapMenu("Fx", name.c_str());
            ExpectSent(host, bytes, name);
        }
        for (const SentRow& row : kMenuKeys) {
            TapMenu("Keys", row.name);
            ExpectSent(host, row.bytes, row.name);
        }
        EXPECT_EQ(host.ReadSome(100), "");
    });
}

bool IsOnABar(const std::string& name) {
    for (const ToolbarButton* button = toolbar_buttons; button->name; ++button)
        if (name == button->name) return button->onBar1 || button->onBar2 || button->onBar3;
    return false;
}

// The bars of a narrow device leave one of the keys out.
TEST(Touch, EveryKeyOfTheBarsIsSent) {
    InSession([](FakeHost& host) {
        int number = 0, sent = 0;
        for (const char* bytes : kFunctionKeys) {
            const std::string name = "P" + std::to_string(++number);
            if (!IsOnABar(name)) continue;
            TapBar(name.c_str());
            ExpectSent(host, bytes, name);
            sent++;
        }
        EXPECT_GE(sent, 19);
        TapBar("ENTER");
        ExpectSent(host, "\r", "ENTER");
        EXPECT_EQ(host.ReadSome(100), "");
    });
}

TEST(Touch, FunctionAndCursorKeysOfTheSoftKeyboardAreSent) {
    InSession([](FakeHost& host) {
        ShowPanel();
        constexpr int kOnThePanel = 12;
        for (int i = 0; i < kOnThePanel; i++) {
            const std::string name = "F" + std::to_string(i + 1);
            TapKey("Fn");
            TapKey(name.c_str());
            ExpectSent(host, kFunctionKeys[i], name);
        }
        for (int digit = 1; digit <= 10; digit++) {
            TapKey("Ctl");
            TapKey(QString::number(digit % 10));
            ExpectSent(host, kFunctionKeys[digit - 1], "Ctl " + std::to_string(digit % 10));
        }
        for (const SentRow& row : kFnKeys) {
            TapKey("Fn");
            TapKey(row.name);
            ExpectSent(host, row.bytes, row.name);
        }
        for (const SentRow& row : {SentRow{"\u2191", "\033[A"}, SentRow{"\u2193", "\033[B"},
                                   SentRow{"\u2190", "\033[D"}, SentRow{"\u2192", "\033[C"}}) {
            TapKey(row.name);
            ExpectSent(host, row.bytes, row.bytes + 1);
        }
        EXPECT_EQ(host.ReadSome(100), "");
    });
}

TEST(Touch, ScrollsWhatASmallScreenCutsOff) {
    OnDevice([](FakeHost&) {
        constexpr int kArrow = 5, kMostTaps = 60;  // an arrow is so far from the end
        QScrollBar *down = nullptr, *across = nullptr;
        OnWindowThread([&] {
            down = FindWindowRecord(session.client_window)->vertical.bar;
            across = FindWindowRecord(session.client_window)->horizontal.bar;
        });
        const auto tap = [](QScrollBar* bar, bool end) {
            OnWindowThread([=] {
                const int place = end ? std::max(bar->width(), bar->height()) - kArrow : kArrow;
                TapPlace(bar, bar->orientation() == Qt::Horizontal
                                  ? QPoint(place, bar->height() / 2)
                                  : QPoint(bar->width() / 2, place));
            });
        };
        const auto cut = [&] { return down->isVisible() && across->isVisible(); };
        for (int taps = 0; taps < kMostTaps && !Eventually(cut, 100); ++taps) TapBar("larger font");
        ASSERT_TRUE(cut());
        tap(down, true);
        EXPECT_TRUE(Eventually([] { return session.view.view_top > 0; }));
        tap(down, false);
        EXPECT_TRUE(Eventually([] { return session.view.view_top == 0; }));
        tap(across, true);
        EXPECT_TRUE(Eventually([] { return session.view.view_left > 0; }));
        tap(across, false);
        EXPECT_TRUE(Eventually([] { return session.view.view_left == 0; }));
    });
}

TEST(Touch, EndsTheSessionAndLeaves) {
    InSession([](FakeHost& host) {
        OnWindowThread([] { session.settings.confirm_exit = 1; });
        TapMenu("File", "Disconnect...");
        AnswerBox(QMessageBox::Ok);
        EXPECT_TRUE(host.Closed());
        ASSERT_TRUE(Offline());
        TapMenu("File", "Exit");
        EXPECT_TRUE(ProgramEnds());
    });
}

TEST(Touch, BarsButtonEndsTheSession) {
    InSession([](FakeHost& host) {
        TapBar("disconnect");
        EXPECT_TRUE(host.Closed());
        EXPECT_TRUE(Offline());
    });
}

}  // namespace

#include "touch_test.moc"
