// The shell: the input panel's state and the visible part of the device's screen.
#include "slice.h"

BOOL SHSipInfo(UINT action, UINT, LPVOID info, UINT) {
    auto* sip = static_cast<SIPINFO*>(info);
    if (action != SPI_GETSIPINFO || !sip || sip->cbSize < sizeof(SIPINFO)) return FALSE;
    const QSize size = DeviceScreen()->size();
    sip->fdwFlags = 0;
    sip->rcVisibleDesktop = RECT{0, 0, size.width(), size.height()};
    sip->rcSipRect = RECT{0, size.height(), size.width(), size.height()};
    return TRUE;
}
