// Files by their device paths.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/qt/services/device_root.h"

namespace {

struct ModeRow {
    WCHAR letter;
    int flags;         // of open
    int flags_update;  // with '+'
    const char* stream;
    const char* stream_update;
};
// clang-format off
const ModeRow kModes[] = {
    {u'r', O_RDONLY,                       O_RDWR,                       "r", "r+"},
    {u'w', O_WRONLY | O_CREAT | O_TRUNC,   O_RDWR | O_CREAT | O_TRUNC,   "w", "w+"},
    {u'a', O_WRONLY | O_CREAT | O_APPEND,  O_RDWR | O_CREAT | O_APPEND,  "a", "a+"},
};
// clang-format on

const ModeRow* FindMode(LPCWSTR mode, bool* update) {
    for (const ModeRow& row : kModes) {
        if (!mode || mode[0] != row.letter) continue;
        *update = false;
        for (LPCWSTR more = mode + 1; *more; more++) {
            if (*more == u'+') *update = true;
            if (*more != u'+' && *more != u'b' && *more != u't') return nullptr;
        }
        return &row;
    }
    return nullptr;
}

// A folder, and anything that could block, is no file of the device.
bool IsPlainFile(int file) {
    struct stat status;
    return fstat(file, &status) == 0 && S_ISREG(status.st_mode);
}

}  // namespace

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
