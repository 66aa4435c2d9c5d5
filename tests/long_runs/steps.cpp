// SPDX-License-Identifier: MIT
// The steps within a session.
#include "tests/long_runs/steps.h"

#include <gtest/gtest.h>
#include <QApplication>
#include <QClipboard>
#include <QColorDialog>
#include <QMouseEvent>
#include <QProcess>

#include "platform/qt/window/window.h"
#include "resources/resource_ids.h"
#include "session/session_state.h"
#include "tests/dialogs/dialog_person.h"
#include "tests/long_runs/checks.h"
#include "tests/qt_driver/driver.h"
#include "tests/support/person.h"

// ---------------------------------------------------------------- host

static void ShowSome(LongRun& run) {
    const int pieces = static_cast<int>(1 + Below(run.random, Below(run.random, 10) ? 40 : 600));
    Show(run.host, run.tame ? TameStream(run.random, pieces) : WildStream(run.random, pieces));
    Serve(run.host, static_cast<int>(Below(run.random, 3)));
}

static void Stir(LongRun& run) { run.host.kind->stir(run.host, Below(run.random, 1u << 16)); }

static void StirAmidText(LongRun& run) {
    ShowSome(run);
    Stir(run);
    ShowSome(run);
}

static void Listen(LongRun& run) { Serve(run.host, static_cast<int>(Below(run.random, 20))); }

// ---------------------------------------------------------------- keys, stylus, clipboard

static std::string Letters(LongRun& run, unsigned most) {
    std::string text;
    for (unsigned count = 1 + Below(run.random, most); count > 0; --count)
        text += static_cast<char>('a' + Below(run.random, 26));
    return text;
}

static void TypeSome(LongRun& run) { TypeText(Letters(run, 12)); }

static void PressSome(LongRun& run) {
    static const int kKeys[] = {Qt::Key_F1,   Qt::Key_F5,     Qt::Key_F12,      Qt::Key_Up,
                                Qt::Key_Left, Qt::Key_PageUp, Qt::Key_PageDown, Qt::Key_Return,
                                Qt::Key_Tab,  Qt::Key_Escape, Qt::Key_Delete,   Qt::Key_Backspace};
    for (unsigned count = 1 + Below(run.random, 5); count > 0; --count)
        PressKey(kKeys[Below(run.random, std::size(kKeys))]);
}

static void Paste(LongRun& run) {
    QString text;
    const unsigned lines = Below(run.random, 8) ? Below(run.random, 40) : Below(run.random, 2000);
    for (unsigned i = 0; i < lines; ++i) text += QString("line %1 of a paste\n").arg(i);
    OnWindowThread([&] { QApplication::clipboard()->setText(text); });
    PostToMain(WM_COMMAND, IDM_PASTE);
    if (Below(run.random, 2)) Serve(run.host, 5);  // or it stalls
}

static void SendMouse(QWidget* glass, QEvent::Type type, QPoint at, bool down) {
    const bool move = type == QEvent::MouseMove;
    QMouseEvent event(type, at, glass->mapToGlobal(at), move ? Qt::NoButton : Qt::LeftButton,
                      down ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(glass, &event);
}

static QPoint Anywhere(LongRun& run) {
    return QPoint(static_cast<int>(Below(run.random, 700)),
                  static_cast<int>(Below(run.random, 500)));
}

static void SelectAndCopy(LongRun& run) {
    const QPoint from = Anywhere(run), to = Anywhere(run);
    OnWindowThread([=] {
        QWidget* glass = FindWindowRecord(session.client_window)->widget;
        SendMouse(glass, QEvent::MouseButtonPress, from, true);
        SendMouse(glass, QEvent::MouseMove, to, true);
        SendMouse(glass, QEvent::MouseButtonRelease, to, false);
    });
    if (Below(run.random, 2)) PostToMain(WM_COMMAND, IDM_COPY);
}

static void DoubleTap(LongRun& run) {
    const QPoint at = Anywhere(run);
    OnWindowThread([=] {
        QWidget* glass = FindWindowRecord(session.client_window)->widget;
        for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonDblClick}) {
            SendMouse(glass, type, at, true);
            SendMouse(glass, QEvent::MouseButtonRelease, at, false);
        }
    });
}

// ---------------------------------------------------------------- the window

static void Resize(LongRun& run) {
    static const QSize kSizes[] = {{640, 480}, {240, 320}, {320, 240}, {800, 600}, {177, 93}};
    const QSize size = kSizes[Below(run.random, std::size(kSizes))];
    ResizeDevice(size.width(), size.height());
}

static void ChangeFontSize(LongRun& run) {
    PostToMain(WM_COMMAND, Below(run.random, 2) ? IDM_LARGER_FONT : IDM_SMALLER_FONT);
}

static void SwapToolbar(LongRun&) { PostToMain(WM_COMMAND, IDM_TOOLBAR_FIRST); }

static void Tick(LongRun&) { PostToMain(WM_TIMER, 1); }

static void StartAgain(LongRun& run) {
    QProcess second;
    second.setProcessChannelMode(QProcess::MergedChannels);
    const char* other = std::getenv("QUILL_SOAK_PROGRAM");
    second.start(other ? other : QUILL_PROGRAM, {"-platform", "offscreen", "--scale", "1", "--root",
                                                 QString::fromStdString(run.root)});
    EXPECT_TRUE(second.waitForFinished(600000)) << "a second start does not end";
    EXPECT_EQ(second.exitCode(), 0) << second.readAll().toStdString();
}

