// SPDX-License-Identifier: MIT
// Dialogs on the desktop: the keyboard and the mouse of a person, what a screen reader gets,
// small screens.
#include <gtest/gtest.h>
#include <QAbstractButton>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QTabBar>
#include <QTabWidget>
#include <QTest>
#include <QTimer>

#include "platform/qt/dialog/dialogs.h"
#include "platform/qt/window/device_screen.h"
#include "platform/qt/window/messages.h"
#include "platform/qt/window/window.h"
#include "tests/qt_driver/driver.h"

namespace {

constexpr int kEverything = 100, kExtended = 101, kFirstPage = 102, kSecondPage = 103, kLarge = 104;
constexpr int kName = 200, kPassword = 201, kHost = 202, kPlain = 203, kAutomatic = 204,
              kGroup = 205, kOne = 206, kTwo = 207, kThree = 208, kLeft = 209, kRight = 210,
              kFont = 211, kHint = 212, kDigits = 213, kOff = 214, kAdvanced = 215;
constexpr int kChange = 401, kBell = 402, kNear = 500, kFar = 501;

struct Notice {
    int id;
    int code;
    bool operator==(const Notice&) const = default;
};

std::vector<Notice> g_notices;
std::function<void(HWND dialog)> g_on_init, g_on_advanced;

INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wparam, LPARAM) {
    if (message == WM_INITDIALOG) {
        if (g_on_init) g_on_init(dialog);
        return TRUE;
    }
    if (message != WM_COMMAND) return FALSE;
    const int id = LOWORD(wparam);
    g_notices.push_back({id, HIWORD(wparam)});
    if (id == IDOK || id == IDCANCEL) EndDialog(dialog, id);
    if (id == kAdvanced && g_on_advanced) g_on_advanced(dialog);
    return TRUE;
}

INT_PTR Show(int id, HWND owner = nullptr) {
    return DialogBoxParamW(nullptr, MAKEINTRESOURCE(id), owner, Procedure, 0);
}

// Handles queued messages and events while a dialog is open.
void Settle(int milliseconds = 20) {
    bool passed = false;
    QTimer::singleShot(milliseconds, [&] { passed = true; });
    RunModalLoop([&] { return passed; });
}

// Closes a dialog that the test has left open; its result is then 99.
void EndWhatIsOpen() {
    const Window* window = FindWindowRecord(ShownDialog());
    if (window && !window->dialog->ended) EndDialog(window->handle, 99);
}

INT_PTR On(int id, const std::function<void()>& person) {
    OnNextDialog([=] {
        person();
        EndWhatIsOpen();
    });
    const INT_PTR result = Show(id);
    EXPECT_FALSE(DialogsAwaited());
    return result;
}

int Focused() {
    const HWND focus = GetFocus();
    return focus ? GetDlgCtrlID(focus) : 0;
}

bool Heard(int id, int code) {
    return std::find(g_notices.begin(), g_notices.end(), Notice{id, code}) != g_notices.end();
}

bool Press(int key, int modifiers = 0) {
    const bool pressed = PressInDialog(key, modifiers);
    Settle();
    return pressed;
}

// Presses Alt and the letter, a shortcut of the desktop. A button takes some time to go down and
// up.
void PressMnemonic(char letter) {
    QWidget* dialog = FindWindowRecord(ShownDialog())->widget;
    QTest::keyClick(dialog, letter, Qt::AltModifier);
    Settle(200);
}

void Fill(HWND dialog, int id, UINT message, std::initializer_list<LPCWSTR> texts) {
    for (LPCWSTR text : texts)
        SendDlgItemMessageW(dialog, id, message, 0, reinterpret_cast<LPARAM>(text));
}

class DialogSlice : public testing::Test {
  protected:
    void SetUp() override { Forget(); }
    void TearDown() override {
        Forget();
        ForgetDialogs();
        DeviceScreen()->resize(640, 480);
    }
    void Forget() {
        g_notices.clear();
        g_on_init = g_on_advanced = nullptr;
    }
};

}  // namespace

