// The import of "\mconfig.cfg" into the registry.
#include "settings/config_file.h"

#include "settings/store.h"
#include "text/text.h"

namespace {

constexpr LPCWSTR kFileName = TEXT("\\mconfig.cfg");
constexpr int kLineSize = 80;  // a line's 79 characters and the terminator

// The text between the first double quote of the line and the next one, which is cut off there;
// null if there is none, or nothing in between.
const char* QuotedText(char* line) {
    char* first = strchr(line, '"');
    char* last = first ? strchr(first + 1, '"') : nullptr;
    if (!last || last == first + 1) return nullptr;
    *last = 0;
    return first + 1;
}

DWORD NumberOf(const char* token) {
    const long long value = strtoll(token, nullptr, 0);
    if (value < INT32_MIN) return static_cast<DWORD>(INT32_MIN);
    return value > UINT32_MAX ? UINT32_MAX : static_cast<DWORD>(value);
}

void ImportString(LPCWSTR name, char* line) {
    const char* quoted = QuotedText(line);
    if (!quoted) return;
    WCHAR text[kLineSize];
    WideFromAnsi(quoted, text, kLineSize);
    WriteString(name, text);
}

void ImportLine(char* line) {
    if (line[0] == '#') return;
    char name[kLineSize], value[kLineSize];
    if (sscanf(line, "%79s = %79s", name, value) != 2) return;
    WCHAR value_name[kLineSize];
    WideFromAnsi(name, value_name, kLineSize);
    if (value[0] == '"')
        ImportString(value_name, line);
    else
        WriteNumber(value_name, NumberOf(value));
}

}  // namespace

void ImportConfigFile(HWND owner) {
    FILE* file = _wfopen(kFileName, TEXT("r"));
    if (!file) return;
    MessageBoxW(owner, TEXT("Installing configuration from file \\mconfig.cfg "),
                TEXT("Quill Telnet"), MB_OK | MB_ICONINFORMATION);
    char line[kLineSize];
    while (fgets(line, kLineSize, file)) ImportLine(line);
    fclose(file);
    DeleteFileW(kFileName);
}
