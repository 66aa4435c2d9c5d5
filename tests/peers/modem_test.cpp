// SPDX-License-Identifier: MIT
// Dialling over a modem: the test simulates a modem on a pseudo-terminal, the real chat talks to
// it, and the real pppd runs as far as a kernel without PPP allows.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>
#include <QProcess>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <thread>

#include "platform/qt/services/remote_access.h"
#include "session/session_state.h"
#include "tests/support/fake_host.h"
#include "tests/support/person.h"
#include "tests/support/services_test_hooks.h"
#include "tests/support/sessions.h"

namespace {

const char kFailed[] = "Error: RAS Dial has failed. Check your network configuration ";

// Understands ATZ, ATDT, ATH and +++, and answers a number with the reply that the test chose.
class Modem {
  public:
    explicit Modem(const std::string& answer) : answer_(answer) {
        master_ = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
        grantpt(master_);
        unlockpt(master_);
        line_ = ptsname(master_);
        held_ = open(line_.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
        setenv("QUILL_MODEM", line_.c_str(), 1);
        thread_ = std::thread([this] { Serve(); });
    }
    ~Modem() {
        end_ = true;
        thread_.join();
        close(held_);
        close(master_);
    }
    std::string Heard() {  // the received commands, each followed by a blank
        const std::lock_guard<std::mutex> lock(mutex_);
        return heard_;
    }

  private:
    void Serve() {
        while (!end_) {
            pollfd wait = {master_, POLLIN, 0};
            char byte;
            if (poll(&wait, 1, 20) > 0 && read(master_, &byte, 1) == 1) Take(byte);
        }
    }
    void Take(char byte) {
        command_ += byte;
        if (command_ != "+++" && byte != '\r') return;
        const std::string command = command_.substr(0, command_.find('\r'));
        command_.clear();
        {
            const std::lock_guard<std::mutex> lock(mutex_);
            heard_ += command + " ";
        }
        const bool dials = command.rfind("ATDT", 0) == 0;
        const std::string text = command == "+++" ? "" : command + "\r";
        const std::string answer = dials ? answer_ : "OK";
        if (!answer.empty()) Say(text + "\r\n" + answer + "\r\n");
    }
    void Say(const std::string& text) {
        EXPECT_EQ(write(master_, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }

    const std::string answer_;
    std::string line_;
    int master_ = -1;
    int held_ = -1;  // keeps the line open between its users
    std::string command_;
    std::mutex mutex_;
    std::string heard_;
    std::atomic<bool> end_{false};
    std::thread thread_;
};

class ModemDial : public testing::Test {
  protected:
    void SetUp() override {
        QProcess unpack;
        unpack.start(QUILL_PEERS "/unpack.sh", {"ppp"});
        ASSERT_TRUE(unpack.waitForFinished(120000));
        if (unpack.exitCode() == 77) GTEST_SKIP() << unpack.readAllStandardError().toStdString();
        const std::string root = unpack.readAllStandardOutput().trimmed().toStdString();
        setenv("QUILL_CHAT", (root + "/usr/sbin/chat").c_str(), 1);
        services_test_hooks = ServicesTestHooks();
        services_test_hooks.dial_up_folder = FreshRoot();
        services_test_hooks.dial_up_program = QUILL_PEERS "/pppd_on_modem.sh";
        std::ofstream(services_test_hooks.dial_up_folder + "/depot") << "/dev/ttyS0\n";
    }
    void TearDown() override { services_test_hooks = ServicesTestHooks(); }

    static void Dial() {
        OnWindowThread([] {
            lstrcpyW(session.settings.ras, u"depot");
            session.dial_request = 1;
        });
    }
    static bool NotDialling() {
        return Eventually([] { return session.dialling == 0 && session.dial_request == 0; });
    }
};

TEST_F(ModemDial, ConnectsAndTheSessionBeginsAndHangingUpReachesTheModem) {
    Modem modem("CONNECT 33600");
    FakeHost host;
    RunProgram({}, [&] {
        SetHost(u"127.0.0.1", host.port);
        Dial();
        ASSERT_TRUE(host.Accept());
        host.Send("login: ");
        EXPECT_TRUE(TerminalShows("login:"));
        EXPECT_EQ(modem.Heard(), "ATZ ATDT5551234 ");
        OnWindowThread([] {
            EXPECT_EQ(session.last_dial_state, 8192);
            session.settings.exit_dis = 1;
        });
        host.Drop();
        for (int i = 0; i < 2000 && ProgramRuns(); i++) Sleep(5);
        EXPECT_FALSE(ProgramRuns());
    });
    EXPECT_EQ(modem.Heard(), "ATZ ATDT5551234 +++ ATH ");
}

TEST_F(ModemDial, EveryRefusalOfTheModemIsReported) {
    for (const char* answer : {"BUSY", "NO CARRIER", "NO ANSWER", "NO DIALTONE"}) {
        Modem modem(answer);
        RunProgram({}, [&] {
            Dial();
            EXPECT_EQ(AwaitBox(), kFailed) << answer;
            OnWindowThread([] {
                EXPECT_EQ(TerminalRow(1), "Open port");
                EXPECT_EQ(TerminalRow(2), "A device is about to be connected");
                EXPECT_EQ(TerminalRow(3), "Disconnection or failed connection");
            });
            PressOk();
            EXPECT_TRUE(NotDialling());
        });
    }
}

TEST_F(ModemDial, ChatsOwnWordsGiveTheRefusalsError) {
    const std::pair<const char*, DWORD> rows[] = {
        {"BUSY", 676}, {"NO ANSWER", 678}, {"NO CARRIER", 679}, {"NO DIALTONE", 680}};
    for (const auto& [answer, error] : rows) {
        Modem modem(answer);
        QProcess dial;
        dial.setProcessChannelMode(QProcess::MergedChannels);
        dial.start(QUILL_PEERS "/pppd_on_modem.sh", {"call", "depot", "nodetach"});
        ASSERT_TRUE(dial.waitForFinished(20000));
        const QByteArray bytes = dial.readAll();
        DialLog log;
        log.Take(bytes.data(), static_cast<size_t>(bytes.size()));
        EXPECT_EQ(dial.exitCode(), 8);
        EXPECT_EQ(log.ErrorOf(dial.exitCode()), error) << bytes.toStdString();
    }
}

TEST_F(ModemDial, HangingUpEndsADialThatIsNotThroughYet) {
    Modem modem("");
    RunProgram({}, [&] {
        Dial();
        ASSERT_TRUE(TerminalShows("A device is about to be connected"));
        ASSERT_TRUE(Eventually([&] { return modem.Heard() == "ATZ ATDT5551234 "; }));
        PostToMain(WM_COMMAND, 40011);
        EXPECT_TRUE(NotDialling());
        EXPECT_TRUE(TerminalShows("Disconnection or failed connection"));
        EXPECT_EQ(AwaitBox(200), "");
    });
    EXPECT_EQ(modem.Heard(), "ATZ ATDT5551234 +++ ATH ");
}

TEST_F(ModemDial, TheRealPppdWithoutPppInTheKernelIsReported) {
    if (geteuid() != 0) GTEST_SKIP() << "needs root for a name space";
    if (std::filesystem::exists("/dev/ppp")) GTEST_SKIP() << "this kernel has PPP";
    services_test_hooks.dial_up_program = QUILL_PEERS "/real_pppd.sh";
    QProcess program;
    program.start(QUILL_PEERS "/real_pppd.sh", {"call", "depot", "nodetach"});
    ASSERT_TRUE(program.waitForFinished(20000));
    EXPECT_EQ(program.exitCode(), 4) << program.readAll().toStdString();
    RunProgram({}, [&] {
        Dial();
        EXPECT_EQ(AwaitBox(), kFailed);
        EXPECT_TRUE(TerminalShows("Open port\nDisconnection or failed connection\n"));
        PressOk();
    });
}

}  // namespace
