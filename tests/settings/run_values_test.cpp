// SPDX-License-Identifier: MIT
// A host that applies to one run only, instead of the stored one: which values the program uses,
// and which values the store keeps.
#include "platform/qt/services/registry.h"

#include "session/session_state.h"
#include "settings/settings.h"
#include "tests/settings/device.h"

namespace {

const Settings& s = session.settings;

class RunValues : public DeviceTest {
  protected:
    void TearDown() override {
        ForgetRun();
        DeviceTest::TearDown();
    }
};

std::u16string Text(LPCWSTR text) { return text; }

void StoreLogin() {
    StoreText("host", u"stores.example");
    StoreNumber("port", 22);
    StoreNumber("ssh", 1);
    StoreNumber("autoconnect", 0);
    StoreNumber("ssh_def", 1);
    StoreText("ssh_u", u"anna");
    StoreText("ssh_p", u"secret");
    StoreText("resp1", u"anna");
    StoreText("resp2", u"secret");
}

void ExpectStoredLogin() {
    EXPECT_EQ(TerminatedBytes(u"stores.example"), Stored("host").data);
    EXPECT_EQ(NumberBytes(22), Stored("port").data);
    EXPECT_EQ(NumberBytes(1), Stored("ssh").data);
    EXPECT_EQ(NumberBytes(0), Stored("autoconnect").data);
    EXPECT_EQ(NumberBytes(1), Stored("ssh_def").data);
    EXPECT_EQ(TerminatedBytes(u"anna"), Stored("ssh_u").data);
    EXPECT_EQ(TerminatedBytes(u"secret"), Stored("ssh_p").data);
    EXPECT_EQ(TerminatedBytes(u"anna"), Stored("resp1").data);
    EXPECT_EQ(TerminatedBytes(u"secret"), Stored("resp2").data);
}

void ExpectNoPasswords() {
    EXPECT_EQ(0u, s.ssh_def);
    EXPECT_EQ(u"", Text(s.ssh_p));
    EXPECT_EQ(u"", Text(s.resp1));
    EXPECT_EQ(u"", Text(s.resp2));
}

void ExpectPasswords() {
    EXPECT_EQ(1u, s.ssh_def);
    EXPECT_EQ(u"secret", Text(s.ssh_p));
    EXPECT_EQ(u"anna", Text(s.resp1));
    EXPECT_EQ(u"secret", Text(s.resp2));
}

void Load(const RunTarget& target) {
    ConnectThisRun(target);
    LoadSettings();
}

}  // namespace

TEST_F(RunValues, AFreshDeviceConnectsToTheHostByTelnet) {
    Load({"other.example", 0, RunProtocol::kOfTheStore, ""});
    EXPECT_EQ(u"other.example", Text(s.host));
    EXPECT_EQ(23u, s.port);
    EXPECT_EQ(0u, s.ssh);
    EXPECT_EQ(1u, s.autoconnect);
    SaveSettings();
    EXPECT_EQ("", Stored("host").data);
    EXPECT_EQ("", Stored("autoconnect").data);
    EXPECT_EQ(NumberBytes(8), Stored("fsize").data);
}

TEST_F(RunValues, TheStoredProtocolIsUsedForABareHost) {
    StoreLogin();
    Load({"other.example", 0, RunProtocol::kOfTheStore, ""});
    EXPECT_EQ(1u, s.ssh);
    EXPECT_EQ(22u, s.port);
}

TEST_F(RunValues, AnAddressGivesItsProtocolAndPort) {
    StoreLogin();
    Load({"other.example", 2323, RunProtocol::kTelnet, ""});
    EXPECT_EQ(0u, s.ssh);
    EXPECT_EQ(2323u, s.port);
    Load({"other.example", 0, RunProtocol::kTelnet, ""});
    EXPECT_EQ(23u, s.port);
    Load({"other.example", 0, RunProtocol::kSsh, "bert"});
    EXPECT_EQ(22u, s.port);
    EXPECT_EQ(u"bert", Text(s.ssh_u));
}

TEST_F(RunValues, AnotherHostGetsNoPassword) {
    StoreLogin();
    Load({"other.example", 0, RunProtocol::kOfTheStore, ""});
    ExpectNoPasswords();
    SaveSettings();
    ExpectStoredLogin();
}

TEST_F(RunValues, AnotherPortProtocolOrUserGetsNoPassword) {
    StoreLogin();
    Load({"stores.example", 2222, RunProtocol::kSsh, ""});
    ExpectNoPasswords();
    Load({"stores.example", 22, RunProtocol::kTelnet, ""});
    ExpectNoPasswords();
    Load({"stores.example", 0, RunProtocol::kSsh, "bert"});
    ExpectNoPasswords();
    SaveSettings();
    ExpectStoredLogin();
}

TEST_F(RunValues, TheStoredHostGetsItsPasswords) {
    StoreLogin();
    Load({"Stores.Example", 0, RunProtocol::kSsh, ""});
    ExpectPasswords();
    Load({"stores.example", 22, RunProtocol::kOfTheStore, "anna"});
    ExpectPasswords();
    SaveSettings();
    ExpectStoredLogin();
}

TEST_F(RunValues, ANewPasswordOfTheStoredHostIsStored) {
    StoreLogin();
    Load({"stores.example", 0, RunProtocol::kSsh, ""});
    lstrcpyW(session.settings.ssh_p, u"changed");
    SaveSettings();
    EXPECT_EQ(TerminatedBytes(u"changed"), Stored("ssh_p").data);
}

TEST_F(RunValues, ValuesTypedForAnotherHostLastForThisRun) {
    StoreLogin();
    Load({"other.example", 0, RunProtocol::kSsh, ""});
    lstrcpyW(session.settings.host, u"third.example");
    lstrcpyW(session.settings.ssh_p, u"changed");
    session.settings.ssh_def = 1;
    session.settings.autoconnect = 0;
    session.settings.fsize = 11;
    SaveSettings();
    ExpectStoredLogin();
    EXPECT_EQ(NumberBytes(11), Stored("fsize").data);
    LoadSettings();
    EXPECT_EQ(u"third.example", Text(s.host));
    EXPECT_EQ(u"changed", Text(s.ssh_p));
}

TEST_F(RunValues, AnImportBeforeTheFirstReadingIsStored) {
    ConnectThisRun({"other.example", 0, RunProtocol::kOfTheStore, ""});
    WriteDeviceFile("mconfig.cfg", "host = \"stores.example\"\nssh = 1\nresp1 = \"anna\"\n");
    ImportConfigFile(nullptr);
    LoadSettings();
    EXPECT_EQ(u"other.example", Text(s.host));
    EXPECT_EQ(22u, s.port);
    EXPECT_EQ(u"", Text(s.resp1));
    SaveSettings();
    EXPECT_EQ(TerminatedBytes(u"stores.example"), Stored("host").data);
    EXPECT_EQ(TerminatedBytes(u"anna"), Stored("resp1").data);
}

TEST_F(RunValues, WithoutAHostEverythingIsAsStored) {
    StoreLogin();
    LoadSettings();
    EXPECT_EQ(u"stores.example", Text(s.host));
    ExpectPasswords();
    lstrcpyW(session.settings.host, u"third.example");
    SaveSettings();
    EXPECT_EQ(TerminatedBytes(u"third.example"), Stored("host").data);
}
