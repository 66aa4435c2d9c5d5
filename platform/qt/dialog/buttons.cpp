// SPDX-License-Identifier: MIT
// Buttons and static texts of dialogs.
#include "platform/qt/dialog/dialogs.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QRadioButton>

// The plain kinds do not change their mark; the program does.
template <typename Button>
class PlainButton : public Button {
  protected:
    void nextCheckState() override {}
};

constexpr double kFocusInset = 3.5;

namespace {

// Leaves Enter to the dialog, which presses the default button. The focus is drawn inside the
// frame, because the frame marks the default button.
class PushButton : public QPushButton {
  protected:
    void keyPressEvent(QKeyEvent* event) override {
        const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
        if (enter) return event->ignore();
        QPushButton::keyPressEvent(event);
    }
    void paintEvent(QPaintEvent* event) override {
        QPushButton::paintEvent(event);
        if (!hasFocus()) return;
        QPainter painter(this);
        painter.setPen(QPen(palette().color(QPalette::ButtonText), 1, Qt::DotLine));
        painter.drawRect(
            QRectF(rect()).adjusted(kFocusInset, kFocusInset, -kFocusInset, -kFocusInset));
    }
};

}  // namespace

static QAbstractButton* ButtonOf(const Window& window) {
    return qobject_cast<QAbstractButton*>(window.widget.data());
}

// Tab enters a group at the button that is marked.
static void MoveTabStop(QAbstractButton* marked) {
    for (QAbstractButton* button : marked->group()->buttons())
        button->setFocusPolicy(button == marked ? Qt::StrongFocus : Qt::ClickFocus);
}

// An exclusive group would not clear its last mark and would not allow two marks.
static void SetMark(QAbstractButton* button, bool checked) {
    QButtonGroup* group = button->group();
    if (group) group->setExclusive(false);
    button->setChecked(checked);
    if (group) group->setExclusive(true);
    if (group && checked) MoveTabStop(button);
}

static void ClearOthers(QAbstractButton* button) {
    if (!button->group()) return;
    for (QAbstractButton* other : button->group()->buttons())
        if (other != button && other->isChecked()) SetMark(other, false);
}

static void OnClicked(HWND control, QAbstractButton* button) {
    const Window* window = FindWindowRecord(control);
    if (!window) return;
    if (button->isChecked()) ClearOthers(button);
    if (button->isChecked() && button->group()) MoveTabStop(button);
    if (window->control->at_once) return SendNotice(control, BN_CLICKED);
    QueueNotice(control, BN_CLICKED);
}

template <typename Button>
static QAbstractButton* Make(QWidget* parent) {
    auto* button = new Button;
    button->setParent(parent);
    return button;
}

namespace {

struct ButtonRow {
    DWORD type;
    QAbstractButton* (*make)(QWidget* parent);
};

}  // namespace

static const ButtonRow kButtons[] = {
    {BS_CHECKBOX, Make<PlainButton<QCheckBox>>},
    {BS_AUTOCHECKBOX, Make<QCheckBox>},
    {BS_RADIOBUTTON, Make<PlainButton<QRadioButton>>},
    {BS_AUTORADIOBUTTON, Make<QRadioButton>},
};

static QAbstractButton* MakeKindOfButton(DWORD style, QWidget* parent) {
    for (const ButtonRow& row : kButtons)
        if (row.type == (style & 0xFu)) return row.make(parent);
    return Make<PushButton>(parent);
}

static QWidget* MakeGroupBox(const DialogItem& item, QWidget* parent) {
    auto* box = new QGroupBox(FromWide(item.text.c_str()), parent);
    box->setAttribute(Qt::WA_TransparentForMouseEvents);
    box->lower();
    return box;
}

static QWidget* MakeButton(HWND control, const DialogItem& item, QWidget* parent) {
    if ((item.style & 0xFu) == BS_GROUPBOX) return MakeGroupBox(item, parent);
    QAbstractButton* button = MakeKindOfButton(item.style, parent);
    button->setText(FromWide(item.text.c_str()));
    button->setAutoExclusive(false);
    if (auto* push = qobject_cast<QPushButton*>(button)) {
        push->setAutoDefault(false);
        push->setDefault((item.style & 0xFu) == BS_DEFPUSHBUTTON);
    }
    QObject::connect(button, &QAbstractButton::clicked, button,
                     [control, button] { OnClicked(control, button); });
    return button;
}

