// SPDX-License-Identifier: MIT
// The pieces that use the window: the start, its commands, the stylus, the clipboard, and each
// dialog.
#include <QApplication>
#include <QClipboard>
#include <QColorDialog>
#include <QMouseEvent>
#include <QtTest/QTest>

#include "connection/connection.h"
#include "platform/qt/shell/shell.h"
#include "platform/qt/window/window.h"
#include "resources/resource_ids.h"
#include "session/session_state.h"
#include "tests/dialogs/stored.h"
#include "tests/faults/pieces.h"
#include "tests/faults/user.h"
#include "tests/support/sessions.h"
#include "ui/dialogs/dialogs.h"

// ---------------------------------------------------------------- start and window

void StageNothing(Stage& stage) { stage.root = FreshRoot(); }

void StageImport(Stage& stage) {
    stage.root = FreshRoot();
    stage.config = "# a comment\nport = 0x17\nhost = \"my host\"\nblink = 1\n";
}

void DoNothing() { Settle(); }

void ImportFile() { Answer(); }

void UseWindow() {
    PostToMain(WM_TIMER, 1);
    ResizeDevice(177, 93);
    Settle();
    ResizeDevice(640, 480);
    for (const int id : {IDM_LARGER_FONT, IDM_SMALLER_FONT, IDM_TOOLBAR_FIRST, IDM_F1})
        Command(static_cast<WORD>(id));
    PressKey(Qt::Key_F5);
    TypeText("x");
    PressKey(Qt::Key_F1, Qt::AltModifier);
    Settle();
}

// Scrolls, asks for help, and starts the program again. On a small screen the panel covers rows.
void StageSmall(Stage& stage) {
    stage.root = FreshRoot();
    stage.width = 240, stage.height = 320;
}

static void TapPanelButton() {
    OnWindowThread([] { QTest::mouseClick(ShellMenuStrip()->panel_button(), Qt::LeftButton); });
    Settle();
}

void UseSmallWindow() {
    for (const WPARAM code : {SB_PAGEDOWN, SB_LINEUP}) {
        Use([=] { SendMessageW(session.client_window, WM_VSCROLL, code, 0); });
        Use([=] { SendMessageW(session.client_window, WM_HSCROLL, code, 0); });
    }
    TapPanelButton();
    TapPanelButton();
    PostToMain(WM_HELP);
    Settle();
    if (ProgramRuns()) Use([] { WinMain(nullptr, nullptr, nullptr, SW_SHOW); });
}

void ResetAll() {
    InDialog(IDM_FONT, IDOK, [] {});  // saves, so that there is something to delete
    Command(IDM_RESET);
    Answer();
    Answer();
    Answer();
}

void Exit() {
    CloseAll();  // what the start may have to say
    Command(IDM_EXIT);
    Soon([] { return !ProgramRuns(); });
}

// ---------------------------------------------------------------- stylus and clipboard

static void Mouse(QEvent::Type type, QPoint at, bool down) {
    const Window* window = FindWindowRecord(session.client_window);
    if (!window || !window->widget) return;
    const bool move = type == QEvent::MouseMove;
    QMouseEvent event(type, at, window->widget->mapToGlobal(at),
                      move ? Qt::NoButton : Qt::LeftButton, down ? Qt::LeftButton : Qt::NoButton,
                      Qt::NoModifier);
    QApplication::sendEvent(window->widget, &event);
}

static void Drag() {
    Mouse(QEvent::MouseButtonPress, QPoint(5, 5), true);
    Mouse(QEvent::MouseMove, QPoint(90, 20), true);
    Mouse(QEvent::MouseButtonRelease, QPoint(90, 20), false);
}

static void DoubleTap() {
    Mouse(QEvent::MouseButtonPress, QPoint(9, 9), true);
    Mouse(QEvent::MouseButtonRelease, QPoint(9, 9), false);
    Mouse(QEvent::MouseButtonDblClick, QPoint(9, 9), true);
    Mouse(QEvent::MouseButtonRelease, QPoint(9, 9), false);
}

