// SPDX-License-Identifier: MIT
// Controls of dialogs: makes them from a template, names and orders them, and has the calls that
// reach a control by its id. Each control is a desktop widget with a window record.
#include <algorithm>
#include <QButtonGroup>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>

#include "platform/qt/dialog/dialogs.h"
#include "platform/qt/services/services.h"
#include "platform/qt/window/window.h"

static const ControlClass* const kClasses[] = {&kButtonClass, &kEditClass, &kStaticClass,
                                               &kListBoxClass, &kComboBoxClass};

static const ControlClass* ClassOf(const ResourceName& name) {
    for (const ControlClass* kind : kClasses)
        if (name.is_number ? name.number == kind->number
                           : CompareWithoutCase(name.text.c_str(), kind->name) == 0)
            return kind;
    return nullptr;
}

static LRESULT CALLBACK ControlProcedure(HWND control, UINT message, WPARAM wparam, LPARAM lparam) {
    Window* window = FindWindowRecord(control);
    if (!window->widget) return 0;
    for (const MessageRow* row = window->control->kind->messages; row->message; ++row)
        if (row->message == message) return row->handle(*window, wparam, lparam);
    return DefWindowProcW(control, message, wparam, lparam);
}

static const WindowClass* WindowClassOf(const ControlClass* kind) {
    static std::vector<std::unique_ptr<WindowClass>> made;
    for (const auto& window_class : made)
        if (window_class->name == kind->name) return window_class.get();
    made.push_back(std::make_unique<WindowClass>());
    made.back()->name = kind->name;
    made.back()->procedure = ControlProcedure;
    return made.back().get();
}

// Returns the controls in the template's order, because window records are numbered by age.
static std::vector<Window*> ControlsOf(HWND dialog) {
    std::vector<Window*> controls;
    for (Window* window : AllWindows())
        if (window->parent == dialog && window->control && window->widget)
            controls.push_back(window);
    return controls;
}

template <typename Widget>
static Widget* As(const Window& window) {
    return qobject_cast<Widget*>(window.widget.data());
}

static bool TakesItsName(const Window& window) {
    return As<QLineEdit>(window) || As<QComboBox>(window) || As<QListWidget>(window);
}

static QString LabelText(const Window& window) {
    const QString text = FromWide(window.text.c_str());
    return window.control->style & SS_NOPREFIX ? text : WithoutMnemonic(text);
}

// Makes the name that a screen reader speaks: the label without its colon. A word that is split
// over two lines or over two labels is joined again.
static QString NameFromLabels(const Window& label, const Window* before) {
    QString name = LabelText(label).remove("-\n").simplified();
    while (name.endsWith(':') || name.endsWith(' ')) name.chop(1);
    const QString first = before && As<QLabel>(*before) ? LabelText(*before).simplified() : "";
    return first.endsWith('-') ? first.chopped(1) + name : name;
}

// The name of each control that a label precedes. Of controls with the same label, each has its
// number behind the name.
static std::vector<QString> NamesOf(const std::vector<Window*>& controls) {
    std::vector<QString> labels(controls.size());
    for (size_t i = 1; i < controls.size(); ++i)
        if (As<QLabel>(*controls[i - 1]) && TakesItsName(*controls[i]))
            labels[i] = NameFromLabels(*controls[i - 1], i > 1 ? controls[i - 2] : nullptr);
    std::vector<QString> names = labels;
    for (size_t i = 0; i < names.size(); ++i) {
        const auto here = labels.begin() + static_cast<std::ptrdiff_t>(i);
        if (labels[i].isEmpty() || std::count(labels.begin(), labels.end(), labels[i]) == 1)
            continue;
        names[i] += ' ' + QString::number(std::count(labels.begin(), here + 1, labels[i]));
    }
    return names;
}

static void NameControls(const std::vector<Window*>& controls) {
    const std::vector<QString> names = NamesOf(controls);
    for (size_t i = 1; i < controls.size(); ++i) {
        auto* label = As<QLabel>(*controls[i - 1]);
        if (!label || !TakesItsName(*controls[i])) continue;
        controls[i]->widget->setAccessibleName(names[i]);
        // In a combo box, the edit has the keyboard focus, but no label.
        auto* combo = As<QComboBox>(*controls[i]);
        if (combo && combo->lineEdit()) combo->lineEdit()->setAccessibleName(names[i]);
        label->setBuddy(controls[i]->widget);
        ShowLabel(*controls[i - 1]);
    }
}

static void OrderControls(const std::vector<Window*>& controls) {
    QWidget* before = nullptr;
    for (const Window* window : controls) {
        if (window->widget->focusPolicy() == Qt::NoFocus) continue;
        if (before) QWidget::setTabOrder(before, window->widget);
        before = window->widget;
    }
}

static void GroupRadios(const std::vector<Window*>& controls, QWidget* content) {
    QButtonGroup* group = nullptr;
    for (const Window* window : controls) {
        if (!group || window->control->style & WS_GROUP) group = new QButtonGroup(content);
        auto* radio = As<QRadioButton>(*window);
        if (!radio || (window->control->style & 0xFu) != BS_AUTORADIOBUTTON) continue;
        group->addButton(radio);
        radio->setAutoExclusive(true);  // the group decides; screen readers read this
    }
}

// A click on a push button does not move the focus, so Enter still presses the usual default
// button.
static Qt::FocusPolicy FocusPolicyOf(const QWidget& widget, DWORD style) {
    const bool tab = style & WS_TABSTOP;
    if (qobject_cast<const QPushButton*>(&widget)) return tab ? Qt::TabFocus : Qt::NoFocus;
    return tab ? Qt::StrongFocus : Qt::ClickFocus;
}

