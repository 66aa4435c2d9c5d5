// SPDX-License-Identifier: MIT
// The stored settings as an mconfig.cfg, which a device reads at its next start.
#ifndef QUILL_PLATFORM_QT_EXPORT_SETTINGS_H
#define QUILL_PLATFORM_QT_EXPORT_SETTINGS_H

#include <string>
#include <vector>

struct SettingsExport {
    std::string file;                   // in the ANSI code page, one line a setting
    std::vector<std::string> left_out;  // passwords, by their names
    std::vector<std::string> unsaid;    // UTF-8: what the file cannot say, a sentence each
};

// Reads ROOT/registry.db and changes nothing in it; another program may have it open. False where
// there is no such file, or it is damaged. Passwords are `ssh_p` and, as most hosts ask for one,
// the responses of the automatic login.
bool ExportSettings(const std::string& root, bool with_passwords, SettingsExport* result);

// Texts whose default is empty, so that a fresh device needs no line for an empty one.
bool IsEmptyAtFirst(const std::string& name);

#endif
