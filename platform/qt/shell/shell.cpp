// SPDX-License-Identifier: MIT
// The shell: puts the foot on the device's screen, and reports the input panel's place and the
// visible part of the screen.
#include "platform/qt/shell/shell.h"

#include <QWindow>

#include "platform/qt/shell/input_panel.h"
#include "platform/qt/shell/menu_bar.h"
#include "platform/qt/window/device_screen.h"

static RECT PanelRect() {
    const QRect panel = InputPanelPlace();
    return RECT{panel.left(), panel.top(), panel.left() + panel.width(),
                panel.top() + panel.height()};
}

static bool ReadState(SIPINFO* info) {
    const QSize size = DeviceScreen()->size();
    const bool shown = InputPanelShown();
    info->fdwFlags = shown ? SIPF_ON : 0;
    info->rcSipRect = PanelRect();
    info->rcVisibleDesktop = RECT{0, 0, size.width(), shown ? info->rcSipRect.top : size.height()};
    return true;
}

static bool TakeState(const SIPINFO& info) {
    ShowInputPanel((info.fdwFlags & SIPF_ON) != 0);
    return true;
}

void InitCommonControls() {
    RegisterStatusWindow();
    RegisterCommandBar();
}

void FurnishShell() {
    auto* strip = new MenuStrip(DeviceScreen());
    auto* panel = new InputPanel(DeviceScreen());
    QObject::connect(strip->panel_button(), &QToolButton::clicked, strip, ShowInputPanel);
    FurnishScreen({strip, panel, ActivateMenuBar});
}

bool InputPanelShown() { return !ShellInputPanel()->isHidden(); }

void ShowInputPanel(bool show) {
    if (show == InputPanelShown()) return;
    ShellInputPanel()->setVisible(show);
    ShellMenuStrip()->panel_button()->setChecked(show);
    for (const Window* window : AllWindows())
        if (IsProgramWindow(*window))
            PostMessageW(window->handle, WM_SETTINGCHANGE, SPI_SETSIPINFO, 0);
}

void LendInputPanel(QWidget* dialog) {
    constexpr Qt::WindowFlags kOwnWindow =
        Qt::Tool | Qt::FramelessWindowHint | Qt::WindowDoesNotAcceptFocus;
    InputPanel* panel = ShellInputPanel();
    if (!panel || panel->isHidden()) return;
    const QRect place = InputPanelPlace();
    const QRect on_desktop(DeviceScreen()->mapToGlobal(place.topLeft()), place.size());
    const bool free = dialog && !dialog->geometry().intersects(on_desktop);
    if (!free && !panel->isWindow()) return;
    panel->LetGo();  // the release of its mouse button goes elsewhere
    panel->setParent(DeviceScreen(), free ? kOwnWindow : Qt::Widget);
    panel->setAttribute(Qt::WA_ShowWithoutActivating);
    if (free) {
        panel->winId();  // creates the native window, which then follows the dialog
        panel->windowHandle()->setTransientParent(dialog->windowHandle());
    }
    ArrangeScreen();
    panel->show();
}

QRect CenteredPlace(QSize size) {
    QRect screen = DeviceScreen()->rect();
    if (InputPanelShown() && size.height() <= InputPanelPlace().top())
        screen.setHeight(InputPanelPlace().top());
    return QRect(QPoint(std::max((screen.width() - size.width()) / 2, 0),
                        std::max((screen.height() - size.height()) / 2, 0)),
                 size);
}

BOOL SHSipInfo(UINT action, UINT, LPVOID info, UINT) {
    auto* sip = static_cast<SIPINFO*>(info);
    if (!sip || sip->cbSize < sizeof(SIPINFO)) return FALSE;
    if (action == SPI_GETSIPINFO) return ReadState(sip);
    return action == SPI_SETSIPINFO && TakeState(*sip);
}
