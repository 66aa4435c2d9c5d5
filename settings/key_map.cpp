// SPDX-License-Identifier: MIT
// The key table, and the steps from a virtual key to the bytes that it sends.
#include "settings/key_map.h"

#include "settings/settings.h"
#include "text/text.h"

// \217 is the 8-bit SS3, \233 the 8-bit CSI. F1 to F4, Ctrl 1 to Ctrl 4, HOME, END, PGUP and PGDN
// use these; the other sequences use 7-bit forms. Hosts expect exactly this.
// clang-format off
KeyMapEntry key_map[kKeyRows + 1] = {
    {"f1",           "\\217P",    nullptr},
    {"f2",           "\\217Q",    nullptr},
    {"f3",           "\\217R",    nullptr},
    {"f4",           "\\217S",    nullptr},
    {"f5",           "\\033[15~", nullptr},
    {"f6",           "\\033[17~", nullptr},
    {"f7",           "\\033[18~", nullptr},
    {"f8",           "\\033[19~", nullptr},
    {"f9",           "\\033[20~", nullptr},
    {"f10",          "\\033[21~", nullptr},
    {"f11",          "\\033[23~", nullptr},
    {"f12",          "\\033[24~", nullptr},
    {"f13",          "\\033[25~", nullptr},
    {"f14",          "\\033[26~", nullptr},
    {"f15",          "\\033[28~", nullptr},
    {"f16",          "\\033[29~", nullptr},
    {"f17",          "\\033[31~", nullptr},
    {"f18",          "\\033[32~", nullptr},
    {"f19",          "\\033[33~", nullptr},
    {"f20",          "\\033[34~", nullptr},
    {"shift f1",     "\\033[25~", nullptr},
    {"shift f2",     "\\033[26~", nullptr},
    {"shift f3",     "\\033[28~", nullptr},
    {"shift f4",     "\\033[29~", nullptr},
    {"shift f5",     "\\033[31~", nullptr},
    {"shift f6",     "\\033[32~", nullptr},
    {"shift f7",     "\\033[33~", nullptr},
    {"shift f8",     "\\033[34~", nullptr},
    {"shift f9",     "",          nullptr},
    {"shift f10",    "",          nullptr},
    {"shift f11",    "",          nullptr},
    {"shift f12",    "",          nullptr},
    {"HOME",         "\\2331~",   nullptr},
    {"ENTER",        "\\015",     nullptr},
    {"END",          "\\2334~",   nullptr},
    {"PGUP",         "\\2335~",   nullptr},
    {"PGDN",         "\\2336~",   nullptr},
    {"ESC",          "\\033",     nullptr},
    {"DEL",          "\\177",     nullptr},
    {"BACKSPACE",    "\\008",     nullptr},  // the first byte is 0: the key sends its character
    {"TAB",          "\\011",     nullptr},
    {"SHIFTTAB",     "\\011",     nullptr},
    {"Ctrl 0",       "\\033[21~", nullptr},
    {"Ctrl 1",       "\\217P",    nullptr},
    {"Ctrl 2",       "\\217Q",    nullptr},
    {"Ctrl 3",       "\\217R",    nullptr},
    {"Ctrl 4",       "\\217S",    nullptr},
    {"Ctrl 5",       "\\033[15~", nullptr},
    {"Ctrl 6",       "\\033[17~", nullptr},
    {"Ctrl 7",       "\\033[18~", nullptr},
    {"Ctrl 8",       "\\033[19~", nullptr},
    {"Ctrl 9",       "\\033[20~", nullptr},
    {"Shift Ctrl 0", "\\033[34~", nullptr},
    {"Shift Ctrl 1", "\\033[23~", nullptr},
    {"Shift Ctrl 2", "\\033[24~", nullptr},
    {"Shift Ctrl 3", "\\033[25~", nullptr},
    {"Shift Ctrl 4", "\\033[26~", nullptr},
    {"Shift Ctrl 5", "\\033[28~", nullptr},
    {"Shift Ctrl 6", "\\033[29~", nullptr},
    {"Shift Ctrl 7", "\\033[31~", nullptr},
    {"Shift Ctrl 8", "\\033[32~", nullptr},
    {"Shift Ctrl 9", "\\033[33~", nullptr},
    {"Arrow up",     "\\033[A",   nullptr},
    {"Arrow down",   "\\033[B",   nullptr},
    {"Arrow left",   "\\033[D",   nullptr},
    {"Arrow right",  "\\033[C",   nullptr},
    {nullptr,        "",          nullptr},
};
// clang-format on

constexpr int kNotMapped = -1;
constexpr int kBackspaceRow = 39;

