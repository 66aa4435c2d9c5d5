// SPDX-License-Identifier: MIT
// A host on loopback. The test decides every byte that it sends.
#ifndef QUILL_TESTS_SUPPORT_FAKE_HOST_H
#define QUILL_TESTS_SUPPORT_FAKE_HOST_H

#include <string>

struct FakeHost {
    FakeHost();  // listens on a free port of 127.0.0.1
    ~FakeHost();
    FakeHost(const FakeHost&) = delete;
    FakeHost& operator=(const FakeHost&) = delete;

    int port = 0;

    bool Accept(int milliseconds = 10000);  // takes the next connection and closes the previous one
    bool Send(const std::string& bytes);
    void SendUrgent(char byte);
    size_t TrySend(const std::string& bytes);  // sends what fits without waiting; returns the count
    // `count` bytes, or fewer at the time limit.
    std::string Read(size_t count, int milliseconds = 10000);
    std::string ReadSome(int milliseconds);  // everything that arrives within the time
    bool Closed(int milliseconds = 10000);   // true once the client has closed its end
    void Drop();                             // an orderly close
    void Reset();                            // an abort

    // The text of an mconfig.cfg that connects here.
    std::string Config(const std::string& more = "") const;

    int listener = -1;
    int connection = -1;
};

int RefusingPort();  // a port of 127.0.0.1 on which nobody listens

#endif
