// SPDX-License-Identifier: MIT
// Lets tests operate dialogs as a person does.
#include <deque>
#include <QAbstractButton>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMouseEvent>
#include <QTabBar>
#include <QTimer>

#include "platform/qt/window/window.h"
#include "tests/qt_driver/driver.h"

namespace {

constexpr int kWaitMilliseconds = 5;
constexpr int kLongestWait = 400;  // of these

std::deque<std::function<void()>> g_people;

Window* ControlRecord(int id) {
    Window* window = FindWindowRecord(GetDlgItem(ShownPage(), id));
    return window ? window : FindWindowRecord(GetDlgItem(ShownDialog(), id));
}

bool Usable(const QWidget* widget) { return widget && widget->isVisible() && widget->isEnabled(); }

void SendMouse(QWidget* target, QEvent::Type type, QPoint place) {
    const bool up = type == QEvent::MouseButtonRelease;
    QMouseEvent event(type, place, target->mapToGlobal(place), Qt::LeftButton,
                      up ? Qt::NoButton : Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(target, &event);
}

void Click(QWidget* target, QPoint place) {
    QPointer<QWidget> widget = target;
    if (target->focusPolicy() & Qt::ClickFocus) target->setFocus(Qt::MouseFocusReason);
    SendMouse(target, QEvent::MouseButtonPress, place);
    if (widget) SendMouse(target, QEvent::MouseButtonRelease, place);
}

// Check boxes and radio buttons react on their mark and text, not on the empty area beside them.
QPoint ClickPlace(const QWidget* widget) {
    if (widget->inherits("QCheckBox") || widget->inherits("QRadioButton"))
        return QPoint(6, widget->height() / 2);
    return widget->rect().center();
}

bool SendKey(QWidget* target, int key, Qt::KeyboardModifiers modifiers, const QString& text) {
    QPointer<QWidget> widget = target;
    QKeyEvent press(QEvent::KeyPress, key, modifiers, text);
    QApplication::sendEvent(target, &press);
    if (!widget) return true;
    QKeyEvent release(QEvent::KeyRelease, key, modifiers, text);
    QApplication::sendEvent(target, &release);
    return true;
}

QPoint RowPlace(QListWidget* list, int row) {
    list->scrollToItem(list->item(row));
    return list->visualItemRect(list->item(row)).center();
}

void ActWhenActive(const std::function<void()>& person, int steps) {
    const QWidget* modal = QApplication::activeModalWidget();
    if (steps == 0 || (modal && modal == QApplication::activeWindow())) return person();
    QTimer::singleShot(kWaitMilliseconds, qApp, [=] { ActWhenActive(person, steps - 1); });
}

// A person acts only once the desktop has shown the window.
void SeeDialog() {
    if (g_people.empty()) return;
    const std::function<void()> person = g_people.front();
    g_people.pop_front();
    QTimer::singleShot(0, qApp, [=] { ActWhenActive(person, kLongestWait); });
}

const bool g_installed = [] {
    window_observer.dialog = SeeDialog;
    return true;
}();

template <typename Widget>
Widget* ShownWindow() {
    if (auto* top = qobject_cast<Widget*>(QApplication::activeModalWidget())) return top;
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (auto* wanted = qobject_cast<Widget*>(widget); wanted && wanted->isVisible())
            return wanted;
    return nullptr;
}

bool HasRow(int count, int row) { return row >= 0 && row < count; }

}  // namespace

HWND ShownDialog() {
    const Window* dialog = TopMostDialog();
    return dialog ? dialog->handle : nullptr;
}

HWND ShownPage() {
    const Window* dialog = TopMostDialog();
    const bool sheet = dialog && dialog->window_class->name == u"PropertySheet";
    if (!sheet) return dialog ? dialog->handle : nullptr;
    return reinterpret_cast<HWND>(SendMessageW(dialog->handle, PSM_GETCURRENTPAGEHWND, 0, 0));
}

void TurnPage(int index) {
    const Window* sheet = TopMostDialog();
    auto* tabs = sheet && sheet->widget ? sheet->widget->findChild<QTabBar*>() : nullptr;
    if (tabs) tabs->setCurrentIndex(index);
}

QMessageBox* ShownMessageBox() { return ShownWindow<QMessageBox>(); }

QColorDialog* ShownColorDialog() {
    for (const QWidget* widget : QApplication::topLevelWidgets())
        if (auto* chooser = widget->findChild<QColorDialog*>(); chooser && widget->isVisible())
            return chooser;
    return nullptr;
}

void OnNextDialog(const std::function<void()>& person) { g_people.push_back(person); }

bool DialogsAwaited() { return !g_people.empty(); }

void ForgetDialogs() { g_people.clear(); }

QString DialogTitle() {
    const Window* window = FindWindowRecord(ShownDialog());
    return window && window->widget ? window->widget->windowTitle() : QString();
}

QWidget* DialogWidgetOf(int id) {
    const Window* window = ControlRecord(id);
    return window ? window->widget.data() : nullptr;
}

bool ClickControl(int id) {
    QWidget* widget = DialogWidgetOf(id);
    if (!Usable(widget)) return false;
    Click(widget, ClickPlace(widget));
    return true;
}

bool TypeInto(int id, const QString& text) {
    QWidget* widget = DialogWidgetOf(id);
    auto* combo = qobject_cast<QComboBox*>(widget);
    auto* edit = combo ? combo->lineEdit() : qobject_cast<QLineEdit*>(widget);
    if (!edit || !Usable(widget)) return false;
    widget->setFocus(Qt::MouseFocusReason);
    edit->selectAll();
    if (text.isEmpty()) SendKey(widget, Qt::Key_Delete, Qt::NoModifier, QString());
    for (const uint point : text.toUcs4())
        SendKey(widget, static_cast<int>(QChar::toUpper(char32_t{point})), Qt::NoModifier,
                QStringView(QChar::fromUcs4(char32_t{point})).toString());
    return true;
}

bool ClickEntry(int id, int row) {
    QWidget* widget = DialogWidgetOf(id);
    if (!Usable(widget)) return false;
    auto* combo = qobject_cast<QComboBox*>(widget);
    if (combo && HasRow(combo->count(), row)) {
        combo->setCurrentIndex(row);
        Q_EMIT combo->activated(row);
        return true;
    }
    auto* list = qobject_cast<QListWidget*>(widget);
    if (!list || !HasRow(list->count(), row)) return false;
    Click(list->viewport(), RowPlace(list, row));
    return true;
}

bool DoubleClickEntry(int id, int row) {
    auto* list = qobject_cast<QListWidget*>(DialogWidgetOf(id));
    if (!ClickEntry(id, row) || !list) return false;
    const QPoint place = RowPlace(list, row);
    SendMouse(list->viewport(), QEvent::MouseButtonDblClick, place);
    SendMouse(list->viewport(), QEvent::MouseButtonRelease, place);
    return true;
}

bool PressInDialog(int key, int modifiers, const QString& text) {
    const Window* dialog = FindWindowRecord(ShownDialog());
    if (!dialog || !dialog->widget) return false;
    QWidget* target = dialog->widget->focusWidget();
    return SendKey(target ? target : dialog->widget.data(), key,
                   Qt::KeyboardModifiers::fromInt(modifiers), text);
}

QString ControlText(int id) {
    const Window* window = ControlRecord(id);
    if (!window) return QString();
    std::u16string text(
        static_cast<size_t>(SendMessageW(window->handle, WM_GETTEXTLENGTH, 0, 0)) + 1, u'\0');
    GetWindowTextW(window->handle, text.data(), static_cast<int>(text.size()));
    return FromWide(text.c_str());
}

bool ControlChecked(int id) {
    const auto* button = qobject_cast<QAbstractButton*>(DialogWidgetOf(id));
    return button && button->isChecked();
}

QStringList ControlEntries(int id) {
    QStringList entries;
    QWidget* widget = DialogWidgetOf(id);
    if (auto* combo = qobject_cast<QComboBox*>(widget))
        for (int i = 0; i < combo->count(); i++) entries << combo->itemText(i);
    if (auto* list = qobject_cast<QListWidget*>(widget))
        for (int i = 0; i < list->count(); i++) entries << list->item(i)->text();
    return entries;
}
