// SPDX-License-Identifier: MIT
// The menu bar at the bottom of the device. Its menus open upward. They are the toolkit's menus, so
// mouse, touch, Alt with a letter and the arrow keys reach every entry.
#include "platform/qt/shell/shell.h"

#include <map>
#include <QApplication>
#include <QIconEngine>
#include <QMenu>
#include <QPainter>
#include <QProxyStyle>
#include <QStyleOption>

#include "platform/qt/services/resources.h"
#include "platform/qt/window/device_screen.h"
#include "platform/qt/window/messages.h"

constexpr int kPanelButtonWidth = 34;
constexpr QSize kKeyboardSize(22, 14);

static QPointer<MenuStrip> g_strip;

namespace {

// One of a style's own icons, which is loaded when it is first drawn. To load one, the toolkit
// loads all its plugins for pictures, and it wants the icon of a bar's hidden button at once.
class LateIcon : public QIconEngine {
  public:
    LateIcon(const QStyle* style, QStyle::StandardPixmap which) : style_(style), which_(which) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode,
               QIcon::State state) override {
        Load().paint(painter, rect, Qt::AlignCenter, mode, state);
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        return Load().pixmap(size, 1, mode, state);
    }
    QIconEngine* clone() const override { return new LateIcon(*this); }

  private:
    const QIcon& Load() {
        if (icon_.isNull() && style_) icon_ = style_->standardIcon(which_);
        return icon_;
    }

    QPointer<const QStyle> style_;
    QStyle::StandardPixmap which_;
    QIcon icon_;
};

// The style of all windows, which is the desktop's with four differences.
//
// An icon is made once: the toolkit keeps the name of each one that it has drawn, for ever.
//
// The menu of a scroll bar would open in a loop of its own, in which the program's messages wait.
//
// Some styles draw a line below the bar: a piece below each title and a piece below the rest, with
// gaps between them. This bar is the last row of the screen and needs no line below it. A pixel
// that is not a whole number of the screen's pixels can touch one more of those on each side.
class DeviceStyle : public QProxyStyle {
  public:
    QIcon standardIcon(StandardPixmap which, const QStyleOption* option,
                       const QWidget* widget) const override {
        if (option) return QProxyStyle::standardIcon(which, option, widget);
        QIcon& icon = icons_[which];
        if (icon.isNull())
            icon = which == SP_ToolBarHorizontalExtensionButton
                       ? QIcon(new LateIcon(baseStyle(), which))
                       : QProxyStyle::standardIcon(which, option, widget);
        return icon;
    }
    void polish(QPalette& palette) override {
        icons_.clear();  // those of the desktop may have changed, too
        QProxyStyle::polish(palette);
    }
    using QProxyStyle::polish;
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* result) const override {
        if (hint == SH_ScrollBar_ContextMenu) return 0;
        return QProxyStyle::styleHint(hint, option, widget, result);
    }
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override {
        if (element == CE_MenuBarEmptyArea) return;
        QProxyStyle::drawControl(element, option, painter, widget);
        if (element != CE_MenuBarItem || option->state & State_Selected) return;
        const double touched = 1 / painter->device()->devicePixelRatioF();
        QRectF line(option->rect);
        line.setTop(line.bottom() - 1 - touched);
        line.setBottom(line.bottom() + touched);
        painter->fillRect(line, option->palette.window());
    }

  private:
    mutable std::map<StandardPixmap, QIcon> icons_;
};

// A small keyboard, drawn for whatever density the screen has.
class KeyboardPicture : public QIconEngine {
  public:
    explicit KeyboardPicture(const QColor& color) : color_(color) {}

    // NOLINTBEGIN(readability-magic-numbers): the places of a picture
    void paint(QPainter* painter, const QRect& rect, QIcon::Mode, QIcon::State) override {
        painter->save();
        painter->translate(rect.topLeft());
        painter->scale(double(rect.width()) / kKeyboardSize.width(),
                       double(rect.height()) / kKeyboardSize.height());
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(QPen(color_, 1));
        painter->drawRoundedRect(QRectF(0.5, 0.5, 21, 13), 2, 2);
        for (int row = 0; row < 2; ++row)
            for (int key = 0; key < 6; ++key)
                painter->fillRect(QRectF(3 + key * 2.8, 3 + row * 3, 1.8, 1.8), color_);
        painter->fillRect(QRectF(6, 9.4, 10, 1.8), color_);
        painter->restore();
    }
    // NOLINTEND(readability-magic-numbers)
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap picture(size);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        paint(&painter, QRect(QPoint(0, 0), size), mode, state);
        return picture;
    }
    QIconEngine* clone() const override { return new KeyboardPicture(color_); }

  private:
    QColor color_;
};

