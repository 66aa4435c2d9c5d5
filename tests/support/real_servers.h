// SPDX-License-Identifier: MIT
// Real servers that a script starts for a test, and the shells that they provide. All calls are
// made on the person's thread.
#ifndef QUILL_TESTS_SUPPORT_REAL_SERVERS_H
#define QUILL_TESTS_SUPPORT_REAL_SERVERS_H

#include <QProcess>
#include <string>

// A script that starts a server, prints its port and ends when its input closes. It ends with exit
// code 77 if the server is not available.
struct RealServer {
    // `variables` are added to the environment, each "NAME=VALUE".
    RealServer(const QString& script, const QStringList& arguments,
               const QStringList& variables = {});
    ~RealServer();
    RealServer(const RealServer&) = delete;
    RealServer& operator=(const RealServer&) = delete;
    bool Skipped() const;

    QProcess process;
    int port = 0;  // 0: the server did not start
};

#define START_OR_SKIP(server)                                                                      \
    if ((server).Skipped()) GTEST_SKIP() << (server).process.readAllStandardError().toStdString(); \
    ASSERT_GT((server).port, 0) << (server).process.readAllStandardError().toStdString()

// Clears the screen and runs the command at the shell's prompt "$ ".
void ClearAndRun(const std::string& command);
void ExpectFirstScreenOfVttest(const std::string& program);  // its path, or a name on PATH

#endif
