// SPDX-License-Identifier: MIT
// docs/hosts.md in tests: its recipes with their words filled in, a host that runs them, and the
// person who connects to it. Make all calls on the person's thread.
#ifndef QUILL_TESTS_GUIDE_HOST_PAGE_H
#define QUILL_TESTS_GUIDE_HOST_PAGE_H

#include <functional>
#include <map>
#include <string>

#include "tests/guide/page.h"
#include "tests/support/real_servers.h"

const Page& HostsPage();

int FreePort();  // a port of 127.0.0.1 that is free now

// Replacements for words of the page. ADDRESS, NAME and PASSWORD default to the machine's user.
typedef std::map<std::string, std::string> Words;

// The text of a recipe. An unknown name fails the test.
std::string Recipe(const std::string& name, const Words& words = {});

// The value of the last line that begins with "NAME=" in the systemd unit of a recipe.
std::string UnitValue(const std::string& recipe, const std::string& name);

// A temporary machine on which root has run the steps, a shell script (machine.sh).
struct MachineFolder {
    explicit MachineFolder(const std::string& steps);
    ~MachineFolder();
    MachineFolder(const MachineFolder&) = delete;
    MachineFolder& operator=(const MachineFolder&) = delete;
    std::string path;
};

struct Machine : private MachineFolder, RealServer {
    Machine(int server_port, const std::string& steps, const QStringList& packages);
    std::string Log(const std::string& file) const;                     // a file of /var/log
    void Put(const std::string& file, const std::string& bytes) const;  // into /var/log
    bool Has(const std::string& file) const;
};

// Runs the program, which reads the lines from its mconfig.cfg and connects.
void WithConfig(const std::string& lines, const std::function<void()>& person);

void SignOnWithPassword();                    // in the SSH sign-on dialog; it has the name already
bool ShowsRow(const std::string& row);        // waits for a row with exactly this text
void TypeAtPrompt(const std::string& text);   // a command without output; waits for a new prompt
void PasteAtPrompt(const std::string& text);  // pastes and waits for a new prompt
void RunAtPrompt(const std::string& command, const std::string& row);  // and waits for the row

#endif
