// SPDX-License-Identifier: MIT
// Settings that hold for one run: where the command line wants to connect. The program finds them
// in the registry as if they were stored there; the store itself keeps the user's own.
//
// What belongs to a host (its name, port and protocol, the user, passwords, the automatic login) is
// this run's from the first time that the program reads one of these values: before, an import
// writes into the store; afterwards what the program writes is kept in memory until the end.
// Passwords of the stored host never go to another one: unless host, port, protocol and user are
// those of the store, the run finds no password and no response of an automatic login.
#ifndef QUILL_PLATFORM_QT_RUN_VALUES_H
#define QUILL_PLATFORM_QT_RUN_VALUES_H

#include <string>

class RegistryStore;
struct StoredValue;

enum class RunProtocol { kOfTheStore, kTelnet, kSsh };

struct RunTarget {
    std::string host;  // ASCII, at most 39 characters
    int port = 0;      // 1 to 65535; 0: the usual one of the protocol, 23 or 22
    RunProtocol protocol = RunProtocol::kOfTheStore;
    std::string user;  // ASCII, at most 39 characters; empty: the stored one
};

// To be called before the program starts. Makes the settings' key where it is missing, without
// which the program would look for no value. With the registry's calls.
void ConnectThisRun(const RunTarget& target);
void ForgetRun();

// For the registry's calls. What the run wants from now on.
void SetRunTarget(const RunTarget& target);
// Whether the value is this run's. Only the settings' key has such.
bool ReadRunValue(RegistryStore& store, const std::string& key, const std::string& name,
                  StoredValue* value);
bool KeepRunValue(const std::string& key, const std::string& name, const StoredValue& value);

#endif