// ---------------------------------------------------------------- dialogs

static int OkOrCancel(LongRun& run) { return Below(run.random, 3) ? IDOK : IDCANCEL; }

static void Leave(LongRun& run, HWND dialog) {
    ShowSome(run);  // it opens and closes in the middle of the host's text
    ClickControl(dialog, OkOrCancel(run));
    Closed(dialog);
}

static void UseFontDialog(LongRun& run) {
    const HWND dialog = OpenDialog(IDM_FONT, "Font");
    const int faces = static_cast<int>(Lines(dialog, IDC_FONTS).size());
    if (faces > 0) ClickLine(dialog, IDC_FONTS, static_cast<int>(Below(run.random, 4)) % faces);
    if (Below(run.random, 2)) ClickControl(dialog, IDC_FONT_BOLD);
    if (Below(run.random, 2)) ClickControl(dialog, IDC_FONT_ITALIC);
    Leave(run, dialog);
}

static void UseKeyboardPage(LongRun& run, HWND sheet) {
    ClickTab(sheet, "Keyboard");
    const HWND page = PageOf(sheet);
    ClickLine(page, IDC_KEYS, static_cast<int>(Below(run.random, 20)));
    ClickControl(page, IDC_CHANGE);
    const HWND change = AwaitDialog("Change");
    TypeInto(change, IDC_KEY_TEXT, Below(run.random, 2) ? u"\\033[9~" : u"\\033OP\\377");
    Leave(run, change);
}

static void UseProperties(LongRun& run) {
    static const int kMarks[] = {IDC_HIDESTATUS, IDC_FOLLOWCURSOR, IDC_BELL,
                                 IDC_NEGO,       IDC_HOTSPOT,      IDC_ALIVE};
    const HWND sheet = OpenDialog(IDM_PROPERTIES, "Properties");
    ClickControl(PageOf(sheet), kMarks[Below(run.random, std::size(kMarks))]);
    TypeInto(PageOf(sheet), IDC_TERMTYPE, Below(run.random, 2) ? u"vt220" : u"vt100");
    if (Below(run.random, 2)) UseKeyboardPage(run, sheet);
    if (Below(run.random, 2)) ClickTab(sheet, "Toolbar");
    Leave(run, sheet);
}

static void UseAutoLogin(LongRun& run) {
    const HWND dialog = OpenDialog(IDM_AUTO_LOGIN, "Auto Login");
    TypeInto(dialog, IDC_SEAR1, Below(run.random, 2) ? u"login:" : u"words");
    TypeInto(dialog, IDC_RESP1, u"visitor\\015");
    Leave(run, dialog);
}

static void UseAbout(LongRun& run) {
    const HWND dialog = OpenDialog(IDM_ABOUT, "About TELNET");
    ShowSome(run);
    ClickControl(dialog, IDOK);
    Closed(dialog);
}

static void UseChooser(LongRun& run) {
    PostToMain(WM_COMMAND, IDM_COLOR_BG + Below(run.random, 4));
    const bool came = Eventually([] {
        const QColorDialog* chooser = ShownColorDialog();
        return chooser && chooser->isVisible() && QApplication::activeWindow() == chooser->window();
    });
    EXPECT_TRUE(came) << "the chooser did not come";
    ShowSome(run);
    const bool taken = Below(run.random, 2);
    OnWindowThread([=] { taken ? ShownColorDialog()->accept() : ShownColorDialog()->reject(); });
    EXPECT_TRUE(Eventually([] { return !QApplication::activeModalWidget(); })) << AwaitBox(1);
}

// ---------------------------------------------------------------- the table

// clang-format off
static const Step kSteps[] = {
    {"the host shows text",          100, ShowSome},
    {"the host stirs",                25, Stir},
    {"the host stirs amid text",      25, StirAmidText},
    {"the host listens",              20, Listen},
    {"typing",                        40, TypeSome},
    {"pressing keys",                 30, PressSome},
    {"a paste",                       10, Paste},
    {"a selection",                   12, SelectAndCopy},
    {"a double tap",                  12, DoubleTap},
    {"another size of the device",    12, Resize},
    {"another size of the font",      12, ChangeFontSize},
    {"another toolbar",               10, SwapToolbar},
    {"a tick of the timer",           12, Tick},
    {"a second start",                 1, StartAgain},
    {"the font dialog",                4, UseFontDialog},
    {"the properties",                 4, UseProperties},
    {"the automatic login's dialog",   4, UseAutoLogin},
    {"about",                          3, UseAbout},
    {"the chooser of colours",         4, UseChooser},
};
// clang-format on

const Step& ChooseStep(LongRun& run) {
    unsigned sum = 0;
    for (const Step& step : kSteps) sum += step.weight;
    unsigned at = Below(run.random, sum);
    const Step* step = kSteps;
    for (; at >= step->weight; ++step) at -= step->weight;
    return *step;
}

void Tell(LongRun& run, const char* doing) {
    run.doing = doing;
    ++run.steps;
}
