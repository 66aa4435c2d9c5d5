// SPDX-License-Identifier: MIT
// A program on a pseudo-terminal, and a user who presses keys and looks for texts on the screen.
#ifndef QUILL_TESTS_HOSTS_KEY_PROGRAM_H
#define QUILL_TESTS_HOSTS_KEY_PROGRAM_H

#include <string>
#include <vector>

#include "tests/hosts/pty_program.h"

std::string RowText(int row);  // trailing blanks cut
std::string ScreenText();      // all rows, a line each
bool ScreenHas(const std::string& text);

// A program with TERM, and a keyboard set up for it. Ended by its destructor.
struct KeyProgram {
    std::string term;
    PtyProgram program;

    KeyProgram(const std::string& name, const std::string& locale,
               const std::vector<std::string>& arguments, const std::string& home = "/",
               const std::vector<std::string>& variables = {});
    ~KeyProgram();
    KeyProgram(const KeyProgram&) = delete;
    KeyProgram& operator=(const KeyProgram&) = delete;

    // Presses keys (program_walks.h) and waits until the screen shows the text.
    bool Shows(const std::string& keys, const std::string& text);

    // Presses keys, and waits until nothing happens any more.
    void Press(const std::string& keys);
};

#endif
