// SPDX-License-Identifier: MIT
// A program on a pseudo-terminal, with this terminal on the other side: its output goes into the
// engine (session.screen), replies and keys go to it.
#ifndef QUILL_TESTS_HOSTS_PTY_PROGRAM_H
#define QUILL_TESTS_HOSTS_PTY_PROGRAM_H

#include <sys/types.h>

#include <functional>
#include <string>
#include <vector>

struct PtyProgram {
    pid_t pid = -1;
    int master = -1;
    int slave = -1;
    std::string mark;                               // in the environment of all that it started
    std::function<void(const std::string&)> watch;  // sees the output too
    int patience = 1;                               // factor of the time that counts as rest
};

struct PtyOptions {
    std::vector<std::string> arguments;    // the program first, found in PATH
    std::vector<std::string> environment;  // added to TERM, TERMINFO, PATH, HOME and LC_ALL=C
    std::string home;                      // its folder
    std::string term;
    bool tells_size;  // as SSH does; Telnet does not
    int passed = -1;  // becomes its file descriptor 3
};

// Makes the terminal new and starts the program. False if there is no pseudo-terminal.
bool StartOnPty(const PtyOptions& options, PtyProgram* program);

// Ends it, and waits for it. All that it started is ended too.
void EndOnPty(PtyProgram* program);

// What the user types.
void SendKeys(PtyProgram* program, const std::string& bytes);

// Feeds what comes until `done` yields true. False when the program ends or nothing comes for long.
bool FeedUntil(PtyProgram* program, const std::function<bool()>& done);

// Feeds what comes until the program and all that it started sleep and have read their keys.
bool FeedUntilRest(PtyProgram* program);

bool IsInstalled(const std::string& program);

#endif
