// SPDX-License-Identifier: MIT
// Exports the stored settings as an mconfig.cfg, which a device reads at its next start.
#ifndef QUILL_PLATFORM_QT_EXPORT_SETTINGS_H
#define QUILL_PLATFORM_QT_EXPORT_SETTINGS_H

#include <string>
#include <vector>

struct SettingsExport {
    std::string file;                   // in the ANSI code page, one line per setting
    std::vector<std::string> left_out;  // names of the passwords that are left out
    std::vector<std::string> unsaid;    // UTF-8: what the file cannot hold, one sentence each
};

// Reads ROOT/registry.db without changing it; another program may have it open. False if there is
// no such file or it is damaged. Passwords are `ssh_p` and the responses of the automatic login,
// because most hosts ask for a password there.
bool ExportSettings(const std::string& root, bool with_passwords, SettingsExport* result);

// True for texts whose default is empty: a new device needs no line for an empty one.
bool IsEmptyAtFirst(const std::string& name);

#endif
