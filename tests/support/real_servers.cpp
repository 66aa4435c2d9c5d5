// SPDX-License-Identifier: MIT
// Runs server scripts as processes and drives the shells behind them.
#include "tests/support/real_servers.h"

#include <gtest/gtest.h>

#include "tests/support/person.h"

RealServer::RealServer(const QString& script, const QStringList& arguments,
                       const QStringList& variables) {
    process.setEnvironment(QProcess::systemEnvironment() + variables);
    process.start(script, arguments);
    process.waitForReadyRead(120000);
    port = process.readLine().trimmed().toInt();
    if (port == 0) process.waitForFinished(10000);
}

RealServer::~RealServer() {
    process.closeWriteChannel();
    if (!process.waitForFinished(10000)) process.kill(), process.waitForFinished();
}

bool RealServer::Skipped() const {
    return process.state() == QProcess::NotRunning && process.exitCode() == 77;
}

void ClearAndRun(const std::string& command) {
    TypeText("clear\n");
    ASSERT_TRUE(Eventually([] { return TerminalRow(1) == "$"; })) << TerminalText();
    TypeText(command + "\n");
}

void ExpectFirstScreenOfVttest(const std::string& program) {
    ClearAndRun(program + " 24x80.80");
    ASSERT_TRUE(TerminalShows("Enter choice number")) << TerminalText();
    TypeText("1\n");
    ASSERT_TRUE(TerminalShows("The screen should be cleared")) << TerminalText();
    OnWindowThread([] {
        EXPECT_EQ(TerminalRow(1), std::string(80, '*'));
        EXPECT_EQ(TerminalRow(24), std::string(80, '*'));
        EXPECT_EQ(TerminalRow(2), "*" + std::string(78, '+') + "*");
    });
}
