// SPDX-License-Identifier: MIT
// A compiled terminfo entry, read by the curses library: what the entry promises, by terminfo(5)'s
// short names. Extended names are left out.
#ifndef QUILL_TESTS_HOSTS_TERMINFO_ENTRY_H
#define QUILL_TESTS_HOSTS_TERMINFO_ENTRY_H

#include <map>
#include <set>
#include <string>

struct TerminfoEntry {
    std::string name;
    std::set<std::string> flags;
    std::map<std::string, int> numbers;
    std::map<std::string, std::string> strings;
};

// Looked up as every program does, $TERMINFO first. False without such an entry.
bool ReadEntry(const std::string& name, TerminfoEntry* entry);

// The names that curses knows, also those that only a termcap had (OT...).
std::set<std::string> FlagNames();
std::set<std::string> NumberNames();
std::set<std::string> StringNames();

inline constexpr int kMostNumbers = 9;

// A string with its numbers filled in, up to nine of them, and without its padding. A capability
// that the entry lacks gives an empty text.
std::string Expand(const TerminfoEntry& entry, const std::string& capability,
                   const int (&numbers)[kMostNumbers]);
std::string Expand(const TerminfoEntry& entry, const std::string& capability);

bool Has(const TerminfoEntry& entry, const std::string& capability);  // a string

// Bytes as escape text that the Keyboard page takes: \033[A.
std::string AsEscapeText(const std::string& bytes);

#endif