TEST_F(DialogSlice, EnterPressesTheDefaultButton) {
    EXPECT_EQ(IDOK, On(kEverything, [] { Press(Qt::Key_Return); }));
}

TEST_F(DialogSlice, EnterWithAModifierPressesNothing) {
    for (const int modifier : {int{Qt::ControlModifier}, int{Qt::ShiftModifier}})
        EXPECT_EQ(99, On(kEverything, [=] {
                      DialogWidgetOf(kPlain)->setFocus();
                      Press(Qt::Key_Return, modifier);
                  }));
}

TEST_F(DialogSlice, EnterPressesTheButtonWithTheFocus) {
    g_on_advanced = [](HWND dialog) { EndDialog(dialog, 7); };
    EXPECT_EQ(7, On(kEverything, [] {
                  DialogWidgetOf(kAdvanced)->setFocus();
                  Press(Qt::Key_Enter, int{Qt::KeypadModifier});
              }));
}

TEST_F(DialogSlice, EnterWithoutADefaultButtonIsOk) {
    EXPECT_EQ(IDOK, On(kExtended, [] { Press(Qt::Key_Return); }));
}

TEST_F(DialogSlice, OnlyAComboOfTheDropDownStyleHasAnEdit) {
    constexpr int kDropList = 300;
    On(kExtended, [] {
        EXPECT_FALSE(qobject_cast<QComboBox*>(DialogWidgetOf(kDropList))->isEditable());
        Press(Qt::Key_Escape);
    });
    On(kEverything, [] {
        EXPECT_TRUE(qobject_cast<QComboBox*>(DialogWidgetOf(kHost))->isEditable());
        Press(Qt::Key_Escape);
    });
}

TEST_F(DialogSlice, EnterInListComboAndCheckBoxIsOkToo) {
    for (const int id : {kPassword, kHost, kAutomatic, kOne, kFont}) {
        EXPECT_EQ(IDOK, On(kEverything,
                           [id] {
                               SendDlgItemMessageW(ShownDialog(), kFont, LB_ADDSTRING, 0,
                                                   reinterpret_cast<LPARAM>(u"entry"));
                               DialogWidgetOf(id)->setFocus();
                               Press(Qt::Key_Return);
                           }))
            << id;
    }
}

TEST_F(DialogSlice, EscAndTheCloseButtonCancel) {
    EXPECT_EQ(IDCANCEL, On(kEverything, [] { Press(Qt::Key_Escape); }));
    EXPECT_EQ(IDCANCEL, On(kEverything, [] {
                  FindWindowRecord(ShownDialog())->widget->close();
                  Settle();
              }));
}

TEST_F(DialogSlice, TabGoesInTheTemplatesOrder) {
    On(kEverything, [] {
        std::vector<int> order;
        for (int i = 0; i < 12; i++) {
            order.push_back(Focused());
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        }
        EXPECT_EQ((std::vector<int>{kName, kPassword, kHost, kPlain, kAutomatic, kOne, kLeft, kFont,
                                    kDigits, IDOK, IDCANCEL, kAdvanced}),
                  order);
        EXPECT_EQ(kName, Focused());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab, Qt::ShiftModifier);
        EXPECT_EQ(kAdvanced, Focused());
    });
}

TEST_F(DialogSlice, TabEntersAGroupAtItsMark) {
    g_on_init = [](HWND dialog) { CheckRadioButton(dialog, kOne, kThree, kThree); };
    On(kEverything, [] {
        DialogWidgetOf(kAutomatic)->setFocus();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        EXPECT_EQ(kThree, Focused());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        EXPECT_EQ(kLeft, Focused());
    });
}

TEST_F(DialogSlice, ArrowsMoveTheMarkWithinTheGroup) {
    g_on_init = [](HWND dialog) { CheckRadioButton(dialog, kOne, kThree, kTwo); };
    On(kEverything, [] {
        DialogWidgetOf(kTwo)->setFocus();
        Press(Qt::Key_Right);
        EXPECT_TRUE(ControlChecked(kThree));
        EXPECT_FALSE(ControlChecked(kTwo));
        EXPECT_TRUE(Heard(kThree, BN_CLICKED));
        EXPECT_FALSE(ControlChecked(kLeft) || ControlChecked(kRight));
    });
}

