// SPDX-License-Identifier: MIT
// The command line: quill [OPTIONS] [HOST [PORT]], or an address telnet://... or ssh://... in place
// of HOST and PORT. The host (the desktop program around Quill) reads all options; Quill itself
// gets none.
#ifndef QUILL_PLATFORM_QT_COMMAND_LINE_H
#define QUILL_PLATFORM_QT_COMMAND_LINE_H

#include <cstdio>
#include <string>

#include "platform/qt/host/host.h"
#include "platform/qt/services/registry.h"

// If the command line names several, it is the last of these.
enum class Task { kRun, kProfiles, kExport, kVersion, kHelp };

struct CommandLine {
    Task task = Task::kRun;
    HostOptions options;
    std::string profile;  // empty: the user's default settings
    RunTarget target;     // its host is empty if the command line names no host
    bool with_passwords = false;
};

// Removes what it reads from argv and leaves the toolkit's options there. Returns false after a
// complaint of one line on stderr; no file has been written by then. Complaints never repeat
// control characters from the command line.
bool TakeCommandLine(int* argc, char** argv, CommandLine* line);
void TellHelp(std::FILE* stream);

// The last complaint, without an end of line; "" if there was none.
const std::string& LastComplaint();

// Reads HOST, or an address with its scheme. Returns what is wrong with it, or null.
const char* TakeTarget(const std::string& text, RunTarget* target);
const char* TakePort(const std::string& text, int* port);

// ---------------------------------------------------------------- tasks that open no window

// Help, version, the list of profiles, or an export. Needs no display and writes only to stdout and
// stderr. Returns the exit code: 0, or 1 if an export lacks something other than the passwords that
// --with-passwords adds, or if settings cannot be read or the output cannot be written.
int DoTask(const CommandLine& line);

#endif
