// SPDX-License-Identifier: MIT
// Translates device paths to host paths, and opens and deletes files by their device paths.
#include "platform/qt/services/services.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <vector>

constexpr mode_t kOwnerOnly = 0700;

static std::string g_root;

// XDG_DATA_HOME counts only if it is an absolute path.
static std::string UserDataFolder() {
    const char* data = getenv("XDG_DATA_HOME");
    if (data && data[0] == '/') return data;
    const char* home = getenv("HOME");
    if (!home || home[0] != '/') {
        const passwd* user = getpwuid(getuid());
        home = user ? user->pw_dir : "/";
    }
    return std::string(home) + "/.local/share";
}

static std::string AbsolutePath(const std::string& path) {
    char resolved[PATH_MAX];
    if (realpath(path.c_str(), resolved)) return resolved;
    return path;
}

static bool IsSeparator(WCHAR unit) { return unit == u'\\' || unit == u'/'; }

std::string UserRoot() { return UserDataFolder() + "/quill"; }

void MakeFolders(const std::string& path) {
    for (size_t slash = path.find('/', 1); slash != std::string::npos;
         slash = path.find('/', slash + 1))
        mkdir(path.substr(0, slash).c_str(), kOwnerOnly);
    mkdir(path.c_str(), kOwnerOnly);
}

void SetDeviceRoot(const std::string& folder) {
    if (folder.empty()) MakeFolders(UserRoot());
    g_root = AbsolutePath(folder.empty() ? UserRoot() : folder);
}

const std::string& DeviceRoot() {
    if (g_root.empty()) SetDeviceRoot("");
    return g_root;
}

std::string DevicePath(LPCWSTR device_path) {
    if (!device_path) return "";
    std::vector<std::u16string> names;
    while (*device_path) {
        std::u16string name;
        while (*device_path && !IsSeparator(*device_path)) name.push_back(*device_path++);
        if (*device_path) ++device_path;
        if (name.empty() || name == u".") continue;
        if (name != u"..") {
            names.push_back(name);
        } else if (!names.empty()) {
            names.pop_back();
        }
    }
    std::string path = DeviceRoot();
    for (const std::u16string& name : names) path.append("/").append(Utf8FromWide(name));
    return path;
}

namespace {

struct ModeRow {
    WCHAR letter;
    int flags;         // flags of open
    int flags_update;  // with '+'
    const char* stream;
    const char* stream_update;
};

}  // namespace
// clang-format off
static const ModeRow kModes[] = {
    {u'r', O_RDONLY,                       O_RDWR,                       "r", "r+"},
    {u'w', O_WRONLY | O_CREAT | O_TRUNC,   O_RDWR | O_CREAT | O_TRUNC,   "w", "w+"},
    {u'a', O_WRONLY | O_CREAT | O_APPEND,  O_RDWR | O_CREAT | O_APPEND,  "a", "a+"},
};
// clang-format on

static const ModeRow* FindMode(LPCWSTR mode, bool* update) {
    for (const ModeRow& row : kModes) {
        if (!mode || mode[0] != row.letter) continue;
        *update = false;
        for (LPCWSTR more = mode + 1; *more; ++more) {
            if (*more == u'+') *update = true;
            if (*more != u'+' && *more != u'b' && *more != u't') return nullptr;
        }
        return &row;
    }
    return nullptr;
}

// Folders, and anything whose reading could block, do not count as files of the device.
static bool IsPlainFile(int file) {
    struct stat status;
    return fstat(file, &status) == 0 && S_ISREG(status.st_mode);
}

FILE* _wfopen(LPCWSTR path, LPCWSTR mode) {
    bool update = false;
    const ModeRow* row = FindMode(mode, &update);
    if (!path || !row) return nullptr;
    const int flags = (update ? row->flags_update : row->flags) | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    const int file = open(DevicePath(path).c_str(), flags, 0600);
    if (file < 0) return nullptr;
    FILE* stream = nullptr;
    if (IsPlainFile(file)) stream = fdopen(file, update ? row->stream_update : row->stream);
    if (!stream) close(file);
    return stream;
}

BOOL DeleteFileW(LPCWSTR path) { return path && unlink(DevicePath(path).c_str()) == 0; }