TEST_F(DialogSlice, AccessLettersFocusTheirControls) {
    On(kEverything, [] {
        DialogWidgetOf(kFont)->setFocus();
        PressMnemonic('n');
        EXPECT_EQ(kName, Focused());
        PressMnemonic('a');
        EXPECT_TRUE(ControlChecked(kAutomatic));
        PressMnemonic('l');
        EXPECT_FALSE(ControlChecked(kPlain));
        EXPECT_TRUE(Heard(kPlain, BN_CLICKED));
        PressMnemonic('d');
        EXPECT_TRUE(Heard(kAdvanced, BN_CLICKED));
    });
}

TEST_F(DialogSlice, ControlsAreNamedByTheirLabels) {
    On(kEverything, [] {
        EXPECT_EQ("Name", DialogWidgetOf(kName)->accessibleName());
        EXPECT_EQ("Password", DialogWidgetOf(kPassword)->accessibleName());
        EXPECT_EQ("Host", DialogWidgetOf(kHost)->accessibleName());
        EXPECT_EQ("Font", DialogWidgetOf(kFont)->accessibleName());
    });
}

TEST_F(DialogSlice, LabelsShowAmpersandsAndNameTheirControls) {
    On(kEverything, [] {
        const auto* hint = qobject_cast<QLabel*>(DialogWidgetOf(kHint));
        ASSERT_NE(nullptr, hint);
        EXPECT_EQ("\\012 = CR && LF", hint->text().replace("&&&&", "&&"));
        EXPECT_EQ(kDigits, GetDlgCtrlID(GetDlgItem(ShownDialog(), kDigits)));
        const QList<QLabel*> labels =
            FindWindowRecord(ShownDialog())->widget->findChildren<QLabel*>();
        for (const QLabel* label : labels) {
            if (label->text() != "&Name:") continue;
            EXPECT_EQ(DialogWidgetOf(kName), label->buddy());
        }
    });
}

TEST_F(DialogSlice, PasswordIsHidden) {
    On(kEverything, [] {
        const auto* edit = qobject_cast<QLineEdit*>(DialogWidgetOf(kPassword));
        EXPECT_TRUE(TypeInto(kPassword, "secret"));
        EXPECT_EQ("secret", ControlText(kPassword));
        EXPECT_EQ(QLineEdit::Password, edit->echoMode());
        EXPECT_FALSE(edit->displayText().contains('s'));
    });
}

TEST_F(DialogSlice, TypingEndsAtTheLimit) {
    g_on_init = [](HWND dialog) {
        SendDlgItemMessageW(dialog, kName, EM_LIMITTEXT, 3, 0);
        SendDlgItemMessageW(dialog, kHost, CB_LIMITTEXT, 4, 0);
        SetDlgItemTextW(dialog, kPassword, u"abcdef");
        SendDlgItemMessageW(dialog, kPassword, EM_LIMITTEXT, 2, 0);
    };
    On(kEverything, [] {
        TypeInto(kName, "abcdef");
        EXPECT_EQ("abc", ControlText(kName));
        TypeInto(kHost, "abcdef");
        EXPECT_EQ("abcd", ControlText(kHost));
        Settle();
        EXPECT_TRUE(Heard(kName, EN_CHANGE));
        EXPECT_TRUE(Heard(kHost, CBN_EDITCHANGE));
        DialogWidgetOf(kPassword)->setFocus();
        Press(Qt::Key_End);
        Press(Qt::Key_Backspace);
        PressInDialog(Qt::Key_X, 0, "x");
        EXPECT_EQ("abcde", ControlText(kPassword));
    });
}

TEST_F(DialogSlice, DigitsOnlyWhereTheTemplateSaysSo) {
    On(kEverything, [] {
        TypeInto(kDigits, "1a2b");
        EXPECT_EQ("12", ControlText(kDigits));
    });
}

