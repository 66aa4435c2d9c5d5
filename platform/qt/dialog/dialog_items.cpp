// The calls that reach a dialog's control by its number: messages to it by another name.
#include "platform/qt/window/slice.h"

namespace {

constexpr int kNumberUnits = 64;

bool IsBlank(WCHAR unit) { return unit == u' ' || unit == u'\t'; }

// A sign, where there may be one, and digits; blanks around them count for nothing.
bool ParseNumber(LPCWSTR text, bool is_signed, int64_t* value) {
    while (IsBlank(*text)) text++;
    const bool negative = is_signed && *text == u'-';
    if (negative) text++;
    int digits = 0;
    for (*value = 0; *text >= u'0' && *text <= u'9' && digits < 18; text++, digits++)
        *value = *value * 10 + (*text - u'0');
    while (IsBlank(*text)) text++;
    if (negative) *value = -*value;
    const int64_t least = is_signed ? INT32_MIN : 0, most = is_signed ? INT32_MAX : UINT32_MAX;
    return digits > 0 && *text == 0 && *value >= least && *value <= most;
}

}  // namespace

int GetDlgCtrlID(HWND control) {
    const Window* window = FindWindowRecord(control);
    return window ? window->id : 0;
}

BOOL SetDlgItemTextW(HWND dialog, int id, LPCWSTR text) {
    return SetWindowTextW(GetDlgItem(dialog, id), text);
}

UINT GetDlgItemTextW(HWND dialog, int id, LPWSTR text, int size) {
    if (!text || size < 1) return 0;
    text[0] = 0;
    return static_cast<UINT>(GetWindowTextW(GetDlgItem(dialog, id), text, size));
}

BOOL SetDlgItemInt(HWND dialog, int id, UINT value, BOOL is_signed) {
    WCHAR text[kNumberUnits];
    wsprintfW(text, is_signed ? u"%d" : u"%u", value);
    return SetDlgItemTextW(dialog, id, text);
}

UINT GetDlgItemInt(HWND dialog, int id, BOOL* translated, BOOL is_signed) {
    WCHAR text[kNumberUnits];
    GetDlgItemTextW(dialog, id, text, kNumberUnits);
    int64_t value = 0;
    const bool number = ParseNumber(text, is_signed, &value);
    if (translated) *translated = number;
    return number ? static_cast<UINT>(value) : 0;
}

LRESULT SendDlgItemMessageW(HWND dialog, int id, UINT message, WPARAM wparam, LPARAM lparam) {
    return SendMessageW(GetDlgItem(dialog, id), message, wparam, lparam);
}

BOOL CheckDlgButton(HWND dialog, int id, UINT check) {
    if (!GetDlgItem(dialog, id)) return FALSE;
    SendDlgItemMessageW(dialog, id, BM_SETCHECK, check, 0);
    return TRUE;
}

UINT IsDlgButtonChecked(HWND dialog, int id) {
    return static_cast<UINT>(SendDlgItemMessageW(dialog, id, BM_GETCHECK, 0, 0));
}

BOOL CheckRadioButton(HWND dialog, int first, int last, int checked) {
    if (!FindWindowRecord(dialog)) return FALSE;
    for (const Window* window : AllWindows())
        if (window->parent == dialog && window->control && window->id >= first &&
            window->id <= last)
            CheckDlgButton(dialog, window->id, window->id == checked);
    return TRUE;
}
