// SPDX-License-Identifier: MIT
// A host of one of the three protocols on loopback, which remembers what it showed and what it was
// sent. It does what it does inside the calls, on the caller's thread.
#ifndef QUILL_TESTS_LONG_RUNS_HOSTS_H
#define QUILL_TESTS_LONG_RUNS_HOSTS_H

#include <memory>
#include <string>

#include "tests/support/fake_host.h"

struct ScriptedHost;
struct ScriptedServer;
struct HostKind;

struct LongHost {
    FakeHost net;
    const HostKind* kind = nullptr;
    std::string wire;      // from the client, not looked at yet
    std::string held;      // to be shown once the client takes it
    std::string shown;     // what the terminal is to get in this session, `held` included
    std::string received;  // what the user's keys sent
    bool ready = false;    // the shell is there
    bool gone = false;     // the client has closed
    int rekeys = 0;
    int chat = 0;       // bytes for the next packet with a message that means nothing
    std::string line;   // the client's identification
    size_t window = 0;  // what the client takes on its channel
    bool rekeying = false;
    std::shared_ptr<ScriptedServer> ssh2;
    std::shared_ptr<ScriptedHost> ssh1;
    int ssh1_state = 0;
};

struct HostKind {
    const char* name;
    int ssh, ssh_type2;  // settings
    void (*begin)(LongHost& host);
    void (*take)(LongHost& host);                   // looks at `wire`
    void (*flush)(LongHost& host);                  // sends what it may of `held`
    void (*stir)(LongHost& host, unsigned random);  // negotiation, a rekey, idle messages
};

inline constexpr int kHostKinds = 3;
extern const HostKind* const host_kinds[kHostKinds];

void BeginSession(LongHost& host, const HostKind& kind, unsigned cipher);  // after Accept
void Serve(LongHost& host, int milliseconds);  // reads for that time, and answers
void Show(LongHost& host, const std::string& bytes);

extern const HostKind telnet_kind, ssh1_kind, ssh2_kind;

#endif
