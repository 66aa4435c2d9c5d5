// SPDX-License-Identifier: MIT
// Starts the SSH-1 test server and collects its output.
#include "tests/ssh1/test_server.h"

#include <algorithm>
#include <fstream>
#include <QThread>

#include "tests/support/person.h"

TestServer::TestServer(const QStringList& options) : log(FreshRoot() + "/told") {
    process.setStandardOutputFile(QString::fromStdString(log));
    process.setStandardErrorFile(QString::fromStdString(log), QIODevice::Append);
    process.start(QUILL_SSH1_SERVER, options);
    if (!process.waitForStarted()) return;
    for (int waited = 0; waited < 30000 && port == 0; waited += 10) {
        const std::vector<std::string> told = Told();
        if (!told.empty() && told[0].starts_with("port ")) port = std::stoi(told[0].substr(5));
        if (port == 0) QThread::msleep(10);
    }
}

TestServer::~TestServer() {
    process.closeWriteChannel();
    if (!process.waitForFinished(10000)) process.kill(), process.waitForFinished();
}

// A line counts once its newline has arrived.
std::vector<std::string> TestServer::Told() const {
    std::ifstream file(log);
    std::vector<std::string> lines;
    std::string line;
    while (std::getline(file, line))
        if (!file.eof()) lines.push_back(line);
    return lines;
}

bool TestServer::Tells(const std::string& line) const {
    for (int waited = 0; waited < 10000; waited += 10) {
        const std::vector<std::string> told = Told();
        if (std::find(told.begin(), told.end(), line) != told.end()) return true;
        QThread::msleep(10);
    }
    return false;
}

int TestServer::Count(const std::string& beginning) const {
    const std::vector<std::string> told = Told();
    return static_cast<int>(std::count_if(told.begin(), told.end(), [&](const std::string& line) {
        return line.starts_with(beginning);
    }));
}