TEST_F(DialogSlice, TextOutsideTheCodePageIsTyped) {
    const QString text = QString::fromUtf16(u"\u05D0\u20AC\xD83D\xDE00");
    On(kEverything, [=] {
        TypeInto(kName, text);
        EXPECT_EQ(text, ControlText(kName));
    });
}

TEST_F(DialogSlice, ClicksReachTheProcedureInOrder) {
    On(kEverything, [] {
        EXPECT_TRUE(ClickControl(kPlain));
        EXPECT_TRUE(ClickControl(kAutomatic));
        Settle();
        EXPECT_FALSE(ControlChecked(kPlain));
        EXPECT_TRUE(ControlChecked(kAutomatic));
        EXPECT_EQ((std::vector<Notice>{{kPlain, BN_CLICKED}, {kAutomatic, BN_CLICKED}}), g_notices);
        EXPECT_FALSE(ClickControl(kOff));
        EXPECT_FALSE(ClickControl(12345));
    });
}

TEST_F(DialogSlice, GroupBoxLetsClicksThrough) {
    On(kEverything, [] {
        ClickControl(kTwo);
        EXPECT_TRUE(ControlChecked(kTwo));
        const QWidget* two = DialogWidgetOf(kTwo);
        EXPECT_EQ(two, two->parentWidget()->childAt(two->geometry().center()));
        EXPECT_TRUE(DialogWidgetOf(kGroup)->geometry().contains(two->geometry().center()));
    });
}

TEST_F(DialogSlice, ListNotifiesOfSelectionAndDoubleTap) {
    g_on_init = [](HWND dialog) { Fill(dialog, kFont, LB_ADDSTRING, {u"one", u"two", u"three"}); };
    On(kEverything, [] {
        ClickEntry(kFont, 1);
        Settle();
        EXPECT_EQ((std::vector<Notice>{{kFont, LBN_SELCHANGE}}), g_notices);
        EXPECT_EQ(1, SendDlgItemMessageW(ShownDialog(), kFont, LB_GETCURSEL, 0, 0));
        DoubleClickEntry(kFont, 2);
        Settle();
        EXPECT_TRUE(Heard(kFont, LBN_DBLCLK));
        EXPECT_EQ(2, SendDlgItemMessageW(ShownDialog(), kFont, LB_GETCURSEL, 0, 0));
    });
}

TEST_F(DialogSlice, ListWrapsWideEntriesOnceItHasAnExtent) {
    g_on_init = [](HWND dialog) {
        Fill(dialog, kFont, LB_ADDSTRING, {u"an entry that is wider than the list by far"});
    };
    On(kEverything, [] {
        const auto* list = qobject_cast<QListWidget*>(DialogWidgetOf(kFont));
        Settle();
        const int line = list->visualItemRect(list->item(0)).height();
        SendDlgItemMessageW(ShownDialog(), kFont, LB_SETHORIZONTALEXTENT, 400, 0);
        Settle();
        EXPECT_FALSE(list->horizontalScrollBar()->isVisible());
        EXPECT_GE(list->visualItemRect(list->item(0)).height(), 3 * line);
        EXPECT_LE(list->visualItemRect(list->item(0)).width(), list->viewport()->width());
    });
}

TEST_F(DialogSlice, ListCanBeUsedWithOnlyTheKeyboard) {
    g_on_init = [](HWND dialog) {
        Fill(dialog, kFont, LB_ADDSTRING, {u"one", u"two", u"three"});
        SendDlgItemMessageW(dialog, kFont, LB_SETCURSEL, 0, 0);
    };
    On(kEverything, [] {
        DialogWidgetOf(kFont)->setFocus();
        Press(Qt::Key_Down);
        EXPECT_EQ(1, SendDlgItemMessageW(ShownDialog(), kFont, LB_GETCURSEL, 0, 0));
        Press(Qt::Key_End);
        EXPECT_EQ(2, SendDlgItemMessageW(ShownDialog(), kFont, LB_GETCURSEL, 0, 0));
        Press(Qt::Key_Space, int{Qt::ControlModifier});
        EXPECT_FALSE(Heard(kFont, LBN_DBLCLK));
        Press(Qt::Key_Space);
        EXPECT_TRUE(Heard(kFont, LBN_DBLCLK));
    });
}

