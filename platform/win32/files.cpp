// SPDX-License-Identifier: MIT
// Opens and deletes files by their device paths.
#include "device.h"

FILE* DeviceOpenFile(LPCWSTR path, LPCWSTR mode) {
    const std::wstring file = DevicePath(path);
    return file.empty() || !mode ? nullptr : _wfopen(file.c_str(), mode);
}

BOOL DeviceDeleteFile(LPCWSTR path) {
    const std::wstring file = DevicePath(path);
    return !file.empty() && DeleteFileW(file.c_str());
}
