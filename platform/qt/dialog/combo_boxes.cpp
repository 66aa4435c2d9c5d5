// SPDX-License-Identifier: MIT
// Combo boxes of dialogs.
#include <climits>
#include <QComboBox>
#include <QLineEdit>

#include "platform/qt/dialog/dialogs.h"

constexpr int kUsualLimit = 32767;

static QComboBox* ComboOf(const Window& window) {
    return qobject_cast<QComboBox*>(window.widget.data());
}

static bool HasRow(const Window& window, WPARAM row) {
    return row < static_cast<WPARAM>(ComboOf(window)->count());
}

static QStringList Entries(const QComboBox* combo) {
    QStringList entries;
    for (int i = 0; i < combo->count(); ++i) entries << combo->itemText(i);
    return entries;
}

// Keeps the toolkit from completing the text that the user types and from adding it to the list.
static void MakeEditable(HWND control, QComboBox* combo) {
    combo->setEditable(true);
    combo->setInsertPolicy(QComboBox::NoInsert);
    combo->setCompleter(nullptr);
    LimitTyping(control, combo, kUsualLimit);
    QObject::connect(combo->lineEdit(), &QLineEdit::textEdited, combo, [control, combo] {
        if (const Window* window = FindWindowRecord(control))
            LimitTyping(control, combo, window->control->limit);
        QueueNotice(control, CBN_EDITCHANGE);
    });
}

static QWidget* MakeCombo(HWND control, const DialogItem& item, QWidget* parent) {
    auto* combo = new QComboBox(parent);
    if ((item.style & 3u) != CBS_DROPDOWNLIST) MakeEditable(control, combo);
    QObject::connect(combo, &QComboBox::activated, combo,
                     [control] { QueueNotice(control, CBN_SELCHANGE); });
    return combo;
}

// Returns the selected row, or CB_ERR if its text has been typed over.
static int Chosen(const QComboBox* combo) {
    const int row = combo->currentIndex();
    return row >= 0 && combo->currentText() == combo->itemText(row) ? row : CB_ERR;
}

// Keeps the edit's text and the selection while the list changes; the toolkit would change both.
template <typename Change>
static void ChangeList(QComboBox* combo, int chosen, Change change) {
    const QSignalBlocker quiet(combo);
    const QString text = combo->currentText();
    change();
    combo->setCurrentIndex(chosen);
    if (combo->isEditable()) combo->setEditText(text);
}

static int Insert(QComboBox* combo, int row, const QString& text) {
    const int chosen = Chosen(combo);
    ChangeList(combo, chosen >= row ? chosen + 1 : chosen, [&] { combo->insertItem(row, text); });
    return row;
}

static LRESULT AddEntry(Window& window, WPARAM, LPARAM text) {
    QComboBox* combo = ComboOf(window);
    const QString entry = FromWide(reinterpret_cast<LPCWSTR>(text));
    const bool sorted = window.control->style & CBS_SORT;
    return Insert(combo, sorted ? SortedPlace(Entries(combo), entry) : combo->count(), entry);
}

static LRESULT InsertEntry(Window& window, WPARAM row, LPARAM text) {
    QComboBox* combo = ComboOf(window);
    const int place = PlaceOf(row, combo->count());
    if (place < 0) return CB_ERR;
    return Insert(combo, place, FromWide(reinterpret_cast<LPCWSTR>(text)));
}

static LRESULT DeleteEntry(Window& window, WPARAM row, LPARAM) {
    QComboBox* combo = ComboOf(window);
    if (!HasRow(window, row)) return CB_ERR;
    const int gone = static_cast<int>(row), chosen = Chosen(combo);
    const int kept = chosen == gone ? -1 : chosen > gone ? chosen - 1 : chosen;
    ChangeList(combo, kept, [&] { combo->removeItem(gone); });
    return combo->count();
}

static LRESULT Reset(Window& window, WPARAM, LPARAM) {
    const QSignalBlocker quiet(ComboOf(window));
    ComboOf(window)->clear();
    return 0;
}

static LRESULT Select(Window& window, WPARAM row, LPARAM) {
    QComboBox* combo = ComboOf(window);
    const QSignalBlocker quiet(combo);
    const bool there = HasRow(window, row);
    if (combo->isEditable()) combo->lineEdit()->setMaxLength(INT_MAX);
    combo->setCurrentIndex(-1);
    combo->setCurrentIndex(there ? static_cast<int>(row) : -1);
    LimitTyping(window.handle, combo, window.control->limit);
    return there ? static_cast<LRESULT>(row) : CB_ERR;
}