TEST_F(DialogSlice, ComboKeepsItsChoiceWhileEntriesComeAndGo) {
    On(kEverything, [] {
        const HWND dialog = ShownDialog();
        const auto tell = [=](UINT message, WPARAM row, const char16_t* text) {
            return SendDlgItemMessageW(dialog, kHost, message, row, reinterpret_cast<LPARAM>(text));
        };
        tell(CB_ADDSTRING, 0, u"one");
        tell(CB_ADDSTRING, 0, u"two");
        tell(CB_SETCURSEL, 0, nullptr);
        tell(CB_INSERTSTRING, 0, u"zero");
        EXPECT_EQ(1, tell(CB_GETCURSEL, 0, nullptr));
        EXPECT_EQ("one", ControlText(kHost));
        tell(CB_INSERTSTRING, 2, u"one and a half");
        EXPECT_EQ(1, tell(CB_GETCURSEL, 0, nullptr));
        tell(CB_DELETESTRING, 0, nullptr);
        EXPECT_EQ(0, tell(CB_GETCURSEL, 0, nullptr));
        EXPECT_EQ("one", ControlText(kHost));
        Press(Qt::Key_Return);
    });
}

TEST_F(DialogSlice, ComboIsChosenFromAndTypedOver) {
    g_on_init = [](HWND dialog) { Fill(dialog, kHost, CB_ADDSTRING, {u"alpha", u"beta"}); };
    On(kEverything, [] {
        EXPECT_EQ((QStringList{"alpha", "beta"}), ControlEntries(kHost));
        ClickEntry(kHost, 1);
        Settle();
        EXPECT_EQ("beta", ControlText(kHost));
        EXPECT_TRUE(Heard(kHost, CBN_SELCHANGE));
        TypeInto(kHost, "al");
        EXPECT_EQ("al", ControlText(kHost));  // no automatic completion
        EXPECT_EQ(CB_ERR, SendDlgItemMessageW(ShownDialog(), kHost, CB_GETCURSEL, 0, 0));
        Press(Qt::Key_Down);
        EXPECT_EQ(2, SendDlgItemMessageW(ShownDialog(), kHost, CB_GETCOUNT, 0, 0));
    });
}

TEST_F(DialogSlice, InnerDialogIsOnTopUntilItCloses) {
    g_on_advanced = [](HWND outer) { EXPECT_EQ(IDCANCEL, Show(kExtended, outer)); };
    EXPECT_EQ(IDOK, On(kEverything, [] {
                  const HWND outer = ShownDialog();
                  OnNextDialog([outer] {
                      EXPECT_NE(outer, ShownDialog());
                      EXPECT_EQ("Extended", DialogTitle());
                      Press(Qt::Key_Escape);
                  });
                  const int focused = Focused();
                  ClickControl(kAdvanced);
                  Settle();
                  EXPECT_EQ(outer, ShownDialog());
                  Settle();
                  EXPECT_EQ(outer, GetActiveWindow());
                  EXPECT_EQ(focused, Focused()) << "a tap on a push button takes it along";
                  ClickControl(IDOK);
                  Settle();
              }));
}

// The end of the loop may come while the loop only checks the queue.
TEST_F(DialogSlice, ModalLoopSeesItsEndAtOnce) {
    bool done = false, late = false;
    QTimer rescue;
    rescue.setSingleShot(true);
    QObject::connect(&rescue, &QTimer::timeout, [&] { late = true; });
    rescue.start(3000);
    QTimer::singleShot(0, [&] { done = true; });
    RunModalLoop([&] { return done; });
    EXPECT_FALSE(late);
    QTimer::singleShot(0, [] { PostQuitMessage(5); });
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0)) DispatchMessageW(&message);
    EXPECT_FALSE(late);
    EXPECT_EQ(5u, message.wParam);
}

