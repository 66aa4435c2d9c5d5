// SPDX-License-Identifier: MIT
// "Connect": the host and its history.
#include <gtest/gtest.h>

#include "resources/resource_ids.h"
#include "session/session_state.h"
#include "settings/settings.h"
#include "tests/dialogs/dialog_person.h"
#include "tests/dialogs/stored.h"
#include "tests/support/fake_host.h"
#include "tests/support/person.h"
#include "tests/support/sessions.h"

namespace {

const char kNoHost[] = "Error: Cannot connect to the UNIX Host";
const Settings& s = session.settings;

// The hosts of these tests do not exist, so each connection ends at once.
const char16_t* const kHosts[] = {u"one.invalid", u"two.invalid", u"three.invalid", u"four.invalid",
                                  u"five.invalid"};
const char* const kHistoryNames[] = {"hist0a", "hist1a", "hist2a", "hist3a", "hist4a"};

Stage StageWithHistory(int hosts) {
    Stage stage;
    stage.root = FreshRoot();
    stage.before = [=] {
        for (int i = 0; i < hosts; i++)
            WriteString(QString(kHistoryNames[i]).toStdU16String().c_str(), kHosts[i]);
    };
    return stage;
}

HWND OpenConnect() { return OpenDialog(IDM_CONNECT, "Connect"); }

void ConnectTo(const std::u16string& host) {
    const HWND dialog = OpenConnect();
    TypeInto(dialog, IDC_HOST, host);
    ClickControl(dialog, IDOK);
    EXPECT_TRUE(Closed(dialog));
    DismissBox(kNoHost);
}

std::vector<std::u16string> StoredHistory(const std::string& root) {
    std::vector<std::u16string> history;
    for (const char* name : kHistoryNames) history.push_back(StoredText(root, name));
    return history;
}

using History = std::vector<std::u16string>;

TEST(ConnectDialog, OpensWithTheHostAndTheHistoryUpToTheFirstEmptyEntry) {
    Stage stage = StageWithHistory(5);
    const auto history = stage.before;
    stage.before = [=] {
        history();
        WriteString(u"host", u"here.invalid");
        WriteString(u"hist3a", u"");
    };
    RunProgram(stage, [] {
        const HWND dialog = OpenConnect();
        EXPECT_EQ(TextOf(dialog, IDC_HOST), u"here.invalid");
        EXPECT_EQ(Lines(dialog, IDC_HOST), History({kHosts[0], kHosts[1], kHosts[2]}));
    });
}

TEST(ConnectDialog, OkStoresTheHostAndPutsItFirstInTheHistory) {
    const Stage stage = StageWithHistory(2);
    RunProgram(stage, [&] {
        ConnectTo(u"new.invalid");
        EXPECT_EQ(std::u16string(s.host), u"new.invalid");
        EXPECT_EQ(StoredText(stage.root, "host"), u"new.invalid");
        EXPECT_EQ(StoredHistory(stage.root),
                  History({u"new.invalid", kHosts[0], kHosts[1], u"", u""}));
        EXPECT_EQ(session.connect_request, 1u);
    });
}

TEST(ConnectDialog, OkSavesBeforeTheConnectionStarts) {
    const Stage stage = StageWithHistory(0);
    RunProgram(stage, [&] {
        const HWND dialog = OpenConnect();
        TypeInto(dialog, IDC_HOST, u"new.invalid");
        ClickControl(dialog, IDOK);
        ASSERT_EQ(AwaitBox(), kNoHost) << "the connection has come this far";
        EXPECT_EQ(StoredText(stage.root, "host"), u"new.invalid");
        EXPECT_EQ(StoredText(stage.root, "hist0a"), u"new.invalid");
        PressOk();
    });
}

TEST(ConnectDialog, OkConnects) {
    FakeHost host;
    Stage stage;
    stage.root = FreshRoot();
    stage.before = [&] { WriteNumber(u"port", static_cast<DWORD>(host.port)); };
    RunProgram(stage, [&] {
        const HWND dialog = OpenConnect();
        TypeInto(dialog, IDC_HOST, u"127.0.0.1");
        ClickControl(dialog, IDOK);
        ASSERT_TRUE(host.Accept());
        EXPECT_TRUE(Closed(dialog));
        host.Send("hello");
        EXPECT_TRUE(TerminalShows("hello"));
        EXPECT_TRUE(Online());
        EXPECT_EQ(StoredText(stage.root, "host"), u"127.0.0.1");
    });
}

TEST(ConnectDialog, CancelChangesNothingAndTheResultIsMinusOne) {
    const Stage stage = StageWithHistory(1);
    RunProgram(stage, [&] {
        const HWND dialog = OpenConnect();
        TypeInto(dialog, IDC_HOST, u"new.invalid");
        ClickControl(dialog, IDCANCEL);
        ASSERT_TRUE(Closed(dialog));
        EXPECT_EQ(session.dialog_result, -1);
        EXPECT_EQ(session.connect_request, 0u);
        EXPECT_EQ(std::u16string(s.host), u"");
        EXPECT_EQ(StoredText(stage.root, "host"), u"(not stored)");
        EXPECT_EQ(StoredText(stage.root, "hist0a"), kHosts[0]);
        EXPECT_EQ(AwaitBox(300), "");
    });
    EXPECT_EQ(StoredText(stage.root, "host"), u"");
}

TEST(ConnectDialog, CancelAfterAnOkDoesNotConnectAgain) {
    FakeHost host;
    Stage stage;
    stage.root = FreshRoot();
    stage.before = [&] { WriteNumber(u"port", static_cast<DWORD>(host.port)); };
    RunProgram(stage, [&] {
        HWND dialog = OpenConnect();
        TypeInto(dialog, IDC_HOST, u"127.0.0.1");
        ClickControl(dialog, IDOK);
        ASSERT_TRUE(host.Accept());
        host.Send("hello");
        ASSERT_TRUE(TerminalShows("hello"));
        Close();
        ASSERT_TRUE(Offline());
        for (int times = 0; times < 2; times++) {
            dialog = OpenConnect();
            OnWindowThread([] { EXPECT_EQ(session.connect_request, 0u) << "cleared as it opens"; });
            ClickControl(dialog, IDCANCEL);
            ASSERT_TRUE(Closed(dialog));
            EXPECT_FALSE(host.Accept(100));
            OnWindowThread([] {
                EXPECT_EQ(session.connect_request, 0u);
                EXPECT_EQ(session.connect_pending, 0u);
            });
        }
    });
}

TEST(ConnectDialog, AfterOkTheResultIsNoLongerMinusOne) {
    RunProgram(StageWithHistory(0), [&] {
        HWND dialog = OpenConnect();
        ClickControl(dialog, IDCANCEL);
        ASSERT_TRUE(Closed(dialog));
        ConnectTo(u"new.invalid");
        EXPECT_EQ(session.dialog_result, 0);
    });
}

TEST(ConnectDialog, NothingIsSavedAfterAReset) {
    const Stage stage = StageWithHistory(1);
    RunProgram(stage, [&] {
        OnWindowThread([] { session.save_settings = 0; });
        ConnectTo(u"new.invalid");
        EXPECT_EQ(StoredText(stage.root, "hist0a"), kHosts[0]);
        EXPECT_EQ(StoredText(stage.root, "host"), u"(not stored)");
    });
}

TEST(ConnectHistory, ASixthDistinctHostDropsTheOldest) {
    const Stage stage = StageWithHistory(5);
    RunProgram(stage, [&] {
        ConnectTo(u"six.invalid");
        EXPECT_EQ(StoredHistory(stage.root),
                  History({u"six.invalid", kHosts[0], kHosts[1], kHosts[2], kHosts[3]}));
    });
}

TEST(ConnectHistory, AHostThatIsUsedAgainKeepsItsPlace) {
    const Stage stage = StageWithHistory(5);
    RunProgram(stage, [&] {
        for (const char16_t* host : kHosts) {
            ConnectTo(host);
            EXPECT_EQ(StoredHistory(stage.root),
                      History({kHosts[0], kHosts[1], kHosts[2], kHosts[3], kHosts[4]}));
            EXPECT_EQ(StoredText(stage.root, "host"), host);
        }
    });
}

TEST(ConnectHistory, AHostInOtherCaseCountsAsItsEntry) {
    const Stage stage = StageWithHistory(2);
    RunProgram(stage, [&] {
        ConnectTo(u"TWO.Invalid");
        EXPECT_EQ(StoredHistory(stage.root), History({kHosts[0], kHosts[1], u"", u"", u""}));
        EXPECT_EQ(StoredText(stage.root, "host"), u"TWO.Invalid");
    });
}

TEST(ConnectHistory, AnEmptyHostIsNotRememberedWhileThereIsRoom) {
    const Stage stage = StageWithHistory(2);
    RunProgram(stage, [&] {
        ConnectTo(u"");
        EXPECT_EQ(StoredHistory(stage.root), History({kHosts[0], kHosts[1], u"", u"", u""}));
    });
}

// The list of the next dialog is then empty, because it ends at the first empty entry.
TEST(ConnectHistory, AnEmptyHostIsRememberedWhereFiveOthersAre) {
    const Stage stage = StageWithHistory(5);
    RunProgram(stage, [&] {
        ConnectTo(u"");
        EXPECT_EQ(StoredHistory(stage.root),
                  History({u"", kHosts[0], kHosts[1], kHosts[2], kHosts[3]}));
        EXPECT_EQ(Lines(OpenConnect(), IDC_HOST), History());
    });
}

TEST(ConnectHistory, AChosenEntryIsConnectedTo) {
    const Stage stage = StageWithHistory(3);
    RunProgram(stage, [&] {
        const HWND dialog = OpenConnect();
        ClickLine(dialog, IDC_HOST, 2);
        EXPECT_EQ(TextOf(dialog, IDC_HOST), kHosts[2]);
        ClickControl(dialog, IDOK);
        ASSERT_TRUE(Closed(dialog));
        DismissBox(kNoHost);
        EXPECT_EQ(StoredText(stage.root, "host"), kHosts[2]);
    });
}

TEST(ConnectLimits, FiftyNineCharactersAreKept) {
    const Stage stage = StageWithHistory(0);
    const std::u16string host(59, u'h');
    RunProgram(stage, [&] {
        ConnectTo(host);
        EXPECT_EQ(std::u16string(s.host), host);
        EXPECT_EQ(StoredText(stage.root, "host"), host);
        EXPECT_EQ(StoredText(stage.root, "hist0a"), host);
    });
}

TEST(ConnectLimits, TheSixtiethCharacterIsCut) {
    const Stage stage = StageWithHistory(0);
    RunProgram(stage, [&] {
        ConnectTo(std::u16string(59, u'h') + u"XYZ");
        EXPECT_EQ(std::u16string(s.host), std::u16string(59, u'h'));
        EXPECT_EQ(StoredText(stage.root, "host"), std::u16string(59, u'h'));
    });
}

// Strings of more than 80 bytes cannot be read back.
TEST(ConnectLimits, TheSixtiethCharacterCannotBeTyped) {
    RunProgram(StageWithHistory(0), [&] {
        const HWND dialog = OpenDialog(IDM_CONNECT, "Connect");
        TypeInto(dialog, IDC_HOST, std::u16string(59, u'h') + u"XYZ");
        EXPECT_EQ(TextOf(dialog, IDC_HOST), std::u16string(59, u'h'));
    });
}

TEST(ConnectLimits, AHostOfMoreThan39CharactersIsForgottenAtTheNextStart) {
    const Stage stage = StageWithHistory(0);
    Stage again;
    again.root = stage.root;
    RunProgram(stage, [&] { ConnectTo(std::u16string(40, u'h')); });
    RunProgram(again, [&] {
        EXPECT_EQ(TextOf(OpenConnect(), IDC_HOST), u"");
        OnWindowThread([] { lstrcpyW(session.settings.host, std::u16string(39, u'g').c_str()); });
    });
    RunProgram(again,
               [&] { EXPECT_EQ(TextOf(OpenConnect(), IDC_HOST), std::u16string(39, u'g')); });
}

TEST(ConnectLimits, AHostOutsideTheCodePageIsStoredAsTypedAndNotFound) {
    const Stage stage = StageWithHistory(0);
    RunProgram(stage, [&] {
        ConnectTo(u"\x03c9\x4e2d.invalid");
        EXPECT_EQ(StoredText(stage.root, "host"), u"\x03c9\x4e2d.invalid");
        EXPECT_EQ(StoredText(stage.root, "hist0a"), u"\x03c9\x4e2d.invalid");
    });
}

}  // namespace
