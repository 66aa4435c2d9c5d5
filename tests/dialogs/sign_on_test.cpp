// SPDX-License-Identifier: MIT
// "Sign on to the host": user, password, and whether it is remembered.
#include <gtest/gtest.h>

#include <atomic>

#include "resources/resource_ids.h"
#include "session/session_state.h"
#include "settings/settings.h"
#include "tests/dialogs/dialog_person.h"
#include "tests/dialogs/stored.h"
#include "tests/support/person.h"
#include "ui/dialogs/dialogs.h"

namespace {

Settings& s = session.settings;

// The result of AskSignOn; -1 until it returns.
std::atomic<int> g_answer;

HWND OpenSignOn() {
    g_answer = -1;
    QMetaObject::invokeMethod(
        qApp, [] { g_answer = AskSignOn() ? 1 : 0; }, Qt::QueuedConnection);
    return AwaitDialog("Sign on to the host");
}

void CloseBy(HWND dialog, int button) {
    ClickControl(dialog, button);
    ASSERT_TRUE(Closed(dialog));
    EXPECT_TRUE(Eventually([] { return g_answer != -1; }));
}

Stage StageWith(const char16_t* user, const char16_t* password, DWORD remember) {
    Stage stage;
    stage.root = FreshRoot();
    stage.before = [=] {
        WriteString(u"ssh_u", user);
        WriteString(u"ssh_p", password);
        WriteNumber(u"ssh_def", remember);
    };
    return stage;
}

TEST(SignOn, OkTakesUserPasswordAndMark) {
    const Stage stage = StageWith(u"", u"", 0);
    RunProgram(stage, [&] {
        const HWND dialog = OpenSignOn();
        TypeInto(dialog, IDC_SSH_U, u"anna");
        TypeInto(dialog, IDC_SSH_P, u"sec\xe9ret");
        ClickControl(dialog, IDC_SSH_DEF);
        CloseBy(dialog, IDOK);
        EXPECT_EQ(g_answer, 1);
        EXPECT_EQ(session.dialog_result, 0);
        EXPECT_EQ(std::u16string(s.ssh_u), u"anna");
        EXPECT_EQ(std::u16string(s.ssh_p), u"sec\xe9ret");
        EXPECT_EQ(s.ssh_def, 1u);
        EXPECT_EQ(StoredText(stage.root, "ssh_u"), u"") << "saved before its time";
    });
    EXPECT_EQ(StoredText(stage.root, "ssh_u"), u"anna");
    EXPECT_EQ(StoredText(stage.root, "ssh_p"), u"sec\xe9ret");
    EXPECT_EQ(StoredNumber(stage.root, "ssh_def"), 1u);
}

TEST(SignOn, OnlyDialogResultReportsCancel) {
    const Stage stage = StageWith(u"berta", u"old", 1);
    RunProgram(stage, [&] {
        const HWND dialog = OpenSignOn();
        TypeInto(dialog, IDC_SSH_U, u"anna");
        TypeInto(dialog, IDC_SSH_P, u"new");
        ClickControl(dialog, IDC_SSH_DEF);
        CloseBy(dialog, IDCANCEL);
        EXPECT_EQ(g_answer, 1);
        EXPECT_EQ(session.dialog_result, -1);
    });
    EXPECT_EQ(StoredText(stage.root, "ssh_u"), u"berta");
    EXPECT_EQ(StoredText(stage.root, "ssh_p"), u"old");
    EXPECT_EQ(StoredNumber(stage.root, "ssh_def"), 1u);
}

TEST(SignOn, ARememberedPasswordIsShown) {
    RunProgram(StageWith(u"anna", u"secret", 1), [] {
        const HWND dialog = OpenSignOn();
        EXPECT_EQ(TextOf(dialog, IDC_SSH_U), u"anna");
        EXPECT_EQ(TextOf(dialog, IDC_SSH_P), u"secret");
        EXPECT_TRUE(Marked(dialog, IDC_SSH_DEF));
    });
}

TEST(SignOn, WithoutRememberPasswordTheFieldIsEmptyEveryTime) {
    const Stage stage = StageWith(u"anna", u"left over", 0);
    RunProgram(stage, [] {
        for (int times = 0; times < 3; times++) {
            const HWND dialog = OpenSignOn();
            EXPECT_EQ(TextOf(dialog, IDC_SSH_U), u"anna");
            EXPECT_EQ(TextOf(dialog, IDC_SSH_P), u"");
            EXPECT_FALSE(Marked(dialog, IDC_SSH_DEF));
            TypeInto(dialog, IDC_SSH_P, u"secret");
            CloseBy(dialog, IDOK);
            EXPECT_EQ(std::u16string(s.ssh_p), u"secret");
        }
    });
    EXPECT_EQ(StoredText(stage.root, "ssh_p"), u"secret") << "what the last sign-on typed";
}

TEST(SignOn, OpeningForgetsAPasswordThatIsNotRememberedEvenIfCancelled) {
    const Stage stage = StageWith(u"anna", u"left over", 0);
    RunProgram(stage, [] {
        CloseBy(OpenSignOn(), IDCANCEL);
        for (const WCHAR unit : session.settings.ssh_p) EXPECT_EQ(unit, 0) << "not wiped whole";
    });
    EXPECT_EQ(StoredText(stage.root, "ssh_p"), u"");
}

TEST(SignOn, PasswordIsHidden) {
    RunProgram(StageWith(u"", u"", 0), [] {
        const HWND dialog = OpenSignOn();
        TypeInto(dialog, IDC_SSH_U, u"visible");
        TypeInto(dialog, IDC_SSH_P, u"hidden");
        EXPECT_EQ(ShownText(dialog, IDC_SSH_U), u"visible");
        const std::u16string shown = ShownText(dialog, IDC_SSH_P);
        EXPECT_EQ(shown.size(), 6u);
        EXPECT_EQ(shown.find_first_of(u"hiden"), std::u16string::npos);
    });
}

TEST(SignOn, UserAndPasswordHold39Characters) {
    const Stage stage = StageWith(u"", u"", 0);
    const std::u16string user(39, u'u'), password(39, u'p');
    RunProgram(stage, [&] {
        const HWND dialog = OpenSignOn();
        TypeInto(dialog, IDC_SSH_U, user + u"XX");
        TypeInto(dialog, IDC_SSH_P, password + u"YY");
        CloseBy(dialog, IDOK);
        EXPECT_EQ(std::u16string(s.ssh_u), user);
        EXPECT_EQ(std::u16string(s.ssh_p), password);
    });
}

TEST(SignOn, The40thCharacterCannotBeTyped) {
    RunProgram(StageWith(u"", u"", 1), [] {
        for (int times = 0; times < 2; times++) {
            const HWND dialog = OpenSignOn();
            for (const int id : {IDC_SSH_U, IDC_SSH_P}) {
                TypeInto(dialog, id, std::u16string(39, u'u') + u"XYZ");
                EXPECT_EQ(TextOf(dialog, id), std::u16string(39, u'u'));
            }
            CloseBy(dialog, IDOK);
        }
    });
}

TEST(SignOn, TextOutsideTheCodePageIsStoredAsTyped) {
    const Stage stage = StageWith(u"", u"", 1);
    RunProgram(stage, [] {
        const HWND dialog = OpenSignOn();
        TypeInto(dialog, IDC_SSH_U, u"\x0410\x043d\x043d\x0430");
        TypeInto(dialog, IDC_SSH_P, u"\x4e2d\x6587");
        CloseBy(dialog, IDOK);
    });
    EXPECT_EQ(StoredText(stage.root, "ssh_u"), u"\x0410\x043d\x043d\x0430");
    EXPECT_EQ(StoredText(stage.root, "ssh_p"), u"\x4e2d\x6587");
}

TEST(SignOn, FailsOnlyIfTheDialogCannotBeShown) {
    RunProgram(StageWith(u"anna", u"secret", 1), [] {
        OnWindowThread([] {
            const HWND owner = session.main_window;
            session.main_window = reinterpret_cast<HWND>(0x7FFFFFF0);  // no window
            EXPECT_FALSE(AskSignOn());
            session.main_window = owner;
        });
    });
}

}  // namespace