TEST_F(DialogSlice, MessageBoxOpensOverTheDialog) {
    On(kEverything, [] {
        QTimer::singleShot(0, [] {
            ASSERT_NE(nullptr, ShownMessageBox());
            EXPECT_EQ(FindWindowRecord(ShownDialog())->widget, ShownMessageBox()->parentWidget());
            ShownMessageBox()->button(QMessageBox::Ok)->click();
        });
        EXPECT_EQ(IDOK, MessageBoxW(ShownDialog(), u"text", u"caption", MB_OK));
    });
}

TEST_F(DialogSlice, LargerThanTheScreenItIsScrolled) {
    DeviceScreen()->resize(240, 320);
    On(kLarge, [] {
        QWidget* dialog = FindWindowRecord(ShownDialog())->widget;
        EXPECT_LE(dialog->width(), 240);
        EXPECT_LE(dialog->height(), 320);
        QWidget* far_away = DialogWidgetOf(kFar);
        const auto in_sight = [&] {
            return QRect(QPoint(), dialog->size())
                .contains(QRect(far_away->mapTo(dialog, QPoint()), far_away->size()));
        };
        EXPECT_FALSE(in_sight());
        DialogWidgetOf(kNear)->setFocus();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        EXPECT_EQ(kFar, Focused());
        EXPECT_TRUE(in_sight());
        SetFocus(GetDlgItem(ShownDialog(), kNear));
        EXPECT_FALSE(in_sight());
        SetFocus(GetDlgItem(ShownDialog(), kFar));
        EXPECT_TRUE(in_sight());
    });
}

TEST_F(DialogSlice, OnAWideScreenNothingIsScrolled) {
    On(kEverything, [] {
        const QWidget* dialog = FindWindowRecord(ShownDialog())->widget;
        const auto* area = dialog->findChild<QScrollArea*>();
        EXPECT_EQ(area->widget()->size(), dialog->size());
        EXPECT_EQ(area->viewport()->size(), dialog->size());
    });
}

// ---------------------------------------------------------------- sheets

namespace {

std::vector<UINT> g_heard[2];

INT_PTR CALLBACK PageProcedure(HWND page, UINT message, WPARAM wparam, LPARAM lparam) {
    const int index = GetDlgItem(page, kBell) ? 1 : 0;
    if (message == WM_NOTIFY)
        g_heard[index].push_back(reinterpret_cast<const NMHDR*>(lparam)->code);
    if (message == WM_COMMAND) g_notices.push_back({LOWORD(wparam), HIWORD(wparam)});
    if (message == WM_COMMAND && LOWORD(wparam) == kChange) Show(kExtended, page);
    return message == WM_INITDIALOG;
}

INT_PTR ShowSheet(const std::function<void()>& person, int second = kSecondPage) {
    g_heard[0].clear();
    g_heard[1].clear();
    PROPSHEETPAGEW pages[2] = {};
    for (PROPSHEETPAGEW& page : pages) {
        page.dwSize = sizeof(page);
        page.pfnDlgProc = PageProcedure;
    }
    pages[0].pszTemplate = MAKEINTRESOURCE(kFirstPage);
    pages[1].pszTemplate = MAKEINTRESOURCE(second);
    pages[1].dwFlags = PSP_USETITLE;
    pages[1].pszTitle = u"Other";
    PROPSHEETHEADERW header = {};
    header.dwSize = sizeof(header);
    header.dwFlags = PSH_PROPSHEETPAGE | PSH_NOAPPLYNOW;
    header.pszCaption = u"Properties";
    header.nPages = 2;
    header.ppsp = pages;
    OnNextDialog([=] {
        person();
        EndWhatIsOpen();
    });
    const INT_PTR result = PropertySheetW(&header);
    ForgetDialogs();
    return result;
}

QTabWidget* Tabs() { return FindWindowRecord(ShownDialog())->widget->findChild<QTabWidget*>(); }

}  // namespace