// Opens the menu of the titles that do not fit into the bar. Their button would open it in a loop
// of its own, in which the program's messages wait and the terminal does not go on.
class RestOpener : public QObject {
  public:
    using QObject::QObject;

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() != QEvent::MouseButtonPress) return false;
        QMenu* menu = static_cast<QToolButton*>(watched)->menu();
        const QPoint above(0, menu ? -menu->sizeHint().height() : 0);
        if (menu) menu->popup(static_cast<QWidget*>(watched)->mapToGlobal(above));
        return true;
    }
};

}  // namespace

// Fills all menus at the start. A menu that is filled only when it is about to be shown for the
// first time would miss the arrow keys.
static void FillMenu(QMenu* menu, HWND window, const std::vector<MenuItem>& items) {
    for (const MenuItem& item : items) {
        if (item.text.empty()) {
            menu->addSeparator();
        } else if (!item.items.empty()) {
            FillMenu(menu->addMenu(FromWide(item.text.c_str())), window, item.items);
        } else {
            QAction* action = menu->addAction(FromWide(item.text.c_str()));
            const WORD id = item.id;
            action->setData(id);
            QObject::connect(action, &QAction::triggered, action,
                             [window, id] { QueueInput(window, WM_COMMAND, id, 0); });
        }
    }
}

static LRESULT CALLBACK MenuBarProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_DESTROY && ShellMenuStrip()) ShellMenuStrip()->RemoveMenus(window);
    return DefWindowProcW(window, message, wparam, lparam);
}

void UseDeviceStyle() {
    static QPointer<QStyle> style;
    if (!style) QApplication::setStyle(style = new DeviceStyle);
}

MenuStrip::MenuStrip(QWidget* screen) : QWidget(screen) {
    g_strip = this;
    setAutoFillBackground(true);
    bar_ = new QMenuBar(this);
    bar_->setNativeMenuBar(false);
    bar_->setDefaultUp(true);
    if (auto* rest = bar_->findChild<QToolButton*>("qt_menubar_ext_button"))
        rest->installEventFilter(new RestOpener(this));
    panel_button_ = new QToolButton(this);
    panel_button_->setAutoRaise(true);
    panel_button_->setFocusPolicy(Qt::NoFocus);
    panel_button_->setCheckable(true);
    panel_button_->setToolTip("Keyboard");
    panel_button_->setAccessibleName("Keyboard");
    panel_button_->setIconSize(kKeyboardSize);
    panel_button_->setIcon(QIcon(new KeyboardPicture(palette().color(QPalette::WindowText))));
}

void MenuStrip::resizeEvent(QResizeEvent*) {
    const int bar_width = std::max(width() - kPanelButtonWidth, 0);
    const int bar_height = std::min(bar_->sizeHint().height(), height());
    bar_->setGeometry(0, (height() - bar_height) / 2, bar_width, bar_height);
    panel_button_->setGeometry(bar_width, 1, kPanelButtonWidth, height() - 2);
}

void MenuStrip::ShowMenus(HWND bar, HWND window, const std::vector<MenuItem>& menus) {
    RemoveMenus(owner_);
    for (const MenuItem& menu : menus)
        FillMenu(bar_->addMenu(FromWide(menu.text.c_str())), window, menu.items);
    owner_ = bar;
    resizeEvent(nullptr);
}

// Closes a menu that is open. It may be the one whose key or click is being handled, so it is
// deleted later. A bar that Alt has chosen gives the keys back.
void MenuStrip::RemoveMenus(HWND bar) {
    if (bar != owner_) return;
    for (QMenu* menu : bar_->findChildren<QMenu*>(QString(), Qt::FindDirectChildrenOnly))
        menu->close();
    for (const QAction* title : bar_->actions()) title->menu()->deleteLater();
    bar_->clear();
    if (bar_->hasFocus()) ReturnFocus();
    owner_ = nullptr;
}

MenuStrip* ShellMenuStrip() { return g_strip; }

void RegisterMenuBar() { RegisterSystemClass(u"QuillMenuBar", MenuBarProcedure); }

bool ActivateMenuBar() {
    QMenuBar* bar = ShellMenuStrip()->bar();
    if (bar->actions().isEmpty()) return false;
    bar->setActiveAction(bar->actions().first());
    return true;
}

BOOL SHCreateMenuBar(SHMENUBARINFO* info) {
    if (!info || info->cbSize != sizeof(SHMENUBARINFO) || !(info->dwFlags & SHCMBF_HMENU))
        return FALSE;
    const std::vector<MenuItem> menus = ReadMenu(static_cast<WORD>(info->nToolBarId));
    if (menus.empty()) return FALSE;
    info->hwndMB = CreateWindowExW(0, u"QuillMenuBar", nullptr, WS_CHILD, 0, 0, 0, 0,
                                   info->hwndParent, nullptr, info->hInstRes, nullptr);
    if (!info->hwndMB) return FALSE;
    ShellMenuStrip()->ShowMenus(info->hwndMB, info->hwndParent, menus);
    return TRUE;
}
