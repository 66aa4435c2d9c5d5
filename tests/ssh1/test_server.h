// SPDX-License-Identifier: MIT
// The SSH-1 server beside this file as a process of the test's; see server.py for its options.
#ifndef QUILL_TESTS_SSH1_TEST_SERVER_H
#define QUILL_TESTS_SSH1_TEST_SERVER_H

#include <QProcess>
#include <string>
#include <vector>

struct TestServer {
    explicit TestServer(const QStringList& options = {});  // runs once it has a port
    ~TestServer();
    TestServer(const TestServer&) = delete;
    TestServer& operator=(const TestServer&) = delete;

    int port = 0;  // 0: it did not start

    // Lines that it told so far. [any thread]
    std::vector<std::string> Told() const;
    bool Tells(const std::string& line) const;      // waits for that very line
    int Count(const std::string& beginning) const;  // of lines that begin so

    QProcess process;
    std::string log;  // file
};

#endif
