// SPDX-License-Identifier: MIT
// All dialogs of the settings as they are known from outside: how to come to each, and what stands
// on it.
#ifndef QUILL_TESTS_DIALOGS_DIALOG_CASES_H
#define QUILL_TESTS_DIALOGS_DIALOG_CASES_H

#include <ostream>
#include <string>
#include <vector>

#include "windows_ce.h"

enum class Kind { kStatic, kEdit, kCombo, kList, kCheck, kRadio, kButton, kDefault };

struct ControlCase {
    int id;  // -1: a text that nothing refers to
    Kind kind;
    const char* label;  // "" for fields, which have the text before them as their name
};

struct DialogCase {
    std::string name;  // of the test
    std::string caption;
    HWND (*open)();                     // by the commands and buttons that a user has
    std::vector<ControlCase> controls;  // in the template's order
    std::vector<int> tabs;              // the controls that Tab visits, from the first focus on
    bool centred;
};

inline void PrintTo(const DialogCase& dialog, std::ostream* out) { *out << dialog.name; }

extern const std::vector<DialogCase> dialog_cases;

#endif
