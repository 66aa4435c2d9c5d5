// SPDX-License-Identifier: MIT
// A host on loopback whose every byte the test decides.
#ifndef QUILL_TESTS_SUPPORT_FAKE_HOST_H
#define QUILL_TESTS_SUPPORT_FAKE_HOST_H

#include <string>

struct FakeHost {
    FakeHost();  // listens on a free port of 127.0.0.1
    ~FakeHost();
    FakeHost(const FakeHost&) = delete;
    FakeHost& operator=(const FakeHost&) = delete;

    int port = 0;

    bool Accept(int milliseconds = 10000);  // the next connection, which replaces the one before
    bool Send(const std::string& bytes);
    void SendUrgent(char byte);
    size_t TrySend(const std::string& bytes);                  // what the sockets take at once
    std::string Read(size_t count, int milliseconds = 10000);  // exactly, or what came in time
    std::string ReadSome(int milliseconds);                    // what comes within the time
    bool Closed(int milliseconds = 10000);                     // the client's end has been closed
    void Drop();                                               // an orderly close
    void Reset();                                              // an abort

    std::string Config(const std::string& more = "") const;  // mconfig.cfg that connects here

    int listener = -1;
    int connection = -1;
};

int RefusingPort();  // a port of 127.0.0.1 on which nobody listens

#endif
