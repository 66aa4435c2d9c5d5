// Remote access: the system's dial-up peers are the entries.
#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <vector>

#include "platform/qt/services/wide_text.h"
#include "platform/qt/testing_services.h"
#include "windows_ce.h"

namespace {

constexpr DWORD kErrorInvalidSize = 632;

bool EndsWith(const std::string& name, const char* end) {
    const size_t length = strlen(end);
    return name.size() >= length && name.compare(name.size() - length, length, end) == 0;
}

// Hidden files, and what editors and the package manager leave beside a file.
bool IsBackup(const std::string& name) {
    for (const char* end : {"~", ".bak", ".old", ".orig", ".save", ".swp"})
        if (EndsWith(name, end)) return true;
    return name[0] == '.' || name[0] == '#' || name.find(".dpkg-") != std::string::npos ||
           name.find(".rpm") != std::string::npos || name.find(".ucf-") != std::string::npos;
}

bool IsPlainFile(const std::string& path) {
    struct stat status;
    return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

std::vector<std::u16string> DialUpNames() {
    std::vector<std::u16string> names;
    const std::string& folder = services_test_hooks.dial_up_folder;
    DIR* listing = opendir(folder.c_str());
    if (!listing) return names;
    while (const dirent* row = readdir(listing)) {
        const std::string file = row->d_name;
        const std::u16string name = WideFromUtf8(file);
        if (IsBackup(file) || name.size() > RAS_MaxEntryName) continue;
        if (Utf8FromWide(name) != file) continue;  // the program would be told another name
        if (IsPlainFile(folder + "/" + file)) names.push_back(name);
    }
    closedir(listing);
    std::sort(names.begin(), names.end());
    return names;
}

// Peers outlast the program that would dial them, when its package is removed.
bool CanDial() { return access(services_test_hooks.dial_up_program.c_str(), F_OK) == 0; }

void FillEntry(RASENTRYNAMEW* entry, const std::u16string& name) {
    entry->dwSize = sizeof(RASENTRYNAMEW);
    CopyUnits(entry->szEntryName, name.c_str(), RAS_MaxEntryName + 1);
}

}  // namespace

DWORD RasEnumEntries(LPWSTR, LPWSTR, RASENTRYNAMEW* entries, DWORD* size, DWORD* count) {
    if (!size || !count) return ERROR_INVALID_PARAMETER;
    if (entries && (*size < sizeof(*entries) || entries[0].dwSize != sizeof(*entries)))
        return kErrorInvalidSize;
    const std::vector<std::u16string> names =
        CanDial() ? DialUpNames() : std::vector<std::u16string>();
    const size_t room = entries ? *size / sizeof(*entries) : 0;
    const size_t fitting = std::min(room, names.size());
    for (size_t i = 0; i < fitting; i++) FillEntry(&entries[i], names[i]);
    *count = static_cast<DWORD>(fitting);
    *size = static_cast<DWORD>(names.size() * sizeof(*entries));
    return fitting < names.size() ? ERROR_BUFFER_TOO_SMALL : ERROR_SUCCESS;
}

// Only a name that the folder lists is an entry, so that no name leads out of the folder.
DWORD RasGetEntryDialParams(LPCWSTR, RASDIALPARAMSW* parameters, BOOL* has_password) {
    if (!parameters || !has_password) return ERROR_INVALID_PARAMETER;
    if (parameters->dwSize != sizeof(*parameters)) return kErrorInvalidSize;
    const LPCWSTR name = parameters->szEntryName;
    const LPCWSTR end = name + RAS_MaxEntryName + 1;
    if (std::find(name, end, u'\0') == end) return ERROR_INVALID_PARAMETER;
    *has_password = FALSE;
    const std::vector<std::u16string> names = DialUpNames();
    return std::find(names.begin(), names.end(), name) == names.end()
               ? ERROR_CANNOT_FIND_PHONEBOOK_ENTRY
               : ERROR_SUCCESS;
}
