// SPDX-License-Identifier: MIT
// Answers of dialogs and their controls to what programs ask seldom, and message boxes of all
// sizes.
#include <QApplication>
#include <QFontMetrics>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QStyle>
#include <QTimer>

#include "platform/qt/dialog/dialogs.h"
#include "platform/qt/window/device_screen.h"
#include "platform/qt/window/messages.h"
#include "tests/platform/test_dialogs.h"
#include "tests/qt_driver/driver.h"

static int g_sounds = 0;

void HeardBeep() asm("__wrap__ZN12QApplication4beepEv");
void HeardBeep() { ++g_sounds; }

namespace {

using DialogEdges = DialogTest;

// Shows a box, looks at it, and presses OK.
int WithBox(LPCWSTR text, UINT type, const std::function<void(QMessageBox&)>& look) {
    QTimer::singleShot(0, [&] {
        QMessageBox* box = ShownMessageBox();
        ASSERT_NE(nullptr, box);
        look(*box);
        box->button(QMessageBox::Ok)->click();
    });
    return MessageBoxW(nullptr, text, TEXT("Quill"), type);
}

// An owner makes the box a child of the device's screen.
int WithOwnedBox(HWND owner, LPCWSTR text, const std::function<void(QMessageBox&)>& look) {
    QTimer::singleShot(0, [&] {
        QMessageBox* box = ShownMessageBox();
        ASSERT_NE(nullptr, box);
        look(*box);
        box->button(QMessageBox::Ok)->click();
    });
    return MessageBoxW(owner, text, TEXT("Quill"), MB_OK);
}

}  // namespace

TEST_F(DialogEdges, LengthOfAnEntryThatIsNotThereIsAnError) {
    On(kExtended, [](HWND dialog) {
        TellText(dialog, kDropList, CB_ADDSTRING, 0, u"four");
        EXPECT_EQ(4, Tell(dialog, kDropList, CB_GETLBTEXTLEN, 0));
        EXPECT_EQ(CB_ERR, Tell(dialog, kDropList, CB_GETLBTEXTLEN, 1));
        EXPECT_EQ(CB_ERR, Tell(dialog, kDropList, CB_GETLBTEXTLEN, static_cast<WPARAM>(-1)));
    });
}

TEST_F(DialogEdges, DataOfAnEntryThatIsNotThereIsAnError) {
    On(kExtended, [](HWND dialog) {
        TellText(dialog, kSorted, LB_ADDSTRING, 0, u"one");
        EXPECT_EQ(LB_ERR, Tell(dialog, kSorted, LB_SETITEMDATA, 1, 7));
        EXPECT_EQ(LB_ERR, Tell(dialog, kSorted, LB_GETITEMDATA, 1));
        EXPECT_NE(LB_ERR, Tell(dialog, kSorted, LB_SETITEMDATA, 0, 7));
        EXPECT_EQ(7, Tell(dialog, kSorted, LB_GETITEMDATA, 0));
    });
}

TEST_F(DialogEdges, ALimitOfNothingOrOfTooMuchIsNone) {
    On(kEverything, [](HWND dialog) {
        auto* edit = qobject_cast<QLineEdit*>(DialogWidgetOf(kName));
        ASSERT_NE(nullptr, edit);
        const auto typed = [&](WPARAM limit) {
            edit->clear();
            Tell(dialog, kName, EM_LIMITTEXT, 3);
            Tell(dialog, kName, EM_LIMITTEXT, limit);
            edit->insert("abcdef");
            return TextOf(dialog, kName);
        };
        for (const WPARAM limit : {WPARAM{0}, WPARAM{0x7FFFFFFF}, WPARAM{0x80000001}})
            EXPECT_EQ(u"abcdef", typed(limit)) << limit;
        EXPECT_EQ(u"abcd", typed(4));
    });
}

