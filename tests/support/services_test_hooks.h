// SPDX-License-Identifier: MIT
// What tests can change below the program: failures of the network, the clock, the dial-up folder.
// Set them only while no other thread of the slice runs. The program does not contain these hooks.
#ifndef QUILL_TESTS_SUPPORT_SERVICES_TEST_HOOKS_H
#define QUILL_TESTS_SUPPORT_SERVICES_TEST_HOOKS_H

#include <cstdint>
#include <string>

struct ServicesTestHooks {
    bool fail_startup = false;      // WSAStartup returns 10091
    bool fail_socket = false;       // socket fails with 10024
    int force_connect_error = 0;    // the error of connect; 0: the real result
    bool fail_host_lookup = false;  // gethostbyname fails with 11001
    int host_lookups = 0;           // calls of gethostbyname
    std::string dial_up_folder = "/etc/ppp/peers";
    std::string dial_up_program = "/usr/sbin/pppd";
    int dial_up_patience = 8000;  // ms between SIGTERM and SIGKILL to that program
    int64_t system_time = -1;  // GetSystemTime in ms since 1970-01-01 UTC; negative: the real time
};

extern ServicesTestHooks services_test_hooks;

#endif
