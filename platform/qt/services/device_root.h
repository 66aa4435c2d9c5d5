// The host's folder that is the root of the device's files.
#ifndef QUILL_PLATFORM_QT_SERVICES_DEVICE_ROOT_H
#define QUILL_PLATFORM_QT_SERVICES_DEVICE_ROOT_H

#include <string>

#include "windows_ce.h"

// Takes an existing folder; nothing is created in its place. "" stands for the user's own:
// $XDG_DATA_HOME/quill, or ~/.local/share/quill, made with mode 0700 where it is missing.
void SetDeviceRoot(const std::string& folder);
// Absolute, without a slash at the end; the user's own while none was set.
const std::string& DeviceRoot();
// "\mconfig.cfg" gives ROOT/mconfig.cfg. ".." ends at the root. "" for null.
std::string DevicePath(LPCWSTR device_path);

#endif