void UseClipboard() {
    LongHost host;
    OnWindowThread([] { session.settings.hotspot = 1; });
    if (!Open(host, telnet_kind, 0)) return CloseAll();
    Show(host, "\x1b[H12. an entry");
    ServeUntil(host, [] { return TerminalText().find("12. an entry") != std::string::npos; });
    Settle();
    Use([] { Drag(); });
    Command(IDM_COPY);
    Use([] { DoubleTap(); });
    Use([] { QApplication::clipboard()->setText("a paste\nof two lines"); });
    Command(IDM_PASTE);
    Serve(host, 30);
    Close();
    Soon([] { return !session.connected; });
}

// ---------------------------------------------------------------- dialogs

void UseFont() {
    InDialog(IDM_FONT, IDOK, [] {
        ClickEntry(IDC_FONTS, 0);
        ClickControl(IDC_FONT_BOLD);
    });
    InDialog(IDM_FONT, IDCANCEL, [] {});
}

void UseConnect() {
    OnWindowThread([] { lstrcpyW(session.settings.hist0a, u"an.earlier.host"); });
    InDialog(IDM_CONNECT, IDCANCEL, [] {
        TypeInto(IDC_HOST, "127.0.0.1");
        ClickControl(IDC_ADVANCED);
    });
    Command(IDM_CONNECT);
    Use([] { ClickControl(IDC_ADVANCED); });
    Use([] {
        TypeInto(IDC_PORT, QString::number(RefusingPort()));
        ClickControl(IDC_SSH);
        ClickControl(IDC_SSH1);
        ClickControl(IDC_SSH2);
        ClickControl(IDOK);
    });
    Use([] { TypeInto(IDC_HOST, "127.0.0.1"); });
    Use([] { ClickControl(IDOK); });
    Answer();
    CloseAll();
}

void UseAutoLogin() {
    InDialog(IDM_AUTO_LOGIN, IDOK, [] {
        TypeInto(IDC_SEAR1, "ogin");
        TypeInto(IDC_RESP1, "me");
    });
    InDialog(IDM_AUTO_LOGIN, IDCANCEL, [] {});
    InDialog(IDM_ABOUT, IDOK, [] {});
}

void UseSheet() {
    Command(IDM_PROPERTIES);
    for (const int id :
         {IDC_HIDESTATUS, IDC_FOLLOWCURSOR, IDC_BELL, IDC_NEGO, IDC_HOTSPOT, IDC_ALIVE})
        Use([=] { ClickControl(id); });
    Use([] {
        TypeInto(IDC_TERMTYPE, "vt100");
        TypeInto(IDC_RAS, "office");
    });
    Use([] { TurnPage(1); });
    Use([] { DoubleClickEntry(IDC_BAR1, 5); });
    Use([] { TurnPage(2); });
    Use([] { ClickEntry(IDC_KEYS, 3); });
    Use([] { ClickControl(IDC_CHANGE); });
    Use([] { TypeInto(IDC_KEY_TEXT, "\\033x"); });
    Use([] { ClickControl(IDOK); });
    Use([] { ClickControl(IDOK); });
    CloseAll();
    Command(IDM_PROPERTIES);
    Use([] { ClickControl(IDC_HIDESTATUS); });
    CloseAll();
}

void UseSignOn() {
    for (const int button : {IDOK, IDCANCEL}) {
        QMetaObject::invokeMethod(
            qApp, [] { AskSignOn(); }, Qt::QueuedConnection);
        Soon([] { return ShownDialog() != nullptr; });
        Use([] {
            TypeInto(IDC_SSH_U, "visitor");
            TypeInto(IDC_SSH_P, "warehouse7");
            ClickControl(IDC_SSH_DEF);
        });
        Use([=] { ClickControl(button); });
        CloseAll();
    }
}

void UseChooser() {
    for (const int id : {IDM_COLOR_BG, IDM_COLOR_CURSOR, IDM_COLOR_TEXT, IDM_COLOR_BOLD}) {
        Command(static_cast<WORD>(id));
        Soon([] { return ShownColorDialog() != nullptr; });
        Use([] {
            if (ShownColorDialog()) ShownColorDialog()->accept();
        });
        CloseAll();
    }
}
