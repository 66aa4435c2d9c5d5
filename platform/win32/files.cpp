// SPDX-License-Identifier: MIT
// Files of the device: translates their paths to paths of the system, opens and deletes them.
#include "device.h"
// Comes after device.h, whose headers this one needs.
#include <shlobj.h>

#include <vector>

static std::wstring UserRoot() {
    wchar_t data[MAX_PATH] = {};
    if (SHGetFolderPathW(nullptr, CSIDL_APPDATA | CSIDL_FLAG_CREATE, nullptr, 0, data) != S_OK)
        return L"";
    const std::wstring folder = std::wstring(data) + L"\\Quill";
    CreateDirectoryW(folder.c_str(), nullptr);
    return folder;
}

static bool IsSeparator(wchar_t unit) { return unit == L'\\' || unit == L'/'; }

// Drops colons: a colon would name a drive, or a stream of the file.
static std::wstring TakeName(LPCWSTR* path) {
    std::wstring name;
    for (; **path && !IsSeparator(**path); ++*path)
        if (**path != L':') name.push_back(**path);
    if (**path) ++*path;
    return name;
}

const std::wstring& DeviceRoot() {
    static const std::wstring root = UserRoot();
    return root;
}

std::wstring DevicePath(LPCWSTR device_path) {
    if (!device_path || DeviceRoot().empty()) return L"";
    std::vector<std::wstring> names;
    while (*device_path) {
        const std::wstring name = TakeName(&device_path);
        if (name.empty() || name == L".") continue;
        if (name != L"..") {
            names.push_back(name);
        } else if (!names.empty()) {
            names.pop_back();
        }
    }
    std::wstring path = DeviceRoot();
    for (const std::wstring& name : names) path.append(L"\\").append(name);
    return path;
}

FILE* DeviceOpenFile(LPCWSTR path, LPCWSTR mode) {
    const std::wstring file = DevicePath(path);
    return file.empty() || !mode ? nullptr : _wfopen(file.c_str(), mode);
}

BOOL DeviceDeleteFile(LPCWSTR path) {
    const std::wstring file = DevicePath(path);
    return !file.empty() && DeleteFileW(file.c_str());
}
