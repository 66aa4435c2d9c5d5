// SPDX-License-Identifier: MIT
// A device with dial-up entries and a scripted dial-up program.
#ifndef QUILL_TESTS_APP_DIAL_STAGE_H
#define QUILL_TESTS_APP_DIAL_STAGE_H

#include <gtest/gtest.h>
#include <signal.h>

#include <filesystem>
#include <fstream>

#include "session/session_state.h"
#include "tests/support/person.h"
#include "tests/support/services_test_hooks.h"
#include "tests/support/sessions.h"

namespace fs = std::filesystem;

inline const char kFailed[] = "Error: RAS Dial has failed. Check your network configuration ";

inline std::string ReadFile(const std::string& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline bool FileAppears(const std::string& path) {
    for (int i = 0; i < 2000 && !fs::exists(path); i++) Sleep(5);
    return fs::exists(path);
}

// A device with dial-up entries and, if a test gives a script, a program that dials them. The
// script runs in the folder and writes its process id to the file "process".
class Dialling : public testing::Test {
  protected:
    void SetUp() override {
        services_test_hooks = ServicesTestHooks();
        folder = FreshRoot();
        fs::create_directory(folder + "/peers");
        services_test_hooks.dial_up_folder = folder + "/peers";
        services_test_hooks.dial_up_program = folder + "/pppd";
    }
    void TearDown() override { services_test_hooks = ServicesTestHooks(); }

    void MakeEntry(const std::string& name) const {
        std::ofstream(folder + "/peers/" + name) << "/dev/ttyS0\n";
    }
    // `asked` is its handler of SIGTERM, which is set before "process" appears.
    void MakeProgram(const std::string& script, const std::string& asked = "exit 5") const {
        const std::string path = folder + "/pppd";
        std::ofstream(path) << "#!/bin/sh\ntrap '" << asked << "' TERM\ncd '" << folder
                            << "'\nprintf '%s\\n' \"$@\" >arguments\n"
                            << "echo $$ >number && mv number process\n"
                            << "await() { while ! [ -e $1 ]; do sleep 0.02; done; }\n"
                            << script;
        fs::permissions(path, fs::perms::owner_all);
    }
    void Let(const char* file) const { std::ofstream(folder + "/" + file) << "\n"; }

    // Requests the dial as the answered question does, and triggers the tick at once. Called on the
    // person's thread.
    static void Dial(const char16_t* entry) {
        OnWindowThread([=] {
            lstrcpyW(session.settings.ras, entry);
            session.dial_request = 1;
        });
        PostToMain(WM_TIMER, 1);
    }
    bool ProgramGone() const {
        const int process = std::stoi(ReadFile(folder + "/process"));
        for (int i = 0; i < 1000 && kill(process, 0) == 0; i++) Sleep(5);
        return kill(process, 0) != 0;
    }
    bool ProgramLives() const { return kill(std::stoi(ReadFile(folder + "/process")), 0) == 0; }
    static bool Dialled() {
        return Eventually([] { return session.dialling == 1; });
    }
    static bool NotDialling() {
        return Eventually([] { return session.dialling == 0; });
    }

    std::string folder;
};

// A dial that reaches the link after Let("go") and keeps it until SIGTERM.
inline const char kUp[] =
    "echo 'Serial connection established.'; echo 'Using interface ppp0'\n"
    "echo 'Connect: ppp0 <--> /dev/ttyS0'; echo 'PAP authentication succeeded'\n"
    "await go; echo 'local  IP address 10.0.0.2'; echo 'remote IP address 10.0.0.1'\n"
    "while :; do sleep 0.02; done\n";
inline const char kEnds[] = "echo Terminating on signal 15; : >ended; exit 5";

#endif