TEST_F(DialogEdges, TheAnswerToTheFirstMessageIsTheProceduresOwn) {
    On(kEverything, [](HWND dialog) {
        g_act = nullptr;
        g_init_answer = 5;
        EXPECT_EQ(5, SendMessageW(dialog, WM_INITDIALOG, 0, 0));
    });
}

TEST_F(DialogEdges, OnlyADialogHasTheValuesOfADialog) {
    On(kEverything, [](HWND dialog) {
        const HWND control = GetDlgItem(dialog, kName);
        EXPECT_EQ(0, SetWindowLongW(dialog, DWLP_USER, 41));
        EXPECT_EQ(41, SetWindowLongW(dialog, DWLP_USER, 42));
        EXPECT_EQ(42, GetWindowLongW(dialog, DWLP_USER));
        for (const int index : {99, -4}) {
            EXPECT_EQ(0, SetWindowLongW(dialog, index, 7));
            EXPECT_EQ(0, SetWindowLongW(dialog, index, 7)) << "nothing was kept";
            EXPECT_EQ(0, GetWindowLongW(dialog, index));
        }
        for (const HWND other : {control, HWND{nullptr}}) {
            EXPECT_EQ(0, SetWindowLongW(other, DWLP_USER, 7));
            EXPECT_EQ(0, GetWindowLongW(other, DWLP_USER));
        }
        EXPECT_EQ(42, GetWindowLongW(dialog, DWLP_USER));
    });
}

TEST_F(DialogEdges, OnlyThePasswordIsHiddenWhileItIsTyped) {
    On(kEverything, [](HWND) {
        for (const int id : {kName, kPassword, kDigits}) {
            const auto* edit = qobject_cast<QLineEdit*>(DialogWidgetOf(id));
            ASSERT_NE(nullptr, edit);
            EXPECT_EQ(id == kPassword ? QLineEdit::Password : QLineEdit::Normal, edit->echoMode())
                << id;
        }
    });
}

TEST_F(DialogEdges, AGroupBoxIsAFrameWithATitleBehindItsControls) {
    constexpr int kCipher = 205;
    On(kEverything, [](HWND dialog) {
        const auto* box = qobject_cast<QGroupBox*>(DialogWidgetOf(kCipher));
        ASSERT_NE(nullptr, box);
        EXPECT_EQ("Cipher", box->title());
        const QWidget* button = DialogWidgetOf(kOne);
        const QPoint middle = button->geometry().center();
        EXPECT_TRUE(box->geometry().contains(middle));
        EXPECT_EQ(button, button->parentWidget()->childAt(middle));
        EXPECT_EQ(0, Tell(dialog, kCipher, BM_GETCHECK));
    });
}

// Four units across are the mean width of a letter, and eight down the height of the font. Other
// numbers of units are rounded to the nearest pixel, a half up.
TEST_F(DialogEdges, UnitsAreRoundedToTheNearestPixel) {
    On(kEverything, [](HWND dialog) {
        const QFontMetrics metrics(QApplication::font());
        const int letters =
            metrics.horizontalAdvance("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz");
        const int across = qRound(letters / 52.0), down = metrics.height();
        for (int units = 0; units < 200; ++units) {
            RECT rect = {units, units, 2 * units, 2 * units};
            ASSERT_TRUE(MapDialogRect(dialog, &rect));
            EXPECT_EQ(qRound(units * across / 4.0), rect.left) << units;
            EXPECT_EQ(qRound(units * down / 8.0), rect.top) << units;
            EXPECT_EQ(qRound(2 * units * across / 4.0), rect.right) << units;
            EXPECT_EQ(qRound(2 * units * down / 8.0), rect.bottom) << units;
        }
    });
}