namespace {

struct KeyRange {
    int first;  // virtual keys
    int last;
    int row;                // row of `first` without modifiers, or kNotMapped
    int row_shift;          // with Shift
    int row_control;        // with Ctrl
    int row_shift_control;  // with both
};

}  // namespace

// clang-format off
static const KeyRange kRanges[] = {
    // keys               plain       Shift       Ctrl  Shift+Ctrl
    {VK_F1,     VK_F20,    0,         20,          0,   20},
    {'0',       '9',       kNotMapped, kNotMapped, 42,  52},
    {VK_HOME,   VK_HOME,   32,        32,         32,   32},
    {VK_BACK,   VK_BACK,   39,        39,         39,   39},
    {VK_TAB,    VK_TAB,    40,        41,         40,   41},
    {VK_RETURN, VK_RETURN, 33,        33,         33,   33},
    {VK_ESCAPE, VK_ESCAPE, 37,        37,         37,   37},
    {VK_PRIOR,  VK_PRIOR,  35,        35,         35,   35},
    {VK_NEXT,   VK_NEXT,   36,        36,         36,   36},
    {VK_END,    VK_END,    34,        34,         34,   34},
    {VK_LEFT,   VK_LEFT,   64,        64,         64,   64},
    {VK_UP,     VK_UP,     62,        62,         62,   62},
    {VK_RIGHT,  VK_RIGHT,  65,        65,         65,   65},
    {VK_DOWN,   VK_DOWN,   63,        63,         63,   63},
    {VK_DELETE, VK_DELETE, 38,        38,         38,   38},
};
// clang-format on

constexpr int kSavedUnits = 80;  // of a sequence or a default, without the terminator
constexpr int kNameSize = 16;
constexpr LPCWSTR kValueFormat = TEXT("key%d");

static bool EitherDown(int left, int right) {
    return GetKeyState(left) != 0 || GetKeyState(right) != 0;
}

static int RowOfRange(const KeyRange& range) {
    const bool shift = EitherDown(VK_LSHIFT, VK_RSHIFT);
    if (EitherDown(VK_LCONTROL, VK_RCONTROL))
        return shift ? range.row_shift_control : range.row_control;
    return shift ? range.row_shift : range.row;
}

static int RowOfKey(int virtual_key) {
    for (const KeyRange& range : kRanges) {
        if (virtual_key < range.first || virtual_key > range.last) continue;
        const int row = RowOfRange(range);
        return row == kNotMapped ? kNotMapped : row + virtual_key - range.first;
    }
    return kNotMapped;
}

static bool HoldsDefault(const KeyMapEntry& row) {
    return row.text && strcmp(row.text, row.defaultText) == 0;
}

static void ForgetText(KeyMapEntry* row) {
    free(row->text);
    row->text = nullptr;
}

static bool LoadRow(int i) {
    WCHAR name[kNameSize], fallback[kSavedUnits + 1];
    wsprintfW(name, kValueFormat, i);
    WideFromAnsi(key_map[i].defaultText, fallback, kSavedUnits + 1);
    return SetKeyText(&key_map[i], ReadString(name, fallback)) != 0;
}

const char* UnescapeKeyText(const char* text) {
    static BYTE bytes[kLongestKeyText + 1];
    bytes[ExpandEscapeText(text ? text : "", bytes, kLongestKeyText)] = 0;
    return reinterpret_cast<const char*>(bytes);
}

const char* TranslateVirtualKey(int virtual_key) {
    const int row = RowOfKey(virtual_key);
    return row == kNotMapped ? nullptr : UnescapeKeyText(key_map[row].text);
}

bool TableTakesKey(int virtual_key) {
    const int row = RowOfKey(virtual_key);
    return row != kNotMapped && !(row == kBackspaceRow && HoldsDefault(key_map[row]));
}

int SetKeyText(KeyMapEntry* row, LPCWSTR text) {
    const int length = lstrlenW(text);
    if (length > kLongestKeyText) return 0;
    char* copy = static_cast<char*>(malloc(static_cast<size_t>(length) + 1));
    if (!copy) return 0;
    AnsiFromWide(text, copy, length + 1);
    ForgetText(row);
    row->text = copy;
    return 1;
}

void LoadKeyMap() {
    int i = 0;
    while (key_map[i].name && LoadRow(i)) ++i;
    for (; key_map[i].name; ++i) ForgetText(&key_map[i]);
}

void SaveKeyMap() {
    for (int i = 0; key_map[i].name; ++i) {
        WCHAR name[kNameSize], text[kSavedUnits + 1];
        wsprintfW(name, kValueFormat, i);
        WideFromAnsi(key_map[i].text ? key_map[i].text : "", text, kSavedUnits + 1);
        WriteString(name, text);
    }
}

void DeleteKeyMap() { DeleteNumberedValues(kValueFormat, kKeyRows); }
