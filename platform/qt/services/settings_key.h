// SPDX-License-Identifier: MIT
// The program's own key, for what the host does with its values.
#ifndef QUILL_PLATFORM_QT_SETTINGS_KEY_H
#define QUILL_PLATFORM_QT_SETTINGS_KEY_H

inline constexpr char16_t kSettingsKeyName[] = u"Software\\QUILLWARE\\TELNET";
// As the registry's file has it.
inline constexpr char kSettingsKeyPath[] = "HKEY_LOCAL_MACHINE\\Software\\QUILLWARE\\TELNET";

#endif
