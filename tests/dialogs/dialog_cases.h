// SPDX-License-Identifier: MIT
// All dialogs of the settings, as a user sees them: how to open each one, and which controls it
// has.
#ifndef QUILL_TESTS_DIALOGS_DIALOG_CASES_H
#define QUILL_TESTS_DIALOGS_DIALOG_CASES_H

#include <ostream>
#include <string>
#include <vector>

#include "windows_ce.h"

enum class Kind { kStatic, kEdit, kCombo, kList, kCheck, kRadio, kButton, kDefault };

struct ControlCase {
    int id;  // -1: a text that no code refers to
    Kind kind;
    const char* label;  // "" for fields; the text before a field names it
};

struct DialogCase {
    std::string name;  // used in test names
    std::string caption;
    HWND (*open)();                     // by the commands and buttons of a user
    std::vector<ControlCase> controls;  // in the order of the template
    std::vector<int> tabs;              // the controls in Tab order, from the first focus
    bool centred;
};

inline void PrintTo(const DialogCase& dialog, std::ostream* out) { *out << dialog.name; }

extern const std::vector<DialogCase> dialog_cases;

#endif