TEST_F(DialogSlice, TabsAreNamedByTemplateOrTitle) {
    EXPECT_EQ(1, ShowSheet([] {
                  EXPECT_EQ("Properties", DialogTitle());
                  EXPECT_EQ("First", Tabs()->tabText(0));
                  EXPECT_EQ("Other", Tabs()->tabText(1));
                  ClickControl(IDOK);
                  Settle();
              }));
}

TEST_F(DialogSlice, TabsSwitchPagesFromTheMessageQueue) {
    EXPECT_EQ(0, ShowSheet([] {
                  TurnPage(1);
                  EXPECT_EQ(0, Tabs()->currentIndex());
                  Settle();
                  EXPECT_EQ(1, Tabs()->currentIndex());
                  EXPECT_TRUE(ClickControl(kBell));
                  Settle();
                  EXPECT_TRUE(Heard(kBell, BN_CLICKED));
                  Press(Qt::Key_Escape);
              }));
    EXPECT_EQ((std::vector<UINT>{PSN_SETACTIVE, PSN_KILLACTIVE, PSN_RESET}), g_heard[0]);
    EXPECT_EQ((std::vector<UINT>{PSN_SETACTIVE, PSN_QUERYCANCEL, PSN_RESET}), g_heard[1]);
}

TEST_F(DialogSlice, SheetCanBeUsedWithOnlyTheKeyboard) {
    EXPECT_EQ(1, ShowSheet([] {
                  EXPECT_EQ(400, Focused());
                  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab, Qt::ControlModifier);
                  Settle();
                  EXPECT_EQ(1, Tabs()->currentIndex());
                  Press(Qt::Key_Return);
              }));
}

TEST_F(DialogSlice, PageOpensADialogOverItsSheet) {
    EXPECT_EQ(1, ShowSheet([] {
                  const HWND sheet = ShownDialog();
                  const auto cancel_inner = [sheet] {
                      EXPECT_EQ(sheet, GetParent(ShownDialog()));
                      Press(Qt::Key_Escape);
                  };
                  OnNextDialog(cancel_inner);
                  ClickControl(kChange);
                  Settle();
                  EXPECT_EQ(sheet, ShownDialog());
                  OnNextDialog(cancel_inner);
                  DialogWidgetOf(kChange)->setFocus(Qt::TabFocusReason);
                  Press(Qt::Key_Return);
                  EXPECT_FALSE(DialogsAwaited());
                  EXPECT_EQ(sheet, ShownDialog());
                  ClickControl(IDOK);
                  Settle();
              }));
}

TEST_F(DialogSlice, SheetFitsTheScreen) {
    DeviceScreen()->resize(120, 90);
    ShowSheet([] {
        const QWidget* sheet = FindWindowRecord(ShownDialog())->widget;
        EXPECT_LE(sheet->width(), 120);
        EXPECT_LE(sheet->height(), 90);
        EXPECT_TRUE(sheet->rect().contains(
            DialogWidgetOf(IDOK)->mapTo(sheet, DialogWidgetOf(IDOK)->rect().bottomRight())));
    });
}

TEST_F(DialogSlice, SheetWithAMissingPageIsRefused) {
    EXPECT_EQ(-1, ShowSheet([] {}, 199));
}

TEST_F(DialogSlice, SheetWhosePagesAreHandlesIsRefused) {
    PROPSHEETPAGEW page = {};
    PROPSHEETHEADERW header = {};
    header.dwSize = sizeof(header);
    header.nPages = 1;
    header.ppsp = &page;
    EXPECT_EQ(-1, PropertySheetW(&header));
}

// ---------------------------------------------------------------- the entries of lists