static LRESULT Selected(Window& window, WPARAM, LPARAM) { return Chosen(ComboOf(window)); }

static LRESULT GetEntry(Window& window, WPARAM row, LPARAM buffer) {
    if (!HasRow(window, row)) return CB_ERR;
    return CopyText(ComboOf(window)->itemText(static_cast<int>(row)), SIZE_MAX, buffer);
}

static LRESULT GetEntryLength(Window& window, WPARAM row, LPARAM) {
    if (!HasRow(window, row)) return CB_ERR;
    return ComboOf(window)->itemText(static_cast<int>(row)).size();
}

static LRESULT Count(Window& window, WPARAM, LPARAM) { return ComboOf(window)->count(); }

static LRESULT SelectByText(Window& window, WPARAM after, LPARAM text) {
    const QString wanted = FromWide(reinterpret_cast<LPCWSTR>(text));
    const int row = FindEntry(Entries(ComboOf(window)), static_cast<int>(after), wanted, false);
    return row < 0 ? CB_ERR : Select(window, static_cast<WPARAM>(row), 0);
}

static LRESULT FindExact(Window& window, WPARAM after, LPARAM text) {
    const QString wanted = FromWide(reinterpret_cast<LPCWSTR>(text));
    return FindEntry(Entries(ComboOf(window)), static_cast<int>(after), wanted, true);
}

static LRESULT GetData(Window& window, WPARAM row, LPARAM) {
    if (!HasRow(window, row)) return CB_ERR;
    return static_cast<LRESULT>(ComboOf(window)->itemData(static_cast<int>(row)).toLongLong());
}

static LRESULT SetData(Window& window, WPARAM row, LPARAM data) {
    if (!HasRow(window, row)) return CB_ERR;
    ComboOf(window)->setItemData(static_cast<int>(row), static_cast<qlonglong>(data));
    return 0;
}

static LRESULT SetText(Window& window, WPARAM, LPARAM text) {
    QComboBox* combo = ComboOf(window);
    if (!combo->isEditable()) return CB_ERR;
    const QSignalBlocker quiet(combo);
    combo->lineEdit()->setMaxLength(INT_MAX);
    combo->setEditText(FromWide(reinterpret_cast<LPCWSTR>(text)));
    LimitTyping(window.handle, combo, window.control->limit);
    return TRUE;
}

static LRESULT GetText(Window& window, WPARAM size, LPARAM buffer) {
    return CopyText(ComboOf(window)->currentText(), size, buffer);
}

static LRESULT GetLength(Window& window, WPARAM, LPARAM) {
    return ComboOf(window)->currentText().size();
}

static LRESULT LimitText(Window& window, WPARAM limit, LPARAM) {
    const bool some = limit > 0 && limit < INT_MAX;
    LimitTyping(window.handle, window.widget, some ? static_cast<int>(limit) : INT_MAX);
    return TRUE;
}

static LRESULT SetSelection(Window& window, WPARAM, LPARAM range) {
    const auto from = static_cast<int16_t>(LOWORD(range)), to = static_cast<int16_t>(HIWORD(range));
    QLineEdit* edit = ComboOf(window)->lineEdit();
    if (!edit) return CB_ERR;
    const int length = static_cast<int>(edit->text().size());
    if (from < 0) return edit->deselect(), TRUE;
    edit->setSelection(from, (to < 0 ? length : to) - from);
    return TRUE;
}

static const MessageRow kComboMessages[] = {
    {WM_SETTEXT, SetText},
    {WM_GETTEXT, GetText},
    {WM_GETTEXTLENGTH, GetLength},
    {CB_LIMITTEXT, LimitText},
    {CB_SETEDITSEL, SetSelection},
    {CB_ADDSTRING, AddEntry},
    {CB_INSERTSTRING, InsertEntry},
    {CB_DELETESTRING, DeleteEntry},
    {CB_RESETCONTENT, Reset},
    {CB_SETCURSEL, Select},
    {CB_GETCURSEL, Selected},
    {CB_GETLBTEXT, GetEntry},
    {CB_GETLBTEXTLEN, GetEntryLength},
    {CB_GETCOUNT, Count},
    {CB_SELECTSTRING, SelectByText},
    {CB_GETITEMDATA, GetData},
    {CB_SETITEMDATA, SetData},
    {CB_FINDSTRINGEXACT, FindExact},
    {0, nullptr},
};

const ControlClass kComboBoxClass = {0x85, u"ComboBox", MakeCombo, kComboMessages};
