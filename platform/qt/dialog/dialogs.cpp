// SPDX-License-Identifier: MIT
// Dialogs: a dialog's window on the desktop, its procedure, the loop that runs it, and the button
// that Enter presses.
#include "platform/qt/dialog/dialogs.h"

#include <QApplication>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QStyle>

#include "platform/qt/shell/shell.h"
#include "platform/qt/window/device_screen.h"
#include "platform/qt/window/messages.h"
#include "platform/qt/window/window.h"

void FollowFocusWithDefault(QWidget* window, const std::function<QPushButton*()>& usual) {
    QObject::connect(qApp, &QApplication::focusChanged, window, [=](QWidget*, QWidget* now) {
        if (!now || !window->isAncestorOf(now)) return;
        auto* focused = qobject_cast<QPushButton*>(now);
        const QPushButton* marked = focused ? focused : usual();
        for (QPushButton* button : window->findChildren<QPushButton*>())
            button->setDefault(button == marked);
    });
}

QPushButton* ShownDefault(const QWidget& window) {
    for (QPushButton* button : window.findChildren<QPushButton*>())
        if (button->isDefault() && button->isVisible()) return button;
    return nullptr;
}

static const WindowClass kDialogClass = {u"Dialog", 0, DialogWindowProcedure, nullptr};

// The answer to these messages is what the procedure returns. The answer to all others is
// DWLP_MSGRESULT.
static bool AnsweredDirectly(UINT message) { return message == WM_INITDIALOG; }

static void QueueCommand(HWND dialog, int id) {
    QueueInput(dialog, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED),
               reinterpret_cast<LPARAM>(GetDlgItem(dialog, id)));
}

// Closing a dialog counts as Cancel, unless the dialog has disabled its Cancel button.
static void CloseByCancel(HWND dialog) {
    const HWND button = GetDlgItem(dialog, IDCANCEL);
    if (button && !IsWindowEnabled(button)) {
        MessageBeep(MB_OK);
        return;
    }
    PostMessageW(dialog, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED),
                 reinterpret_cast<LPARAM>(button));
}

// Returns the template's default button, or null if none is visible.
static QPushButton* UsualDefault(const QWidget& dialog) {
    for (const Window* window : AllWindows()) {
        const bool here = window->control && window->widget && window->widget->window() == &dialog;
        if (!here || (window->control->style & 0xFu) != BS_DEFPUSHBUTTON) continue;
        auto* button = qobject_cast<QPushButton*>(window->widget.data());
        if (button && button->isVisible()) return button;
    }
    return nullptr;
}

static void PressDefault(HWND dialog, const QWidget& widget) {
    auto* button = qobject_cast<QPushButton*>(widget.focusWidget());
    if (!button) button = ShownDefault(widget);
    if (!button) return QueueCommand(dialog, IDOK);
    button->click();
}

// The template's position is relative to the owner's client area, unless DS_ABSALIGN is set.
static QRect FirstPlace(const DialogTemplate& shape, HWND owner, QSize size) {
    if (shape.style & DS_CENTER) return CenteredPlace(size);
    const QSize corner = DialogPixels(shape.x, shape.y);
    POINT place = {corner.width(), corner.height()};
    if (!(shape.style & DS_ABSALIGN)) ClientToScreen(owner, &place);
    return QRect(QPoint(place.x, place.y), size);
}

static HWND MakeDialog(const DialogTemplate& shape, HWND owner, DLGPROC procedure) {
    Window* window = MakeDialogWindow(&kDialogClass, owner, shape.caption, procedure);
    const HWND dialog = window->handle;
    auto* widget = static_cast<DialogWidget*>(window->widget.data());
    widget->SetBody(MakeScrolledContent(widget, &window->dialog->content));
    window->dialog->wanted = DialogPixels(shape.width, shape.height);
    if (!MakeControls(*window, shape)) {
        DestroyWindow(dialog);
        return nullptr;
    }
    PlaceDialog(*window, FirstPlace(shape, owner, window->dialog->wanted));
    return dialog;
}

DialogWidget::~DialogWidget() { TakeInputPanelFrom(this); }

void DialogWidget::SetBody(QWidget* body) { body_ = body; }

void DialogWidget::reject() { QueueCommand(dialog_, IDCANCEL); }