// Otherwise the bar would cover a part of what the dialog shows.
TEST_F(DialogEdges, ADialogThatTheDeviceCutsOffIsLargerByItsScrollBar) {
    const QSize before = DeviceScreen()->size();
    const int bar = QApplication::style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    const auto shown = [](QSize device) {
        QSize size;
        DeviceScreen()->resize(device);
        On(kEverything, [&](HWND dialog) { size = FindWindowRecord(dialog)->widget->size(); });
        return size;
    };
    const QSize whole = shown(QSize(900, 700));
    EXPECT_EQ(QSize(whole.width() + bar, 100), shown(QSize(900, 100)));
    EXPECT_EQ(QSize(100, whole.height() + bar), shown(QSize(100, 700)));
    EXPECT_EQ(QSize(100, 100), shown(QSize(100, 100)));
    DeviceScreen()->resize(before);
}

TEST_F(DialogEdges, WithoutAControlThatIsEnabledThereIsNoTabStop) {
    On(kEverything, [](HWND dialog) {
        const Window& window = *FindWindowRecord(dialog);
        EXPECT_NE(nullptr, FirstTabStop(window));
        for (const Window* each : AllWindows())
            if (each->parent == dialog) EnableWindow(each->handle, FALSE);
        EXPECT_EQ(nullptr, FirstTabStop(window));
    });
}

// ---------------------------------------------------------------- message boxes

TEST(MessageBoxEdges, OkIsTheDefault) {
    for (const UINT type : {MB_OK, MB_OKCANCEL})
        WithBox(u"Really?", type, [](QMessageBox& box) {
            EXPECT_EQ(box.button(QMessageBox::Ok), box.defaultButton());
        });
}

TEST(MessageBoxEdges, WithoutTheDevicesWindowItIsInTheMiddleOfTheDesktop) {
    DeviceScreen()->hide();
    WithBox(u"first", MB_OK, [](QMessageBox& box) {
        const QRect room = QGuiApplication::primaryScreen()->availableGeometry();
        EXPECT_EQ(room.center(), box.geometry().center());
    });
    DeviceScreen()->show();
}

TEST_F(DialogEdges, OnlyABoxWiderThanTheDeviceIsMadeNarrow) {
    On(kEverything, [](HWND dialog) {
        WithOwnedBox(dialog, u"short",
                     [](QMessageBox& box) { EXPECT_LT(box.width(), DeviceScreen()->width()); });
        const QSize before = DeviceScreen()->size();
        DeviceScreen()->resize(200, 400);
        const Text wide =
            u"This text is wider than two hundred pixels of the device, as it has "
            u"many words.";
        WithOwnedBox(dialog, wide.c_str(), [](QMessageBox& box) {
            EXPECT_EQ(DeviceScreen()->width(), box.width());
            EXPECT_TRUE(box.findChild<QLabel*>("qt_msgbox_label")->wordWrap());
        });
        DeviceScreen()->resize(before);
    });
}

TEST(MessageBoxEdges, ABoxThatTheProgramsEndClosesIsNotAnsweredByOk) {
    QTimer::singleShot(0, [] { PostQuitMessage(3); });
    EXPECT_EQ(IDCANCEL, MessageBoxW(nullptr, TEXT("text"), TEXT("Quill"), MB_OK));
    MSG message;
    EXPECT_FALSE(GetMessageW(&message, nullptr, 0, 0));
}

TEST_F(DialogEdges, ClosingWithCancelSwitchedOffBeeps) {
    On(kEverything, [](HWND dialog) {
        EnableWindow(GetDlgItem(dialog, IDCANCEL), FALSE);
        const int before = BeepCount();
        SendMessageW(dialog, WM_CLOSE, 0, 0);
        EXPECT_EQ(before + 1, BeepCount());
    });
}

TEST_F(DialogEdges, ANewCaptionIsTheTitleOnTheDesktop) {
    On(kEverything, [](HWND dialog) {
        SetWindowTextW(dialog, TEXT("Renamed"));
        EXPECT_EQ("Renamed", DialogTitle());
    });
}

TEST(MessageBoxEdges, AStormOfBellsSoundsButNotForEach) {
    constexpr int kBells = 100000;
    for (int i = 0; i < kBells; ++i) MessageBeep(0);
    EXPECT_GT(g_sounds, 0);
    EXPECT_LT(g_sounds, kBells / 10);
}
