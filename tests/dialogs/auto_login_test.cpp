// SPDX-License-Identifier: MIT
// "Auto Login": two searches and two responses.
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

struct Field {
    int id;
    const char* name;
    WCHAR* text;
    const char16_t* fallback;
};

void PrintTo(const Field& each, std::ostream* out) { *out << each.name; }

const Field kFields[] = {
    {1002, "sear1", session.settings.sear1, u"ogin"},
    {1003, "resp1", session.settings.resp1, u""},
    {1253, "sear2", session.settings.sear2, u""},
    {1256, "resp2", session.settings.resp2, u""},
};

HWND OpenAutoLogin() { return OpenDialog(IDM_AUTO_LOGIN, "Auto Login"); }

Stage FreshStage() {
    Stage stage;
    stage.root = FreshRoot();
    return stage;
}

class AutoLoginField : public testing::TestWithParam<Field> {};

// Types `typed` into one field, presses the button and compares all fields.
void TypeAndClose(const Field& field, const std::u16string& typed, int button,
                  const std::u16string& expected) {
    const Stage stage = FreshStage();
    RunProgram(stage, [&] {
        const HWND dialog = OpenAutoLogin();
        EXPECT_EQ(TextOf(dialog, field.id), field.fallback);
        TypeInto(dialog, field.id, typed);
        ClickControl(dialog, button);
        ASSERT_TRUE(Closed(dialog));
        for (const Field& each : kFields) {
            const std::u16string text = each.id == field.id ? expected : each.fallback;
            EXPECT_EQ(std::u16string(each.text), text) << each.name;
            EXPECT_EQ(StoredText(stage.root, each.name), text) << each.name;
        }
        EXPECT_EQ(session.dialog_result, button == IDOK ? 0 : -1);
    });
}

TEST_P(AutoLoginField, OkStoresItAsTyped) {
    TypeAndClose(GetParam(), u"pass\\012 \\\\", IDOK, u"pass\\012 \\\\");
}

TEST_P(AutoLoginField, CancelKeepsTheOldText) {
    TypeAndClose(GetParam(), u"other", IDCANCEL, GetParam().fallback);
}

TEST_P(AutoLoginField, Holds39Characters) {
    const std::u16string text(39, u'w');
    TypeAndClose(GetParam(), text, IDOK, text);
}

TEST_P(AutoLoginField, CutsThe40thCharacter) {
    const std::u16string text(39, u'w');
    TypeAndClose(GetParam(), text + u"XY", IDOK, text);
}

TEST_P(AutoLoginField, The40thCharacterCannotBeTyped) {
    RunProgram(FreshStage(), [] {
        for (int times = 0; times < 2; times++) {
            const HWND dialog = OpenAutoLogin();
            TypeInto(dialog, GetParam().id, std::u16string(39, u'w') + u"XYZ");
            EXPECT_EQ(TextOf(dialog, GetParam().id), std::u16string(39, u'w'));
            ClickControl(dialog, IDOK);
            ASSERT_TRUE(Closed(dialog));
        }
    });
}

TEST_P(AutoLoginField, KeepsTextOutsideTheCodePage) {
    TypeAndClose(GetParam(), u"\x4e2d\x0416", IDOK, u"\x4e2d\x0416");
}

TEST_P(AutoLoginField, CanBeEmptied) { TypeAndClose(GetParam(), u"", IDOK, u""); }

INSTANTIATE_TEST_SUITE_P(Each, AutoLoginField, testing::ValuesIn(kFields),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(AutoLoginDialog, ShowsWhatIsStored) {
    Stage stage = FreshStage();
    stage.before = [] {
        for (const Field& field : kFields)
            WriteString(QString(field.name).toStdU16String().c_str(),
                        QString(field.name).toUpper().toStdU16String().c_str());
    };
    RunProgram(stage, [] {
        const HWND dialog = OpenAutoLogin();
        EXPECT_EQ(TextOf(dialog, IDC_SEAR1), u"SEAR1");
        EXPECT_EQ(TextOf(dialog, IDC_RESP1), u"RESP1");
        EXPECT_EQ(TextOf(dialog, IDC_SEAR2), u"SEAR2");
        EXPECT_EQ(TextOf(dialog, IDC_RESP2), u"RESP2");
    });
}

TEST(AutoLoginDialog, WhatWasTypedLogsIn) {
    FakeHost host;
    RunProgram(FreshStage(), [&] {
        const HWND dialog = OpenAutoLogin();
        TypeInto(dialog, IDC_SEAR1, u"name:");
        TypeInto(dialog, IDC_RESP1, u"anna\\015");
        ClickControl(dialog, IDOK);
        ASSERT_TRUE(Closed(dialog));
        SetHost(u"127.0.0.1", host.port);
        Connect();
        ASSERT_TRUE(host.Accept());
        host.Send("name: ");
        EXPECT_EQ(host.Read(5), "anna\r");
    });
}

}  // namespace