void DialogWidget::keyPressEvent(QKeyEvent* event) {
    const auto modifiers = event->modifiers() & ~Qt::KeypadModifier;
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (enter && modifiers == Qt::NoModifier) return PressDefault(dialog_, *this);
    QDialog::keyPressEvent(event);
}

void DialogWidget::closeEvent(QCloseEvent* event) {
    event->ignore();
    QueueInput(dialog_, WM_CLOSE, 0, 0);
}

// A window is wider than its content where the soft keyboard below needs the width. A hidden window
// has no valid size yet, so the content is centred only from here on.
void DialogWidget::resizeEvent(QResizeEvent*) {
    if (!body_) return;
    body_->setGeometry(contentsRect());
    if (auto* area = qobject_cast<QScrollArea*>(body_)) area->setAlignment(Qt::AlignHCenter);
}

constexpr WindowOperations kDialogOperations = {nullptr, PlaceDialog, ShowOwnWindow, BringOwnWindow,
                                                CallWindowProcedure};

// A property sheet has no procedure of the program: `procedure` is null.
LRESULT CALLBACK DialogWindowProcedure(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam) {
    Window* window = FindWindowRecord(dialog);
    const std::shared_ptr<DialogData> data = window->dialog;
    data->message_result = 0;
    const INT_PTR dealt =
        data->procedure ? data->procedure(dialog, message, wparam, lparam) : FALSE;
    if (AnsweredDirectly(message)) return dealt;
    if (dealt) return data->message_result;
    if (message == WM_CLOSE) return CloseByCancel(dialog), 0;
    return IsWindow(dialog) ? DefWindowProcW(dialog, message, wparam, lparam) : 0;
}

HWND DialogOwner(HWND owner) {
    const Window* window = FindWindowRecord(owner);
    while (window && window->parent && window->widget && !window->widget->isWindow() &&
           !IsProgramWindow(*window))
        window = FindWindowRecord(window->parent);
    return window ? window->handle : nullptr;
}

Window* MakeDialogWindow(const WindowClass* window_class, HWND owner, const std::u16string& title,
                         DLGPROC procedure) {
    const Window* above = FindWindowRecord(owner);
    QWidget* parent = above && above->dialog ? above->widget.data() : DeviceScreen();
    Window* window = AddWindow(window_class, &kDialogOperations, owner, 0);
    window->text = title;
    window->dialog = std::make_shared<DialogData>();
    window->dialog->procedure = procedure;
    auto* widget = new DialogWidget(window->handle, parent);
    window->widget = widget;
    FollowFocusWithDefault(widget, [widget] { return UsualDefault(*widget); });
    window->widget->setWindowTitle(FromWide(title.c_str()));
    return window;
}

// Places every open dialog again, because RoomForDialogs has changed.
static void PlaceDialogsAgain() {
    for (Window* window : AllWindows()) {
        if (!window->dialog || !window->widget || !window->widget->isVisible()) continue;
        const QPoint corner = DeviceScreen()->mapFromGlobal(window->widget->geometry().topLeft());
        const DialogData& data = *window->dialog;
        const QSize size = data.sheet ? data.wanted : data.content->size();
        window->operations->place(*window, QRect(corner, size));
    }
}

void StartDialog(HWND dialog, LPARAM parameter) {
    const QWidget* content = FindWindowRecord(dialog)->dialog->content;
    for (QLineEdit* field : content->findChildren<QLineEdit*>())
        OfferInputPanel(field, PlaceDialogsAgain);
    const HWND first = FirstTabStop(*FindWindowRecord(dialog));
    const LRESULT focus =
        SendMessageW(dialog, WM_INITDIALOG, reinterpret_cast<WPARAM>(first), parameter);
    const Window* window = FindWindowRecord(dialog);
    const Window* control = FindWindowRecord(first);
    if (window && control && (focus || !window->dialog->content->focusWidget()))
        FocusControl(*control);
}

