// SPDX-License-Identifier: MIT
// "Connect Advanced": marks, port, protocol and cipher.
#include <gtest/gtest.h>

#include "platform/qt/dialog/dialogs.h"
#include "platform/qt/window/window.h"
#include "resources/resource_ids.h"
#include "session/session_state.h"
#include "settings/settings.h"
#include "tests/dialogs/dialog_person.h"
#include "tests/dialogs/stored.h"
#include "tests/support/fake_host.h"
#include "tests/support/person.h"
#include "tests/support/sessions.h"

namespace {

Settings& s = session.settings;

struct Advanced {
    HWND connect;
    HWND dialog;
};

Advanced OpenAdvanced() {
    const HWND connect = OpenDialog(IDM_CONNECT, "Connect");
    ClickControl(connect, IDC_ADVANCED);
    return {connect, AwaitDialog("Connect Advanced")};
}

// Closes both dialogs. Without a host name the connect fails with a message box.
void CloseBoth(const Advanced& advanced, int button) {
    ClickControl(advanced.dialog, button);
    ASSERT_TRUE(Closed(advanced.dialog));
    ClickControl(advanced.connect, IDOK);
    ASSERT_TRUE(Closed(advanced.connect));
    DismissBox("Error: Cannot connect to the UNIX Host");
}

// The data of the dialog, which stays valid after the dialog is closed.
std::shared_ptr<DialogData> DataOf(HWND dialog) {
    std::shared_ptr<DialogData> data;
    OnWindowThread([&] { data = FindWindowRecord(dialog)->dialog; });
    return data;
}

Stage FreshStage(const std::function<void()>& before = {}) {
    Stage stage;
    stage.root = FreshRoot();
    stage.before = before;
    return stage;
}

struct MarkCase {
    int id;
    const char* name;
    DWORD Settings::*field;
};

void PrintTo(const MarkCase& each, std::ostream* out) { *out << each.name; }

const MarkCase kMarks[] = {
    {1249, "autoconnect", &Settings::autoconnect},
    {1251, "exit_dis", &Settings::exit_dis},
    {1252, "confirm_exit", &Settings::confirm_exit},
    {1254, "xbox", &Settings::xbox},
    {1258, "ssh", &Settings::ssh},
};

class AdvancedMark : public testing::TestWithParam<MarkCase> {};

TEST_P(AdvancedMark, OkStoresOnlyTheToggledMark) {
    const MarkCase& mark = GetParam();
    const Stage stage = FreshStage();
    RunProgram(stage, [&] {
        const Advanced advanced = OpenAdvanced();
        for (const MarkCase& each : kMarks) EXPECT_FALSE(Marked(advanced.dialog, each.id));
        ClickControl(advanced.dialog, mark.id);
        EXPECT_TRUE(Marked(advanced.dialog, mark.id));
        EXPECT_EQ(s.*mark.field, 0u) << "before OK";
        CloseBoth(advanced, IDOK);
        for (const MarkCase& each : kMarks) {
            EXPECT_EQ(s.*each.field, each.id == mark.id ? 1u : 0u) << each.name;
            EXPECT_EQ(StoredNumber(stage.root, each.name), each.id == mark.id ? 1u : 0u);
        }
    });
}

TEST_P(AdvancedMark, CancelKeepsIt) {
    const MarkCase& mark = GetParam();
    const Stage stage = FreshStage();
    RunProgram(stage, [&] {
        const Advanced advanced = OpenAdvanced();
        ClickControl(advanced.dialog, mark.id);
        CloseBoth(advanced, IDCANCEL);
        EXPECT_EQ(s.*mark.field, 0u);
        EXPECT_EQ(StoredNumber(stage.root, mark.name), 0u);
    });
}

TEST_P(AdvancedMark, IsShownAndCanBeTakenAway) {
    const MarkCase& mark = GetParam();
    const Stage stage = FreshStage([&] {
        WriteNumber(QString(mark.name).toStdU16String().c_str(), 1);
        WriteString(u"host", u"");
    });
    RunProgram(stage, [&] {
        if (mark.id == IDC_AUTOCONNECT) DismissBox("Error: Cannot connect to the UNIX Host");
        const Advanced advanced = OpenAdvanced();
        EXPECT_TRUE(Marked(advanced.dialog, mark.id));
        ClickControl(advanced.dialog, mark.id);
        CloseBoth(advanced, IDOK);
        EXPECT_EQ(StoredNumber(stage.root, mark.name), 0u);
    });
}

INSTANTIATE_TEST_SUITE_P(Each, AdvancedMark, testing::ValuesIn(kMarks),
                         [](const auto& info) { return std::string(info.param.name); });

struct PortCase {
    const char* name;
    const char16_t* typed;
    uint32_t stored;  // the port was 2323
};

void PrintTo(const PortCase& each, std::ostream* out) { *out << each.name; }

const PortCase kPorts[] = {
    {"Plain", u"22", 22},
    {"Highest", u"65535", 65535},
    {"Zero", u"0", 0},
    {"PastSixteenBits", u"65559", 65559},
    {"Bit31", u"2147483648", 2147483648},
    {"PastBit31", u"2147483671", 2147483671},
    {"Highest32Bits", u"4294967295", 4294967295},
    {"Past32Bits", u"4294967296", 2323},
    {"FarPast32Bits", u"99999999999", 2323},
    {"Empty", u"", 2323},
    {"Letters", u"abc", 2323},
    {"Negative", u"-1", 2323},
    {"BlanksAround", u" 22 ", 22},
    {"BlankWithin", u"2 2", 2323},
    {"LettersAfter", u"22x", 2323},
    {"OtherDigits", u"\x0662\x0663", 2323},
};

class AdvancedPort : public testing::TestWithParam<PortCase> {};

TEST_P(AdvancedPort, IsStoredOnlyIfItIsANumber) {
    const Stage stage = FreshStage([] { WriteNumber(u"port", 2323); });
    RunProgram(stage, [&] {
        const Advanced advanced = OpenAdvanced();
        EXPECT_EQ(TextOf(advanced.dialog, IDC_PORT), u"2323");
        TypeInto(advanced.dialog, IDC_PORT, GetParam().typed);
        CloseBoth(advanced, IDOK);
        EXPECT_EQ(s.port, GetParam().stored);
        EXPECT_EQ(StoredNumber(stage.root, "port"), GetParam().stored);
    });
}

INSTANTIATE_TEST_SUITE_P(Each, AdvancedPort, testing::ValuesIn(kPorts),
                         [](const auto& info) { return std::string(info.param.name); });

// The dialog shows the number with a minus sign and cannot read it back, so OK keeps the port.
TEST(ConnectAdvanced, PortOf2147483648AndAboveIsShownNegativeAndKept) {
    const std::pair<uint32_t, const char16_t*> ports[] = {{2147483647, u"2147483647"},
                                                          {2147483648, u"-2147483648"},
                                                          {2147483671, u"-2147483625"},
                                                          {4294967295, u"-1"}};
    for (const auto& [port, shown] : ports) {
        const Stage stage = FreshStage([port = port] { WriteNumber(u"port", port); });
        RunProgram(stage, [&, port = port, shown = shown] {
            for (int times = 0; times < 2; times++) {
                const Advanced advanced = OpenAdvanced();
                EXPECT_EQ(TextOf(advanced.dialog, IDC_PORT), shown);
                CloseBoth(advanced, IDOK);
                EXPECT_EQ(s.port, port);
                EXPECT_EQ(StoredNumber(stage.root, "port"), port);
            }
        });
    }
}

TEST(ConnectAdvanced, CancelKeepsThePort) {
    const Stage stage = FreshStage();
    RunProgram(stage, [&] {
        const Advanced advanced = OpenAdvanced();
        TypeInto(advanced.dialog, IDC_PORT, u"22");
        CloseBoth(advanced, IDCANCEL);
        EXPECT_EQ(s.port, 23u);
        EXPECT_EQ(StoredNumber(stage.root, "port"), 23u);
    });
}

TEST(ConnectAdvanced, OnlyTheLowSixteenBitsOfAPortCount) {
    FakeHost host;
    const Stage stage = FreshStage();
    const std::string typed = std::to_string(65536 + host.port);
    RunProgram(stage, [&] {
        const Advanced advanced = OpenAdvanced();
        TypeInto(advanced.dialog, IDC_PORT, QString::fromStdString(typed).toStdU16String());
        ClickControl(advanced.dialog, IDOK);
        ASSERT_TRUE(Closed(advanced.dialog));
        TypeInto(advanced.connect, IDC_HOST, u"127.0.0.1");
        ClickControl(advanced.connect, IDOK);
        EXPECT_TRUE(host.Accept());
    });
}

// The two buttons differ only in what they store.
TEST(ConnectAdvanced, ClosesWithMinusOneByEitherButtonAndReturnsToConnect) {
    RunProgram(FreshStage(), [] {
        for (int button : {IDOK, IDCANCEL}) {
            const Advanced advanced = OpenAdvanced();
            const auto closed = DataOf(advanced.dialog);
            ClickControl(advanced.dialog, button);
            ASSERT_TRUE(Closed(advanced.dialog));
            EXPECT_EQ(closed->result, -1);
            OnWindowThread([&] { EXPECT_TRUE(IsWindow(advanced.connect)); });
            ClickControl(advanced.connect, IDCANCEL);
            ASSERT_TRUE(Closed(advanced.connect));
        }
    });
}

TEST(ConnectAdvanced, ValuesTakenByOkStayWhenConnectIsCancelled) {
    const Stage stage = FreshStage();
    RunProgram(stage, [&] {
        const Advanced advanced = OpenAdvanced();
        ClickControl(advanced.dialog, IDC_XBOX);
        ClickControl(advanced.dialog, IDOK);
        ASSERT_TRUE(Closed(advanced.dialog));
        ClickControl(advanced.connect, IDCANCEL);
        ASSERT_TRUE(Closed(advanced.connect));
        EXPECT_EQ(s.xbox, 1u);
        EXPECT_EQ(StoredNumber(stage.root, "xbox"), kNotStored);
    });
    EXPECT_EQ(StoredNumber(stage.root, "xbox"), 1u) << "saved at the program's end";
}

TEST(ConnectAdvanced, SelectingAProtocolClearsTheOther) {
    const Stage stage = FreshStage();
    RunProgram(stage, [&] {
        Advanced advanced = OpenAdvanced();
        EXPECT_TRUE(Marked(advanced.dialog, IDC_SSH2));
        EXPECT_FALSE(Marked(advanced.dialog, IDC_SSH1));
        ClickControl(advanced.dialog, IDC_SSH1);
        EXPECT_FALSE(Marked(advanced.dialog, IDC_SSH2));
        CloseBoth(advanced, IDOK);
        EXPECT_EQ(StoredNumber(stage.root, "ssh_type2"), 0u);

        advanced = OpenAdvanced();
        EXPECT_TRUE(Marked(advanced.dialog, IDC_SSH1));
        ClickControl(advanced.dialog, IDC_SSH2);
        CloseBoth(advanced, IDOK);
        EXPECT_EQ(StoredNumber(stage.root, "ssh_type2"), 1u);

        advanced = OpenAdvanced();
        ClickControl(advanced.dialog, IDC_SSH1);
        CloseBoth(advanced, IDCANCEL);
        EXPECT_EQ(s.ssh_type2, 1u);
        EXPECT_EQ(StoredNumber(stage.root, "ssh_type2"), 1u);
    });
}

TEST(ConnectAdvanced, SelectingACipherClearsTheOtherAndLeavesTheProtocol) {
    const int ids[] = {IDC_DES, IDC_TRIPLE_DES, IDC_BLOWFISH};
    const Stage stage = FreshStage();
    RunProgram(stage, [&] {
        for (uint32_t type : {0u, 2u, 1u}) {
            const Advanced advanced = OpenAdvanced();
            ClickControl(advanced.dialog, ids[type]);
            for (uint32_t i = 0; i < 3; i++) EXPECT_EQ(Marked(advanced.dialog, ids[i]), i == type);
            EXPECT_TRUE(Marked(advanced.dialog, IDC_SSH2));
            CloseBoth(advanced, IDOK);
            EXPECT_EQ(s.ssh_type, type);
            EXPECT_EQ(StoredNumber(stage.root, "ssh_type"), type);
        }
        const Advanced advanced = OpenAdvanced();
        EXPECT_TRUE(Marked(advanced.dialog, IDC_TRIPLE_DES));
        ClickControl(advanced.dialog, IDC_DES);
        CloseBoth(advanced, IDCANCEL);
        EXPECT_EQ(StoredNumber(stage.root, "ssh_type"), 1u);
    });
}

// A session treats 1 as SSH-2 and any other value as SSH-1.
TEST(ConnectAdvanced, AProtocolOutOfRangeIsShownAsSsh1) {
    const Stage stage = FreshStage([] { WriteNumber(u"ssh_type2", 2); });
    RunProgram(stage, [&] {
        const Advanced advanced = OpenAdvanced();
        EXPECT_TRUE(Marked(advanced.dialog, IDC_SSH1));
        EXPECT_FALSE(Marked(advanced.dialog, IDC_SSH2));
        CloseBoth(advanced, IDOK);
        EXPECT_EQ(StoredNumber(stage.root, "ssh_type2"), 0u);
    });
}

TEST(ConnectAdvanced, ACipherThatDoesNotExistIsNotShownAndStays) {
    const Stage stage = FreshStage([] { WriteNumber(u"ssh_type", 4000000000u); });
    RunProgram(stage, [&] {
        const Advanced advanced = OpenAdvanced();
        for (int id : {IDC_DES, IDC_TRIPLE_DES, IDC_BLOWFISH})
            EXPECT_FALSE(Marked(advanced.dialog, id));
        CloseBoth(advanced, IDOK);
        EXPECT_EQ(StoredNumber(stage.root, "ssh_type"), 4000000000u);
    });
}

TEST(ConnectAdvanced, MarksOutOfRangeAreMarkedAndBecomeOne) {
    const Stage stage = FreshStage([] { WriteNumber(u"xbox", 77); });
    RunProgram(stage, [&] {
        const Advanced advanced = OpenAdvanced();
        EXPECT_TRUE(Marked(advanced.dialog, IDC_XBOX));
        CloseBoth(advanced, IDOK);
        EXPECT_EQ(StoredNumber(stage.root, "xbox"), 1u);
    });
}

TEST(ConnectAdvanced, OpensAtPosition20And20) {
    RunProgram(FreshStage(), [] {
        const RECT place = Place(OpenAdvanced().dialog);
        EXPECT_EQ(place.left, 20);
        EXPECT_EQ(place.top, 20);
    });
}

}  // namespace
