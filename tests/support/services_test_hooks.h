// SPDX-License-Identifier: MIT
// What tests may change under the program: failures of the network, the clock, the dial-up folder.
// Set while no other thread of the slice runs. They come with this file, and are not of the
// program.
#ifndef QUILL_TESTS_SUPPORT_SERVICES_TEST_HOOKS_H
#define QUILL_TESTS_SUPPORT_SERVICES_TEST_HOOKS_H

#include <cstdint>
#include <string>

struct ServicesTestHooks {
    bool fail_startup = false;      // WSAStartup answers 10091
    bool fail_socket = false;       // no new socket, 10024
    int force_connect_error = 0;    // what connect fails with; 0: nothing forced
    bool fail_host_lookup = false;  // gethostbyname finds nothing, 11001
    int host_lookups = 0;           // calls of gethostbyname
    std::string dial_up_folder = "/etc/ppp/peers";
    std::string dial_up_program = "/usr/sbin/pppd";
    int dial_up_patience = 8000;  // ms from asking that program to end to ending it by force
    int64_t system_time = -1;  // ms since 1970-01-01 UTC for GetSystemTime; below 0: the real one
};

extern ServicesTestHooks services_test_hooks;

#endif
