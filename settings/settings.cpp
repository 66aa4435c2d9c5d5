// SPDX-License-Identifier: MIT
// The tables of the settings with their registry names and defaults, and loading, saving and
// deleting them.
#include "settings/settings.h"

#include "session/session_state.h"
#include "settings/key_map.h"
#include "settings/toolbars.h"
#include "text/text.h"

namespace {

struct NumberRow {
    DWORD* field;  // null ends the table
    DWORD fallback;
    LPCWSTR name;
};

struct StringRow {
    LPWSTR field;  // null ends the table; at least kSettingUnits units
    LPCWSTR fallback;
    LPCWSTR name;
};

}  // namespace

static Settings& s = session.settings;

// Loading, saving and deleting follow the order of the rows.
// clang-format off
static const NumberRow kNumbers[] = {
    {&s.blink,        0,        TEXT("blink")},
    {&s.fsize,        8,        TEXT("fsize")},
    {&s.bell,         1,        TEXT("bell")},
    {&s.alive,        1,        TEXT("alive")},
    {&s.xbox,         0,        TEXT("xbox")},
    {&s.exit_dis,     0,        TEXT("exit_dis")},
    {&s.confirm_exit, 0,        TEXT("confirm_exit")},
    {&s.ssh,          0,        TEXT("ssh")},
    {&s.ssh_type,     1,        TEXT("ssh_type")},
    {&s.autoconnect,  0,        TEXT("autoconnect")},
    {&s.table,        1,        TEXT("table")},
    {&s.followcursor, 1,        TEXT("followcursor")},
    {&s.hidestatus,   0,        TEXT("hidestatus")},
    {&s.port,         23,       TEXT("port")},
    {&s.nego,         0,        TEXT("nego")},
    {&s.hotspot,      0,        TEXT("hotspot")},
    {&s.ssh_def,      0,        TEXT("ssh_def")},
    {&s.color_bg,     16777215, TEXT("color_bg")},
    {&s.color_fg,     0,        TEXT("color_fg")},
    {&s.color_cursor, 8421504,  TEXT("color_cursor")},
    {&s.color_bold,   128,      TEXT("color_bold")},
    {&s.font_bold,    0,        TEXT("font_bold")},
    {&s.font_italic,  0,        TEXT("font_italic")},
    {&s.ssh_type2,    1,        TEXT("ssh_type2")},
    {nullptr,         0,        nullptr},
};

static const StringRow kStrings[] = {
    {s.fname,    TEXT("Terminal"), TEXT("fname")},
    {s.host,     TEXT(""),         TEXT("host")},
    {s.hist0a,   TEXT(""),         TEXT("hist0a")},
    {s.hist1a,   TEXT(""),         TEXT("hist1a")},
    {s.hist2a,   TEXT(""),         TEXT("hist2a")},
    {s.hist3a,   TEXT(""),         TEXT("hist3a")},
    {s.hist4a,   TEXT(""),         TEXT("hist4a")},
    {s.sear1,    TEXT("ogin"),     TEXT("sear1")},
    {s.sear2,    TEXT(""),         TEXT("sear2")},
    {s.resp1,    TEXT(""),         TEXT("resp1")},
    {s.resp2,    TEXT(""),         TEXT("resp2")},
    {s.ssh_u,    TEXT(""),         TEXT("ssh_u")},
    {s.ssh_p,    TEXT(""),         TEXT("ssh_p")},
    {s.termtype, TEXT("vt220"),    TEXT("termtype")},
    {s.ras,      TEXT(""),         TEXT("ras")},
    {nullptr,    nullptr,          nullptr},
};
// clang-format on

void LoadSettings() {
    for (const NumberRow* row = kNumbers; row->field; ++row)
        *row->field = ReadNumber(row->name, row->fallback);
    for (const StringRow* row = kStrings; row->field; ++row)
        CopyBounded(row->field, ReadString(row->name, row->fallback), kSettingUnits);
    LoadToolbars();
    LoadKeyMap();
}

void SaveSettings() {
    for (const NumberRow* row = kNumbers; row->field; ++row) WriteNumber(row->name, *row->field);
    for (const StringRow* row = kStrings; row->field; ++row) WriteString(row->name, row->field);
    SaveToolbars();
    SaveKeyMap();
}

void LeaveSettingsUnsaved() { session.save_settings = 0; }

void SetDialEntry(LPCWSTR name) {
    CopyBounded(session.settings.ras, name, kDialEntryUnits);
    session.save_settings = 1;
}

LONG ResetSettings() {
    HKEY key;
    const LONG error = OpenSettings(KEY_SET_VALUE, &key);
    if (error != ERROR_SUCCESS) return error;
    for (const NumberRow* row = kNumbers; row->field; ++row) RegDeleteValueW(key, row->name);
    for (const StringRow* row = kStrings; row->field; ++row) RegDeleteValueW(key, row->name);
    RegFlushKey(key);
    RegCloseKey(key);
    DeleteToolbars();
    DeleteKeyMap();
    return ERROR_SUCCESS;
}
