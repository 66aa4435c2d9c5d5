// SPDX-License-Identifier: MIT
// The command line: quill [OPTIONS] [HOST [PORT]], or an address telnet://... or ssh://... in place
// of HOST and PORT. The options are the window host's; the program itself has none.
#ifndef QUILL_PLATFORM_QT_COMMAND_LINE_H
#define QUILL_PLATFORM_QT_COMMAND_LINE_H

#include <cstdio>
#include <string>

#include "platform/qt/host/host.h"
#include "platform/qt/services/run_values.h"

enum class Task { kRun, kHelp, kVersion, kProfiles, kExport };

struct CommandLine {
    Task task = Task::kRun;
    HostOptions options;
    std::string profile;  // empty: the user's own settings
    RunTarget target;     // without a host: none was given
    bool with_passwords = false;
};

// The toolkit's options are left in argv. False after a complaint of one line; nothing has been
// written then, and control characters of the command line are not repeated.
bool TakeCommandLine(int* argc, char** argv, CommandLine* line);
void TellHelp(std::FILE* stream);

// HOST, or an address with its scheme; the trouble with it, or null.
const char* TakeTarget(const std::string& text, RunTarget* target);
const char* TakePort(const std::string& text, int* port);

#endif
