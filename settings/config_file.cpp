// The import of "\mconfig.cfg" into the registry.
#include "settings/config_file.h"

#include <algorithm>

#include "settings/store.h"
#include "text/ansi_text.h"

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

// Held to 32 bits, at INT32_MIN and UINT32_MAX. Behind the sign there is no second one.
DWORD NumberOf(const char* token) {
    const bool negative = token[0] == '-';
    const char* digits = negative || token[0] == '+' ? token + 1 : token;
    if (digits[0] == '-' || digits[0] == '+') return 0;
    const unsigned long size = strtoul(digits, nullptr, 0);
    if (!negative) return static_cast<DWORD>(std::min<unsigned long>(size, UINT32_MAX));
    return 0 - static_cast<DWORD>(std::min<unsigned long>(size, 0x80000000u));
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
