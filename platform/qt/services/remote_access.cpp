// SPDX-License-Identifier: MIT
// Remote access: the entries are the system's dial-up peers; the states of a dial are read from its
// log.
#include "platform/qt/services/remote_access.h"

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <vector>

#include "platform/qt/services/services.h"
#include "windows_ce.h"

constexpr size_t kLongestLine = 64;  // bytes that count

namespace {

struct StateRow {
    const char* begins;
    DWORD state;
};

}  // namespace

// In the order in which a dial reaches them.
// clang-format off
static const StateRow kStates[] = {
    {"Serial port initialized",            RASCS_PortOpened},
    {"send (ATD",                          RASCS_ConnectDevice},
    {"Serial connection established",      RASCS_DeviceConnected},
    {"Connect: ",                          RASCS_AllDevicesConnected},
    {"sent [PAP AuthReq",                  RASCS_Authenticate},
    {"rcvd [CHAP Challenge",               RASCS_Authenticate},
    {"PAP authentication succeeded",       RASCS_Authenticated},
    {"CHAP authentication succeeded",      RASCS_Authenticated},
    {"sent [IPCP ConfReq",                 RASCS_AuthProject},
    {"local  IP address ",                 RASCS_Connected},
};

namespace {

struct ScriptRow {
    const char* begins;
    DWORD error;
};

}  // namespace

// The modem's answers: chat logs the word that made its script fail.
static const ScriptRow kScriptFailures[] = {
    {"Failed (BUSY",         676},
    {"Failed (NO ANSWER",    678},
    {"Failed (NO CARRIER",   679},
    {"Failed (NO DIALTONE",  680},
    {"Failed (NO DIAL TONE", 680},
};

namespace {

struct ExitRow {
    int code;
    DWORD error;
};

}  // namespace

constexpr DWORD kDisconnected = 628;
constexpr DWORD kUnknown = 635;

static const ExitRow kExits[] = {
    {0,  kDisconnected},
    {2,  625},  // options: the entry is damaged
    {3,  5},    // not installed with root's rights
    {4,  608},  // the kernel has no PPP
    {5,  kDisconnected},  // a signal from elsewhere
    {6,  633},  // the port is in use
    {7,  618},  // the port cannot be opened
    {8,  651},  // the modem's script failed
    {9,  651},
    {10, 720},  // no protocol in common
    {11, 691},  // authentication
    {15, 721},  // the peer does not answer
    {16, 629},  // the modem hung up
    {18, 651},
    {19, 691},
};
// clang-format on

static bool Begins(const std::string& line, const char* begins) {
    return line.rfind(begins, 0) == 0;
}

std::vector<DWORD> DialLog::Take(const char* bytes, size_t count) {
    std::vector<DWORD> reached;
    for (size_t i = 0; i < count; ++i) {
        const bool end = bytes[i] == '\n' || bytes[i] == '\r';
        if (!end && line_.size() < kLongestLine) line_ += bytes[i];
        if (!end) continue;
        TakeLine(&reached);
        line_.clear();
    }
    return reached;
}

void DialLog::TakeLine(std::vector<DWORD>* reached) {
    for (const ScriptRow& row : kScriptFailures)
        if (Begins(line_, row.begins)) script_error_ = row.error;
    for (size_t i = next_row_; i < std::size(kStates); ++i) {
        if (!Begins(line_, kStates[i].begins)) continue;
        // Several rows may report the same state.
        if (i == 0 || next_row_ == 0 || kStates[next_row_ - 1].state != kStates[i].state)
            reached->push_back(kStates[i].state);
        connected_ = kStates[i].state == RASCS_Connected;
        next_row_ = i + 1;
        return;
    }
}

DWORD DialLog::ErrorOf(int exit_code) const {
    if (script_error_) return script_error_;
    if (exit_code < 0) return kDisconnected;
    for (const ExitRow& row : kExits)
        if (row.code == exit_code) return row.error;
    return kUnknown;
}

constexpr DWORD kErrorInvalidSize = 632;

static bool EndsWith(const std::string& name, const char* end) {
    const size_t length = strlen(end);
    return name.size() >= length && name.compare(name.size() - length, length, end) == 0;
}

// True for hidden files and for copies that editors and the package manager leave beside a file.
static bool IsBackup(const std::string& name) {
    for (const char* end : {"~", ".bak", ".old", ".orig", ".save", ".swp"})
        if (EndsWith(name, end)) return true;
    return name[0] == '.' || name[0] == '#' || name.find(".dpkg-") != std::string::npos ||
           name.find(".rpm") != std::string::npos || name.find(".ucf-") != std::string::npos;
}

static bool IsPlainFile(const std::string& path) {
    struct stat status;
    return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

static std::vector<std::u16string> DialUpNames() {
    std::vector<std::u16string> names;
    const std::string folder = TheDialUpHost().folder;
    DIR* listing = opendir(folder.c_str());
    if (!listing) return names;
    while (const dirent* row = readdir(listing)) {
        const std::string file = row->d_name;
        const std::u16string name = WideFromUtf8(file);
        if (IsBackup(file) || name.size() > RAS_MaxEntryName) continue;
        if (Utf8FromWide(name) != file) continue;  // the program would get another name
        if (IsPlainFile(std::string(folder).append("/").append(file))) names.push_back(name);
    }
    closedir(listing);
    std::sort(names.begin(), names.end());
    return names;
}

// The peers stay when the package of the program that dials them is removed.
static bool CanDial() { return access(TheDialUpHost().program, F_OK) == 0; }

static void FillEntry(RASENTRYNAMEW* entry, const std::u16string& name) {
    entry->dwSize = sizeof(RASENTRYNAMEW);
    CopyUnits(entry->szEntryName, name.c_str(), RAS_MaxEntryName + 1);
}

DWORD RasEnumEntries(LPWSTR, LPWSTR, RASENTRYNAMEW* entries, DWORD* size, DWORD* count) {
    if (!size || !count) return ERROR_INVALID_PARAMETER;
    if (entries && (*size < sizeof(*entries) || entries[0].dwSize != sizeof(*entries)))
        return kErrorInvalidSize;
    const std::vector<std::u16string> names =
        CanDial() ? DialUpNames() : std::vector<std::u16string>();
    const size_t room = entries ? *size / sizeof(*entries) : 0;
    const size_t fitting = std::min(room, names.size());
    for (size_t i = 0; i < fitting; ++i) FillEntry(&entries[i], names[i]);
    *count = static_cast<DWORD>(fitting);
    *size = static_cast<DWORD>(names.size() * sizeof(*entries));
    return fitting < names.size() ? ERROR_BUFFER_TOO_SMALL : ERROR_SUCCESS;
}

// Accepts only names that the folder lists, so no name leads out of the folder.
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
