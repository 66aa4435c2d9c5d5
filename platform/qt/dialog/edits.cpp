// SPDX-License-Identifier: MIT
// Edit controls of dialogs.
#include <climits>
#include <QComboBox>
#include <QLineEdit>
#include <QRegularExpressionValidator>

#include "platform/qt/dialog/dialogs.h"

constexpr int kUsualLimit = 32767;

static QLineEdit* EditOf(const Window& window) {
    return qobject_cast<QLineEdit*>(window.widget.data());
}

// A text that the program sets may be longer than what the user may type, but the toolkit has one
// limit for both.
static void HoldLimit(HWND control, QLineEdit* edit) {
    const Window* window = FindWindowRecord(control);
    if (window)
        edit->setMaxLength(std::max<int>(window->control->limit,  //
                                         static_cast<int>(edit->text().size())));
}

static QWidget* MakeEdit(HWND control, const DialogItem& item, QWidget* parent) {
    auto* edit = new QLineEdit(parent);
    if (item.style & ES_PASSWORD) edit->setEchoMode(QLineEdit::Password);
    if (item.style & ES_READONLY) edit->setReadOnly(true);
    if (item.style & ES_CENTER) edit->setAlignment(Qt::AlignHCenter);
    if (item.style & ES_RIGHT) edit->setAlignment(Qt::AlignRight);
    if (item.style & ES_NUMBER) {
        static const QRegularExpression digits("[0-9]*");
        edit->setValidator(new QRegularExpressionValidator(digits, edit));
    }
    LimitTyping(control, edit, kUsualLimit);
    edit->setText(FromWide(item.text.c_str()));
    QObject::connect(edit, &QLineEdit::textEdited, edit, [control, edit] {
        HoldLimit(control, edit);
        QueueNotice(control, EN_CHANGE);
    });
    return edit;
}

static LRESULT SetText(Window& window, WPARAM, LPARAM text) {
    const HWND control = window.handle;
    QLineEdit* edit = EditOf(window);
    edit->setMaxLength(INT_MAX);
    edit->setText(FromWide(reinterpret_cast<LPCWSTR>(text)));
    HoldLimit(control, edit);
    SendNotice(control, EN_CHANGE);
    return TRUE;
}

static LRESULT GetText(Window& window, WPARAM size, LPARAM buffer) {
    return CopyText(EditOf(window)->text(), size, buffer);
}

static LRESULT GetLength(Window& window, WPARAM, LPARAM) { return EditOf(window)->text().size(); }

static LRESULT LimitText(Window& window, WPARAM limit, LPARAM) {
    const bool some = limit > 0 && limit < INT_MAX;
    LimitTyping(window.handle, window.widget, some ? static_cast<int>(limit) : INT_MAX);
    return 0;
}

// A start of -1 selects nothing; an end of -1 is the end of the text.
static LRESULT SetSelection(Window& window, WPARAM from, LPARAM to) {
    QLineEdit* edit = EditOf(window);
    const int length = static_cast<int>(edit->text().size());
    const int start = static_cast<int>(from), end = static_cast<int>(to);
    if (start < 0) return edit->deselect(), 0;
    const int first = std::min(start, length), last = end < 0 ? length : std::min(end, length);
    edit->setCursorPosition(last);
    if (first != last) edit->setSelection(std::min(first, last), std::abs(last - first));
    return 0;
}

static LRESULT GetSelection(Window& window, WPARAM from, LPARAM to) {
    const QLineEdit* edit = EditOf(window);
    const bool some = edit->hasSelectedText();
    const int start = some ? edit->selectionStart() : edit->cursorPosition();
    const int end = some ? edit->selectionEnd() : start;
    if (from) *reinterpret_cast<DWORD*>(from) = static_cast<DWORD>(start);
    if (to) *reinterpret_cast<DWORD*>(to) = static_cast<DWORD>(end);
    return MAKELONG(start, end);
}

static LRESULT ReplaceSelection(Window& window, WPARAM, LPARAM text) {
    const HWND control = window.handle;
    EditOf(window)->insert(FromWide(reinterpret_cast<LPCWSTR>(text)));
    SendNotice(control, EN_CHANGE);
    return 0;
}

static const MessageRow kEditMessages[] = {
    {WM_SETTEXT, SetText},
    {WM_GETTEXT, GetText},
    {WM_GETTEXTLENGTH, GetLength},
    {EM_LIMITTEXT, LimitText},
    {EM_SETSEL, SetSelection},
    {EM_GETSEL, GetSelection},
    {EM_REPLACESEL, ReplaceSelection},
    {0, nullptr},
};

const ControlClass kEditClass = {0x81, u"Edit", MakeEdit, kEditMessages};

void LimitTyping(HWND control, QWidget* widget, int limit) {
    Window* window = FindWindowRecord(control);
    auto* combo = qobject_cast<QComboBox*>(widget);
    auto* edit = combo ? combo->lineEdit() : qobject_cast<QLineEdit*>(widget);
    if (!window || !edit) return;
    window->control->limit = limit;
    HoldLimit(control, edit);
}
