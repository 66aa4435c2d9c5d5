// SPDX-License-Identifier: MIT
// docs/hosts.md in tests: its recipes with their words filled in, a host on which they are run, and
// the person who connects to it. The calls are the person's: [person's thread].
#ifndef QUILL_TESTS_GUIDE_HOST_PAGE_H
#define QUILL_TESTS_GUIDE_HOST_PAGE_H

#include <functional>
#include <map>
#include <string>

#include "tests/guide/page.h"
#include "tests/support/real_servers.h"

const Page& HostsPage();

int FreePort();  // of 127.0.0.1, free at this moment

// What replaces the words of the page; ADDRESS, NAME and PASSWORD have the user's of the machine.
typedef std::map<std::string, std::string> Words;

// The text of a recipe. A name that the page does not have fails the test.
std::string Recipe(const std::string& name, const Words& words = {});

// The value of the last line that begins with "NAME=" in a systemd unit among a recipe's text.
std::string UnitValue(const std::string& recipe, const std::string& name);

// A machine to throw away on which the steps, a shell script, have been run by root (machine.sh).
struct MachineFolder {
    explicit MachineFolder(const std::string& steps);
    ~MachineFolder();
    MachineFolder(const MachineFolder&) = delete;
    MachineFolder& operator=(const MachineFolder&) = delete;
    std::string path;
};

struct Machine : private MachineFolder, RealServer {
    Machine(int server_port, const std::string& steps, const QStringList& packages);
    std::string Log(const std::string& file) const;                     // of /var/log
    void Put(const std::string& file, const std::string& bytes) const;  // into /var/log
    bool Has(const std::string& file) const;
};

// Runs the program, which reads the lines from its mconfig.cfg and connects.
void WithConfig(const std::string& lines, const std::function<void()>& person);

void SignOnWithPassword();                    // of the SSH sign-on; the name is there already
bool ShowsRow(const std::string& row);        // waits for a row with that text and no other
void PasteAtPrompt(const std::string& text);  // from the clipboard; ends with a new prompt
void RunAtPrompt(const std::string& command, const std::string& row);  // and expects the row

#endif
