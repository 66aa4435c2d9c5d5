// SPDX-License-Identifier: MIT
// The curses library's term.h makes macros of everyday words, so nothing else is included with it.
#include "tests/hosts/terminfo_entry.h"

#include <unistd.h>

#include <cstdio>

#include <curses.h>

#include <term.h>

static void ReadAll(TerminfoEntry* entry) {
    for (NCURSES_CONST char* const* name = boolnames; *name; ++name) {
        if (tigetflag(*name) > 0) entry->flags.insert(*name);
    }
    for (NCURSES_CONST char* const* name = numnames; *name; ++name) {
        if (const int value = tigetnum(*name); value >= 0) entry->numbers[*name] = value;
    }
    for (NCURSES_CONST char* const* name = strnames; *name; ++name) {
        // OT...: names that only a termcap had.
        const bool obsolete = (*name)[0] == 'O' && (*name)[1] == 'T';
        const char* text = obsolete ? nullptr : tigetstr(*name);
        if (text && text != reinterpret_cast<char*>(-1)) entry->strings[*name] = text;
    }
}

static std::set<std::string> AllOf(NCURSES_CONST char* const* names) {
    std::set<std::string> all;
    for (; *names; ++names) all.insert(*names);
    return all;
}

std::set<std::string> FlagNames() { return AllOf(boolnames); }
std::set<std::string> NumberNames() { return AllOf(numnames); }
std::set<std::string> StringNames() { return AllOf(strnames); }

bool ReadEntry(const std::string& name, TerminfoEntry* entry) {
    use_env(FALSE);
    int status = 0;
    if (setupterm(name.c_str(), STDOUT_FILENO, &status) != OK) {
        if (cur_term) del_curterm(cur_term);  // of a generic type, which is read and refused
        return false;
    }
    *entry = {name, {}, {}, {}};
    ReadAll(entry);
    del_curterm(cur_term);
    return true;
}

bool Has(const TerminfoEntry& entry, const std::string& capability) {
    return entry.strings.count(capability) != 0;
}

// Padding is $<5>, $<5.2*/> and the like.
static std::string WithoutPadding(const std::string& text) {
    std::string kept;
    for (size_t i = 0; i < text.size(); ++i) {
        const bool padding = text.compare(i, 2, "$<") == 0;
        const size_t end = padding ? text.find_first_not_of("0123456789.*/", i + 2) : text.npos;
        if (end != text.npos && text[end] == '>') {
            i = end;
        } else {
            kept += text[i];
        }
    }
    return kept;
}

// %s, %-16.16s, %l: numbers would be taken for texts there.
static bool TakesTexts(const std::string& format) {
    for (size_t i = format.find('%'); i != format.npos; i = format.find('%', i + 2)) {
        const size_t kind = format.find_first_not_of(":-+# .0123456789", i + 1);
        if (kind != format.npos && (format[kind] == 's' || format[kind] == 'l')) return true;
    }
    return false;
}

std::string Expand(const TerminfoEntry& entry, const std::string& capability,
                   const int (&numbers)[kMostNumbers]) {
    const auto found = entry.strings.find(capability);
    if (found == entry.strings.end() || TakesTexts(found->second)) return "";
    const int* n = numbers;
    const char* text = tparm(const_cast<char*>(found->second.c_str()), n[0], n[1], n[2], n[3], n[4],
                             n[5], n[6], n[7], n[8]);
    return text ? WithoutPadding(text) : "";
}

std::string Expand(const TerminfoEntry& entry, const std::string& capability) {
    const auto found = entry.strings.find(capability);
    return found == entry.strings.end() ? "" : WithoutPadding(found->second);
}

std::string AsEscapeText(const std::string& bytes) {
    std::string text;
    for (const char c : bytes) {
        char escape[8];
        const bool plain = c > ' ' && c < 127 && c != '\\';
        snprintf(escape, sizeof escape, plain ? "%c" : "\\%03o", static_cast<unsigned char>(c));
        text += escape;
    }
    return text;
}
