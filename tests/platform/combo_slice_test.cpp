// SPDX-License-Identifier: MIT
// Messages of combo boxes that this program's dialogs do without.
#include <QComboBox>
#include <QLineEdit>

#include "platform/qt/window/window.h"
#include "tests/platform/test_dialogs.h"

namespace {

using Combos = DialogTest;

}  // namespace

static LPARAM Places(int from, int to) { return MAKELONG(from, to); }

TEST_F(Combos, SelectionOfTheEditGoesFromPlaceToPlace) {
    On(kEverything, [](HWND dialog) {
        const Window* window = FindWindowRecord(GetDlgItem(dialog, kHost));
        const QLineEdit* edit = qobject_cast<QComboBox*>(window->widget)->lineEdit();
        SetDlgItemTextW(dialog, kHost, TEXT("abcdef"));
        EXPECT_EQ(TRUE, Tell(dialog, kHost, CB_SETEDITSEL, 0, Places(1, 3)));
        EXPECT_EQ("bc", edit->selectedText().toStdString());
        EXPECT_EQ(TRUE, Tell(dialog, kHost, CB_SETEDITSEL, 0, Places(2, -1)));
        EXPECT_EQ("cdef", edit->selectedText().toStdString());
        EXPECT_EQ(TRUE, Tell(dialog, kHost, CB_SETEDITSEL, 0, Places(-1, 0)));
        EXPECT_EQ("", edit->selectedText().toStdString());
    });
}

TEST_F(Combos, ListWithoutAnEditHasNoSuchSelection) {
    On(kExtended, [](HWND dialog) {
        EXPECT_EQ(CB_ERR, Tell(dialog, kDropList, CB_SETEDITSEL, 0, Places(0, 1)));
    });
}

TEST_F(Combos, EntryHasALengthUntilTheListIsEmptied) {
    On(kEverything, [](HWND dialog) {
        TellText(dialog, kHost, CB_ADDSTRING, 0, TEXT("one"));
        TellText(dialog, kHost, CB_ADDSTRING, 0, TEXT("three"));
        EXPECT_EQ(5, Tell(dialog, kHost, CB_GETLBTEXTLEN, 1));
        EXPECT_EQ(CB_ERR, Tell(dialog, kHost, CB_GETLBTEXTLEN, 2));
        EXPECT_EQ(0, Tell(dialog, kHost, CB_RESETCONTENT));
        EXPECT_EQ(0, Tell(dialog, kHost, CB_GETCOUNT));
        EXPECT_EQ(CB_ERR, Tell(dialog, kHost, CB_GETLBTEXTLEN, 0));
        EXPECT_EQ(CB_ERR, Tell(dialog, kHost, CB_GETCURSEL));
        EXPECT_EQ(0, NoticesOf(kHost, CBN_SELCHANGE) + NoticesOf(kHost, CBN_EDITCHANGE));
    });
}
