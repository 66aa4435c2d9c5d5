// SPDX-License-Identifier: MIT
// The program's key in the registry, for the host's own access to its values.
#ifndef QUILL_PLATFORM_QT_SETTINGS_KEY_H
#define QUILL_PLATFORM_QT_SETTINGS_KEY_H

inline constexpr char16_t kSettingsKeyName[] = u"Software\\QUILLWARE\\TELNET";
// The same key as the registry's file writes it.
inline constexpr char kSettingsKeyPath[] = "HKEY_LOCAL_MACHINE\\Software\\QUILLWARE\\TELNET";

#endif
