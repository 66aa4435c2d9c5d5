// SPDX-License-Identifier: MIT
// Records the calls of the registry in order and passes them on.
#ifndef QUILL_TESTS_SETTINGS_REGISTRY_LOG_H
#define QUILL_TESTS_SETTINGS_REGISTRY_LOG_H

#include <string>
#include <vector>

struct RegistryCall {
    std::string call;  // "read", "write", "delete", "flush", "close"
    std::string name;  // of the value; empty for the last two
};

extern std::vector<RegistryCall> registry_log;

// The names of the values for which `call` was made.
std::vector<std::string> LoggedNames(const std::string& call);

#endif