static LRESULT GetCheck(Window& window, WPARAM, LPARAM) {
    const QAbstractButton* button = ButtonOf(window);
    return button && button->isChecked() ? BST_CHECKED : BST_UNCHECKED;
}

static LRESULT SetCheck(Window& window, WPARAM check, LPARAM) {
    QAbstractButton* button = ButtonOf(window);
    if (button && button->isCheckable()) SetMark(button, check != BST_UNCHECKED);
    return 0;
}

static LRESULT Click(Window& window, WPARAM, LPARAM) {
    const std::shared_ptr<ControlData> data = window.control;
    QAbstractButton* button = ButtonOf(window);
    if (!button) return 0;
    data->at_once = true;
    button->click();
    data->at_once = false;
    return 0;
}

static LRESULT SetButtonText(Window& window, WPARAM, LPARAM text) {
    window.text = reinterpret_cast<LPCWSTR>(text);
    const QString shown = FromWide(window.text.c_str());
    if (QAbstractButton* button = ButtonOf(window)) button->setText(shown);
    if (auto* box = qobject_cast<QGroupBox*>(window.widget.data())) box->setTitle(shown);
    return TRUE;
}

static LRESULT GetOwnText(Window& window, WPARAM size, LPARAM buffer) {
    return CopyText(QString::fromStdU16String(window.text), size, buffer);
}

static LRESULT GetOwnLength(Window& window, WPARAM, LPARAM) {
    return static_cast<LRESULT>(window.text.size());
}

static const MessageRow kButtonMessages[] = {
    {WM_SETTEXT, SetButtonText},
    {WM_GETTEXT, GetOwnText},
    {WM_GETTEXTLENGTH, GetOwnLength},
    {BM_GETCHECK, GetCheck},
    {BM_SETCHECK, SetCheck},
    {BM_CLICK, Click},
    {0, nullptr},
};

static Qt::Alignment StaticAlignment(DWORD style) {
    const DWORD type = style & 0x1Fu;
    return type == SS_CENTER ? Qt::AlignHCenter : type == SS_RIGHT ? Qt::AlignRight : Qt::AlignLeft;
}

// A text with room for only one line is not wrapped, or its other lines would be invisible.
static QWidget* MakeStatic(HWND, const DialogItem& item, QWidget* parent) {
    auto* label = new QLabel(parent);
    label->setTextFormat(Qt::PlainText);
    label->setAlignment(StaticAlignment(item.style) | Qt::AlignTop);
    label->setWordWrap(item.height >= 16 && (item.style & 0x1Fu) <= SS_RIGHT);
    label->setAttribute(Qt::WA_TransparentForMouseEvents);
    const QString text = FromWide(item.text.c_str());
    label->setText(item.style & SS_NOPREFIX ? text : WithoutMnemonic(text));
    return label;
}

static LRESULT SetStaticText(Window& window, WPARAM, LPARAM text) {
    window.text = reinterpret_cast<LPCWSTR>(text);
    ShowLabel(window);
    return TRUE;
}

static const MessageRow kStaticMessages[] = {
    {WM_SETTEXT, SetStaticText},
    {WM_GETTEXT, GetOwnText},
    {WM_GETTEXTLENGTH, GetOwnLength},
    {0, nullptr},
};

const ControlClass kButtonClass = {0x80, u"Button", MakeButton, kButtonMessages};
const ControlClass kStaticClass = {0x82, u"Static", MakeStatic, kStaticMessages};

// The toolkit shows "&" as a character if the label has no buddy, and takes it for a mnemonic if it
// has one. The text is adapted to both cases.
void ShowLabel(Window& window) {
    auto* label = qobject_cast<QLabel*>(window.widget.data());
    if (!label) return;
    const QString text = FromWide(window.text.c_str());
    if (window.control->style & SS_NOPREFIX)
        label->setText(label->buddy() ? QString(text).replace("&", "&&") : text);
    else
        label->setText(label->buddy() ? text : WithoutMnemonic(text));
}
