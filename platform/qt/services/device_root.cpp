// Device paths to host paths.
#include "platform/qt/services/device_root.h"

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <vector>

#include "platform/qt/services/wide_text.h"

namespace {

std::string g_root;

// Only an absolute path counts in XDG_DATA_HOME.
std::string UserDataFolder() {
    const char* data = getenv("XDG_DATA_HOME");
    if (data && data[0] == '/') return data;
    const char* home = getenv("HOME");
    if (!home || home[0] != '/') {
        const passwd* user = getpwuid(getuid());
        home = user ? user->pw_dir : "/";
    }
    return std::string(home) + "/.local/share";
}

void MakeFolders(const std::string& path) {
    for (size_t slash = path.find('/', 1); slash != std::string::npos;
         slash = path.find('/', slash + 1))
        mkdir(path.substr(0, slash).c_str(), 0700);
    mkdir(path.c_str(), 0700);
}

std::string UserRoot() {
    const std::string folder = UserDataFolder() + "/quill";
    MakeFolders(folder);
    return folder;
}

std::string AbsolutePath(const std::string& path) {
    char resolved[PATH_MAX];
    if (realpath(path.c_str(), resolved)) return resolved;
    return path;
}

bool IsSeparator(WCHAR unit) { return unit == u'\\' || unit == u'/'; }

}  // namespace

void SetDeviceRoot(const std::string& folder) {
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
        if (*device_path) device_path++;
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
