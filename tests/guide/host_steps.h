// SPDX-License-Identifier: MIT
// The servers of docs/hosts.md as steps for a machine, and sessions with them by the page's lines.
#ifndef QUILL_TESTS_GUIDE_HOST_STEPS_H
#define QUILL_TESTS_GUIDE_HOST_STEPS_H

#include <functional>
#include <QStringList>
#include <string>

#include "tests/guide/host_page.h"

struct Host {
    int port;
    QStringList packages;
    std::string steps;
    bool has_entry = true;

    Words words() const { return {{"PORT", std::to_string(port)}}; }
};

// Each host has the entry "quill" in its user's home, made by the page's recipe.
//
// If `line` is given, `by` replaces this line of the recipe.
Host SshHost(const std::string& line = "", const std::string& by = "");
Host BusyboxHost();
Host InetdHost();
Host SerialHost();
Host WithoutEntry(Host host);

struct HostMachine : Machine {
    explicit HostMachine(const Host& host);
};

// Runs the program with a session at the shell's prompt. `more`: further lines of mconfig.cfg.
void WithSshSession(const Host& host, const std::string& more, const std::function<void()>& person);
void WithTelnetSession(const Host& host, const std::string& more,
                       const std::function<void()>& person);

#endif