HWND MakeControl(Window& dialog, const DialogItem& item) {
    const ControlClass* kind = ClassOf(item.window_class);
    if (!kind) return nullptr;
    Window* window = AddWindow(WindowClassOf(kind), &kToolkitOperations, dialog.handle, item.id);
    window->text = item.text;
    window->control = std::make_shared<ControlData>();
    window->control->kind = kind;
    window->control->style = item.style;
    window->widget = kind->make(window->handle, item, dialog.dialog->content);
    const QSize corner = DialogPixels(item.x, item.y);
    const QSize end = DialogPixels(item.x + item.width, item.y + item.height);
    QRect place(QPoint(corner.width(), corner.height()), end - corner);
    if (qobject_cast<QComboBox*>(window->widget))  // the template's height includes the open list
        place.setHeight(window->widget->sizeHint().height());
    if (kind == &kListBoxClass && !(item.style & LBS_NOINTEGRALHEIGHT))
        place.setHeight(WholeLines(window->widget, place.height()));
    window->widget->setGeometry(place);
    if (window->widget->focusPolicy() != Qt::NoFocus)
        window->widget->setFocusPolicy(FocusPolicyOf(*window->widget, item.style));
    window->widget->setEnabled(!(item.style & WS_DISABLED));
    window->widget->setVisible(item.style & WS_VISIBLE);
    return window->handle;
}

bool MakeControls(Window& dialog, const DialogTemplate& shape) {
    for (const DialogItem& item : shape.items)
        if (!MakeControl(dialog, item)) return false;
    const std::vector<Window*> controls = ControlsOf(dialog.handle);
    NameControls(controls);
    OrderControls(controls);
    GroupRadios(controls, dialog.dialog->content);
    return true;
}

HWND FirstTabStop(const Window& dialog) {
    for (const Window* window : ControlsOf(dialog.handle))
        if (window->control->style & WS_TABSTOP && window->widget->isEnabled() &&
            !window->widget->isHidden() && window->widget->focusPolicy() != Qt::NoFocus)
            return window->handle;
    return nullptr;
}

void FocusControl(const Window& control) {
    control.widget->setFocus(Qt::TabFocusReason);
    if (auto* edit = As<QLineEdit>(control)) edit->selectAll();
    auto* combo = As<QComboBox>(control);
    if (combo && combo->lineEdit()) combo->lineEdit()->selectAll();
}

constexpr int kNumberUnits = 64;

static bool IsBlank(WCHAR unit) { return unit == u' ' || unit == u'\t'; }

constexpr int kMostDigits = 18;  // any number of them fits in 64 bits

// Parses digits, with a minus sign if `is_signed`; ignores blanks around the number.
static bool ParseNumber(LPCWSTR text, bool is_signed, int64_t* value) {
    while (IsBlank(*text)) ++text;
    const bool negative = is_signed && *text == u'-';
    if (negative) ++text;
    int digits = 0;
    for (*value = 0; *text >= u'0' && *text <= u'9' && digits < kMostDigits; ++text, ++digits)
        *value = *value * 10 + (*text - u'0');
    while (IsBlank(*text)) ++text;
    if (negative) *value = -*value;
    const int64_t least = is_signed ? INT32_MIN : 0, most = is_signed ? INT32_MAX : UINT32_MAX;
    return digits > 0 && *text == 0 && *value >= least && *value <= most;
}

int GetDlgCtrlID(HWND control) {
    const Window* window = FindWindowRecord(control);
    return window ? window->id : 0;
}

BOOL SetDlgItemTextW(HWND dialog, int id, LPCWSTR text) {
    return SetWindowTextW(GetDlgItem(dialog, id), text);
}

UINT GetDlgItemTextW(HWND dialog, int id, LPWSTR text, int size) {
    if (!text || size < 1) return 0;
    text[0] = 0;
    return static_cast<UINT>(GetWindowTextW(GetDlgItem(dialog, id), text, size));
}

BOOL SetDlgItemInt(HWND dialog, int id, UINT value, BOOL is_signed) {
    WCHAR text[kNumberUnits];
    wsprintfW(text, is_signed ? u"%d" : u"%u", value);
    return SetDlgItemTextW(dialog, id, text);
}

UINT GetDlgItemInt(HWND dialog, int id, BOOL* translated, BOOL is_signed) {
    WCHAR text[kNumberUnits];
    GetDlgItemTextW(dialog, id, text, kNumberUnits);
    int64_t value = 0;
    const bool number = ParseNumber(text, is_signed, &value);
    if (translated) *translated = number;
    return number ? static_cast<UINT>(value) : 0;
}

LRESULT SendDlgItemMessageW(HWND dialog, int id, UINT message, WPARAM wparam, LPARAM lparam) {
    return SendMessageW(GetDlgItem(dialog, id), message, wparam, lparam);
}

BOOL CheckDlgButton(HWND dialog, int id, UINT check) {
    if (!GetDlgItem(dialog, id)) return FALSE;
    SendDlgItemMessageW(dialog, id, BM_SETCHECK, check, 0);
    return TRUE;
}

UINT IsDlgButtonChecked(HWND dialog, int id) {
    return static_cast<UINT>(SendDlgItemMessageW(dialog, id, BM_GETCHECK, 0, 0));
}

BOOL CheckRadioButton(HWND dialog, int first, int last, int checked) {
    if (!FindWindowRecord(dialog)) return FALSE;
    for (const Window* window : AllWindows())
        if (window->parent == dialog && window->control && window->id >= first &&
            window->id <= last)
            CheckDlgButton(dialog, window->id, window->id == checked);
    return TRUE;
}