TEST(ListEntries, SearchBeginsBehindTheGivenRowAndGoesOnAtTheTop) {
    const QStringList entries = {"one", "Two", "twelve", "two"};
    const struct {
        int after, head, whole;  // what is found for "TW", and for "two"
    } kRows[] = {{-1, 1, 1}, {0, 1, 1}, {1, 2, 3}, {2, 3, 3},
                 {3, 1, 1},  {4, 1, 1}, {9, 1, 1}, {-7, 1, 1}};
    for (const auto& row : kRows) {
        EXPECT_EQ(row.head, FindEntry(entries, row.after, "TW", false)) << row.after;
        EXPECT_EQ(row.whole, FindEntry(entries, row.after, "two", true)) << row.after;
        EXPECT_EQ(LB_ERR, FindEntry(entries, row.after, "twice", false)) << row.after;
        EXPECT_EQ(LB_ERR, FindEntry(entries, row.after, "tw", true)) << row.after;
    }
    EXPECT_EQ(LB_ERR, FindEntry({}, -1, "one", false));
}

TEST(ListEntries, SortedPlaceIsBehindEqualEntriesWhateverTheirCase) {
    const QStringList entries = {"Apple", "fig", "Fig", "pear"};
    EXPECT_EQ(0, SortedPlace(entries, "aaa"));
    EXPECT_EQ(1, SortedPlace(entries, "apple"));
    EXPECT_EQ(3, SortedPlace(entries, "FIG"));
    EXPECT_EQ(4, SortedPlace(entries, "zebra"));
    EXPECT_EQ(0, SortedPlace({}, "any"));
}

TEST(ListEntries, PlaceOfARowIsTheRowUpToTheEndOrAnError) {
    for (int row = 0; row <= 3; row++) EXPECT_EQ(row, PlaceOf(static_cast<WPARAM>(row), 3));
    EXPECT_EQ(3, PlaceOf(static_cast<WPARAM>(-1), 3));
    for (const int row : {4, 5, 1000, -2, -100})
        EXPECT_EQ(LB_ERR, PlaceOf(static_cast<WPARAM>(row), 3)) << row;
}

TEST(ListEntries, TextIsCopiedAsFarAsItFits) {
    WCHAR room[5] = {9, 9, 9, 9, 9};
    const auto buffer = reinterpret_cast<LPARAM>(room);
    EXPECT_EQ(0, CopyText("abc", 0, buffer));
    EXPECT_EQ(0, CopyText("abc", 5, 0));
    EXPECT_EQ(9, room[0]);
    EXPECT_EQ(0, CopyText("abc", 1, buffer));
    EXPECT_EQ(std::u16string(u"\0\x9", 2), std::u16string(room, 2));
    EXPECT_EQ(2, CopyText("abc", 3, buffer));
    EXPECT_EQ(std::u16string(u"ab\0\x9", 4), std::u16string(room, 4));
    EXPECT_EQ(3, CopyText("abc", 4, buffer));
    EXPECT_EQ(std::u16string(u"abc\0\x9", 5), std::u16string(room, 5));
    EXPECT_EQ(3, CopyText("abc", 5, buffer));
}

// ---------------------------------------------------------------- colours

TEST_F(DialogSlice, ChooserGivesTheKeysBackToTheDialogBelow) {
    g_on_advanced = [](HWND) {
        const auto choose =
            reinterpret_cast<BOOL(WINAPI*)(CHOOSECOLORW*)>(reinterpret_cast<void (*)()>(
                GetProcAddressW(LoadLibraryW(u"commdlg.dll"), u"ChooseColor")));
        COLORREF custom[16] = {};
        CHOOSECOLORW request = {};
        request.lStructSize = sizeof(request);
        request.lpCustColors = custom;
        OnNextDialog([] { ShownColorDialog()->accept(); });
        EXPECT_TRUE(choose(&request));
    };
    EXPECT_EQ(99, On(kEverything, [] {
                  ClickControl(kAdvanced);
                  for (int i = 0; i < 500 && !QApplication::activeWindow(); ++i) Settle(10);
                  ASSERT_NE(nullptr, ShownDialog());
                  EXPECT_EQ(FindWindowRecord(ShownDialog())->widget->window(),
                            QApplication::activeWindow());
              }));
}
