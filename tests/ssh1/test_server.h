// SPDX-License-Identifier: MIT
// Runs the SSH-1 server of this folder as a child process; server.py describes its options.
#ifndef QUILL_TESTS_SSH1_TEST_SERVER_H
#define QUILL_TESTS_SSH1_TEST_SERVER_H

#include <QProcess>
#include <string>
#include <vector>

struct TestServer {
    explicit TestServer(const QStringList& options = {});  // returns once the server has a port
    ~TestServer();
    TestServer(const TestServer&) = delete;
    TestServer& operator=(const TestServer&) = delete;

    int port = 0;  // 0: the server did not start

    // The lines that the server has printed so far. [any thread]
    std::vector<std::string> Told() const;
    bool Tells(const std::string& line) const;      // waits for exactly this line
    int Count(const std::string& beginning) const;  // lines with that beginning

    QProcess process;
    std::string log;  // the path of its output file
};

#endif
