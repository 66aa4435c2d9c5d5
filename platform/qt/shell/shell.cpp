// The shell: the input panel's state and the visible part of the device's screen.
#include "platform/qt/window/device_screen.h"

namespace {

RECT PanelRect() {
    const QRect panel = InputPanelPlace();
    return RECT{panel.left(), panel.top(), panel.left() + panel.width(),
                panel.top() + panel.height()};
}

bool ReadState(SIPINFO* info) {
    const QSize size = DeviceScreen()->size();
    const bool shown = InputPanelShown();
    info->fdwFlags = shown ? SIPF_ON : 0;
    info->rcSipRect = PanelRect();
    info->rcVisibleDesktop = RECT{0, 0, size.width(), shown ? info->rcSipRect.top : size.height()};
    return true;
}

bool TakeState(const SIPINFO& info) {
    ShowInputPanel((info.fdwFlags & SIPF_ON) != 0);
    return true;
}

}  // namespace

bool InputPanelShown() { return !ShellInputPanel()->isHidden(); }

void ShowInputPanel(bool show) {
    if (show == InputPanelShown()) return;
    ShellInputPanel()->setVisible(show);
    ShellMenuStrip()->panel_button()->setChecked(show);
    for (const Window* window : AllWindows())
        if (IsProgramWindow(*window))
            PostMessageW(window->handle, WM_SETTINGCHANGE, SPI_SETSIPINFO, 0);
}

BOOL SHSipInfo(UINT action, UINT, LPVOID info, UINT) {
    auto* sip = static_cast<SIPINFO*>(info);
    if (!sip || sip->cbSize < sizeof(SIPINFO)) return FALSE;
    if (action == SPI_GETSIPINFO) return ReadState(sip);
    return action == SPI_SETSIPINFO && TakeState(*sip);
}
