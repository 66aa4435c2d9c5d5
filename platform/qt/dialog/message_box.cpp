// SPDX-License-Identifier: MIT
// Message boxes and beeps.
#include <QElapsedTimer>
#include <QLabel>
#include <QLayout>
#include <QMessageBox>
#include <QMoveEvent>
#include <QPushButton>
#include <QScreen>
#include <QTimer>

#include "platform/qt/dialog/dialogs.h"
#include "platform/qt/shell/shell.h"
#include "platform/qt/window/device_screen.h"
#include "platform/qt/window/messages.h"
#include "platform/qt/window/window.h"

static bool g_answer = false;

namespace {

struct IconRow {
    UINT type;
    QMessageBox::Icon icon;
};

}  // namespace

static const IconRow kIcons[] = {
    {MB_ICONERROR, QMessageBox::Critical},
    {MB_ICONQUESTION, QMessageBox::Question},
    {MB_ICONEXCLAMATION, QMessageBox::Warning},
    {MB_ICONASTERISK, QMessageBox::Information},
};

constexpr UINT kIconMask = 0xF0;

static QMessageBox::Icon IconOf(UINT type) {
    for (const IconRow& row : kIcons)
        if (row.type == (type & kIconMask)) return row.icon;
    return QMessageBox::NoIcon;
}

// Centres the box over the device's window, or on the desktop while that window is not shown.
static QPoint BoxCorner(QSize size) {
    if (DeviceScreen()->isVisible())
        return DeviceScreen()->mapToGlobal(CenteredPlace(size).topLeft());
    const QRect room = QGuiApplication::primaryScreen()->availableGeometry();
    const QPoint corner = room.center() - QRect(QPoint(0, 0), size).center();
    return QPoint(std::max(corner.x(), room.left()), std::max(corner.y(), room.top()));
}

namespace {

// The toolkit wraps a box's text for the desktop's screen. If the device is narrower than that,
// this class wraps the text for the device and keeps the box within it. The box follows the
// device's window when that moves, because the desktop may place the window only after the box has
// appeared.
class BoundedBox : public QMessageBox {
  public:
    explicit BoundedBox(QWidget* parent) : QMessageBox(parent) {
        DeviceScreen()->installEventFilter(this);
    }

  protected:
    void showEvent(QShowEvent* event) override {
        QMessageBox::showEvent(event);
        if (parentWidget() && width() > DeviceScreen()->width()) Narrow();
        setGeometry(QRect(BoxCorner(size()), size()));
    }
    bool event(QEvent* event) override {
        const bool keep = narrowed_ && event->type() == QEvent::LayoutRequest;
        // NOLINTNEXTLINE(bugprone-parent-virtual-call): QMessageBox would widen it again
        return keep ? QDialog::event(event) : QMessageBox::event(event);
    }
    bool eventFilter(QObject* device, QEvent* event) override {
        if (event->type() == QEvent::Move && isVisible()) {
            const auto* way = static_cast<QMoveEvent*>(event);
            move(pos() + way->pos() - way->oldPos());
        }
        return QMessageBox::eventFilter(device, event);
    }

  private:
    void Narrow() {
        narrowed_ = true;
        findChild<QLabel*>("qt_msgbox_label")->setWordWrap(true);
        layout()->activate();
        const int width = std::max(DeviceScreen()->width(), layout()->totalMinimumSize().width());
        setFixedSize(width, layout()->totalHeightForWidth(width));
    }

    bool narrowed_ = false;
};

}  // namespace

int MessageBoxW(HWND owner, LPCWSTR text, LPCWSTR caption, UINT type) {
    Window* window = TopLevelOf(FindWindowRecord(owner));
    BoundedBox box(window ? ParentOfBox() : nullptr);
    box.setWindowTitle(FromWide(caption));
    box.setTextFormat(Qt::PlainText);
    box.setText(FromWide(text));
    box.setIcon(IconOf(type));
    QPushButton* ok = box.addButton(QMessageBox::Ok);
    if ((type & 0xFu) == MB_OKCANCEL) box.addButton(QMessageBox::Cancel);
    box.setDefaultButton(ok);
    box.setWindowModality(Qt::ApplicationModal);
    DropInput();
    box.show();
    if (g_answer) QTimer::singleShot(0, ok, &QPushButton::click);
    RunModalLoop([&] { return !box.isVisible(); });
    if (window) ReturnFocus();
    // If OK is the only button, Esc and the close button count as OK.
    const bool single = (type & 0xFu) == MB_OK;
    return box.clickedButton() == ok || (single && !QuitPosted()) ? IDOK : IDCANCEL;
}

constexpr int kBeepMilliseconds = 100;  // at least so long between two sounds

BOOL MessageBeep(UINT type) {
    if (window_observer.beep) window_observer.beep(type);
    // A host that rings without end must not fill the desktop's queue of sounds.
    static QElapsedTimer since;
    if (!since.isValid() || since.elapsed() >= kBeepMilliseconds) {
        since.start();
        QApplication::beep();
    }
    return TRUE;
}

void AnswerMessageBoxes(bool answer) { g_answer = answer; }