INT_PTR RunDialogLoop(HWND dialog, bool at_once) {
    Window* window = FindWindowRecord(dialog);
    if (!window) return 0;
    const std::shared_ptr<DialogData> data = window->dialog;
    const QPointer<QWidget> below = window->widget->parentWidget();
    PutOverScreen(dialog);
    DropInput();
    const auto over = [&] { return data->ended || QuitPosted() || !FindWindowRecord(dialog); };
    if (!at_once) DispatchPosted(over);
    if (!over()) {
        window = FindWindowRecord(dialog);
        window->widget->setWindowModality(Qt::ApplicationModal);
        window->widget->show();
        LendInputPanel(window->widget);
        window->widget->activateWindow();
        if (window_observer.dialog) window_observer.dialog();
    }
    RunModalLoop([&] { return data->ended || !FindWindowRecord(dialog); });
    TakeFromScreen(dialog);
    DestroyWindow(dialog);
    const Window* outer = TopMostDialog();
    LendInputPanel(outer ? outer->widget.data() : nullptr);
    if (below && below->isVisible()) below->activateWindow();
    return data->ended ? data->result : -1;
}

QScrollArea* MakeScrolledContent(QWidget* parent, QWidget** content) {
    auto* area = new QScrollArea(parent);
    area->setFrameShape(QFrame::NoFrame);
    area->setFocusPolicy(Qt::NoFocus);
    area->viewport()->move(0, 0);  // removes the offset of the frame that it was made with
    *content = new QWidget;
    area->setWidget(*content);
    QObject::connect(qApp, &QApplication::focusChanged, area, [area](QWidget*, QWidget* now) {
        if (now && area->widget()->isAncestorOf(now)) area->ensureWidgetVisible(now, 4, 4);
    });
    return area;
}

// The sheet places its pages. A dialog scrolls what the room cuts off; the scroll bar adds to the
// dialog's size as far as there is room. Above a shown input panel the dialog moves up if it would
// cover the panel, which is needed to type into it.
void PlaceDialog(Window& window, const QRect& rect) {
    if (!window.widget->isWindow()) return;
    const QSize room = RoomForDialogs();
    const QSize whole = window.dialog->wanted.expandedTo(rect.size());
    const int bar = window.widget->style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    QSize size = whole;
    if (whole.height() > room.height()) size.rwidth() += bar;
    if (whole.width() > room.width()) size.rheight() += bar;
    size = size.boundedTo(room);
    const QSize outer = WithFoot(*window.widget, size);
    if (!window.dialog->sheet) window.dialog->content->setFixedSize(whole);
    window.widget->setMaximumSize(whole.expandedTo(outer));
    QPoint corner = rect.topLeft();
    if (room != DeviceScreen()->size())
        corner.setY(std::min(corner.y(), room.height() - size.height()));
    window.widget->setGeometry(QRect(DeviceScreen()->mapToGlobal(corner), outer));
    SendSize(window);
}

INT_PTR DialogBoxParamW(HINSTANCE, LPCWSTR name, HWND owner, DLGPROC procedure, LPARAM parameter) {
    DialogTemplate shape;
    if (!procedure || (owner && !IsWindow(owner)) || !LoadDialogTemplate(name, &shape)) return -1;
    const HWND dialog = MakeDialog(shape, DialogOwner(owner), procedure);
    if (!dialog) return -1;
    StartDialog(dialog, parameter);
    return RunDialogLoop(dialog, shape.style & WS_VISIBLE);
}

BOOL EndDialog(HWND dialog, INT_PTR result) {
    Window* window = FindWindowRecord(dialog);
    if (!window || !window->dialog) return FALSE;
    window->dialog->result = result;
    window->dialog->ended = true;
    return TRUE;
}

BOOL MapDialogRect(HWND dialog, RECT* rect) {
    const Window* window = FindWindowRecord(dialog);
    if (!window || !window->dialog || !rect) return FALSE;
    const QSize corner = DialogPixels(rect->left, rect->top);
    const QSize end = DialogPixels(rect->right, rect->bottom);
    *rect = RECT{corner.width(), corner.height(), end.width(), end.height()};
    return TRUE;
}

LONG_PTR SetWindowLongW(HWND dialog, int index, LONG_PTR value) {
    Window* window = FindWindowRecord(dialog);
    if (!window || !window->dialog || (index != DWLP_MSGRESULT && index != DWLP_USER)) return 0;
    DialogData& data = *window->dialog;
    return std::exchange(index == DWLP_USER ? data.user : data.message_result, value);
}

LONG_PTR GetWindowLongW(HWND dialog, int index) {
    const Window* window = FindWindowRecord(dialog);
    if (!window || !window->dialog || (index != DWLP_MSGRESULT && index != DWLP_USER)) return 0;
    return index == DWLP_USER ? window->dialog->user : window->dialog->message_result;
}

#include "moc_dialogs.cpp"
