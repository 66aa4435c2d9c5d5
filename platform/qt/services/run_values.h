// SPDX-License-Identifier: MIT
// Settings that hold for one run only: where the command line wants to connect. The program reads
// them from the registry as if they were stored there; the store keeps the user's own values.
//
// The values that belong to a host (its name, port and protocol, the user, passwords, the automatic
// login) belong to this run from the first time that the program reads one of them. Before that, an
// import still writes to the store. After that, what the program writes is kept in memory until the
// end. Passwords of the stored host never go to another one: unless host, port, protocol and user
// are the stored ones, the run has no password and no response of an automatic login.
#ifndef QUILL_PLATFORM_QT_RUN_VALUES_H
#define QUILL_PLATFORM_QT_RUN_VALUES_H

#include <string>

class RegistryStore;
struct StoredValue;

enum class RunProtocol { kOfTheStore, kTelnet, kSsh };

struct RunTarget {
    std::string host;  // ASCII, at most 39 characters
    int port = 0;      // 1 to 65535; 0: the protocol's default, 23 or 22
    RunProtocol protocol = RunProtocol::kOfTheStore;
    std::string user;  // ASCII, at most 39 characters; empty: the stored one
};

// Call it before the program starts. Makes the settings key if it is missing, because without it
// the program looks for no value. Defined beside the registry's calls.
void ConnectThisRun(const RunTarget& target);
void ForgetRun();

// For the registry's calls. Sets what the run wants from now on.
void SetRunTarget(const RunTarget& target);
// True if the value is one of this run's. Only the settings key has such values.
bool ReadRunValue(RegistryStore& store, const std::string& key, const std::string& name,
                  StoredValue* value);
bool KeepRunValue(const std::string& key, const std::string& name, const StoredValue& value);

#endif
