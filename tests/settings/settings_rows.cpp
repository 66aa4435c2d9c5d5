// SPDX-License-Identifier: MIT
// The expected settings; tests compare the settings store with these tables.
#include "tests/settings/settings_rows.h"

#include "session/session_state.h"

// clang-format off
const NumberSetting number_settings[24] = {
    {"blink",        0,          &session.settings.blink},
    {"fsize",        8,          &session.settings.fsize},
    {"bell",         1,          &session.settings.bell},
    {"alive",        1,          &session.settings.alive},
    {"xbox",         0,          &session.settings.xbox},
    {"exit_dis",     0,          &session.settings.exit_dis},
    {"confirm_exit", 0,          &session.settings.confirm_exit},
    {"ssh",          0,          &session.settings.ssh},
    {"ssh_type",     1,          &session.settings.ssh_type},
    {"autoconnect",  0,          &session.settings.autoconnect},
    {"table",        1,          &session.settings.table},
    {"followcursor", 1,          &session.settings.followcursor},
    {"hidestatus",   0,          &session.settings.hidestatus},
    {"port",         23,         &session.settings.port},
    {"nego",         0,          &session.settings.nego},
    {"hotspot",      0,          &session.settings.hotspot},
    {"ssh_def",      0,          &session.settings.ssh_def},
    {"color_bg",     0x00FFFFFF, &session.settings.color_bg},
    {"color_fg",     0,          &session.settings.color_fg},
    {"color_cursor", 0x00808080, &session.settings.color_cursor},
    {"color_bold",   0x00000080, &session.settings.color_bold},
    {"font_bold",    0,          &session.settings.font_bold},
    {"font_italic",  0,          &session.settings.font_italic},
    {"ssh_type2",    1,          &session.settings.ssh_type2},
};

const TextSetting text_settings[15] = {
    {"fname",    "Terminal", session.settings.fname},
    {"host",     "",         session.settings.host},
    {"hist0a",   "",         session.settings.hist0a},
    {"hist1a",   "",         session.settings.hist1a},
    {"hist2a",   "",         session.settings.hist2a},
    {"hist3a",   "",         session.settings.hist3a},
    {"hist4a",   "",         session.settings.hist4a},
    {"sear1",    "ogin",     session.settings.sear1},
    {"sear2",    "",         session.settings.sear2},
    {"resp1",    "",         session.settings.resp1},
    {"resp2",    "",         session.settings.resp2},
    {"ssh_u",    "",         session.settings.ssh_u},
    {"ssh_p",    "",         session.settings.ssh_p},
    {"termtype", "vt220",    session.settings.termtype},
    {"ras",      "",         session.settings.ras},
};
// clang-format on
