// SPDX-License-Identifier: MIT
// The reset: what it deletes, in which order, and when it deletes nothing.
#include "session/session_state.h"
#include "settings/key_map.h"
#include "settings/settings.h"
#include "settings/toolbars.h"
#include "tests/settings/device.h"
#include "tests/settings/registry_log.h"
#include "tests/settings/settings_rows.h"
#include "text/text.h"

namespace {

class SettingsReset : public DeviceTest {};

}  // namespace

TEST_F(SettingsReset, EveryValueIsGone) {
    LoadSettings();
    SaveSettings();
    ASSERT_EQ(24u + 15u + 27u + 66u, StoredValues().size());
    EXPECT_EQ(ERROR_SUCCESS, ResetSettings());
    EXPECT_EQ(std::vector<std::string>(), StoredNames());
}

TEST_F(SettingsReset, EveryValueIsDeletedByItself) {
    for (const std::string& name : AllValueNames()) {
        StoreText(name, u"x");
        EXPECT_EQ(std::vector<std::string>{name}, StoredNames());
        EXPECT_EQ(ERROR_SUCCESS, ResetSettings());
        EXPECT_EQ(std::vector<std::string>(), StoredNames());
    }
}

TEST_F(SettingsReset, DeletingGoesNumbersStringsToolbarsKeys) {
    LoadSettings();
    SaveSettings();
    registry_log.clear();
    ResetSettings();
    EXPECT_EQ(AllValueNames(), LoggedNames("delete"));
    EXPECT_EQ(3u, LoggedNames("flush").size());
    EXPECT_EQ(3u, LoggedNames("close").size());
}

TEST_F(SettingsReset, TheNextLoadFindsTheDefaults) {
    LoadSettings();
    for (const NumberSetting& row : number_settings) *row.field = 77;
    for (const TextSetting& row : text_settings) CopyBounded(row.field, TEXT("mine"), 40);
    toolbar_buttons[12].onBar1 = 0;
    ASSERT_EQ(1, SetKeyText(&key_map[65], TEXT("mine")));
    SaveSettings();
    EXPECT_EQ(ERROR_SUCCESS, ResetSettings());
    LoadSettings();
    for (const NumberSetting& row : number_settings)
        EXPECT_EQ(row.fallback, *row.field) << row.name;
    for (const TextSetting& row : text_settings)
        EXPECT_EQ(Wide(row.fallback), row.field) << row.name;
    EXPECT_NE(0u, toolbar_buttons[12].onBar1);
    EXPECT_STREQ("\\033[C", key_map[65].text);
}

TEST_F(SettingsReset, TheRecordAndTheFlagDoNotChange) {
    LoadSettings();
    session.settings.fsize = 13;
    SaveSettings();
    ResetSettings();
    EXPECT_EQ(13u, session.settings.fsize);
    EXPECT_EQ(1u, session.save_settings);
    EXPECT_STREQ("\\033[C", key_map[65].text);
}

TEST_F(SettingsReset, ValuesOfOtherNamesStay) {
    for (const char* name : {"key66", "tbar27", "key00", "mine"}) StoreNumber(name, 1);
    EXPECT_EQ(ERROR_SUCCESS, ResetSettings());
    EXPECT_EQ((std::vector<std::string>{"key66", "tbar27", "key00", "mine"}), StoredNames());
}

TEST_F(SettingsReset, MissingValuesDoNotStopIt) {
    StoreNumber("ssh_type2", 0);
    StoreText("ras", u"isp");
    StoreNumber("tbar26", 0);
    StoreText("key65", u"x");
    EXPECT_EQ(ERROR_SUCCESS, ResetSettings());
    EXPECT_EQ(std::vector<std::string>(), StoredNames());
}

TEST_F(SettingsReset, AMissingKeyIsAnErrorAndNothingIsDeleted) {
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, ResetSettings());
    EXPECT_TRUE(LoggedNames("delete").empty());
    EXPECT_TRUE(LoggedNames("flush").empty());
}

TEST_F(SettingsReset, WithoutRightsItIsAnErrorAndEverythingStays) {
    LoadSettings();
    SaveSettings();
    registry_log.clear();
    {
        const WithoutRights nobody;
        EXPECT_NE(ERROR_SUCCESS, ResetSettings());
    }
    EXPECT_TRUE(LoggedNames("delete").empty());
    EXPECT_EQ(AllValueNames(), StoredNames());
}

TEST_F(SettingsReset, ASecondResetSucceeds) {
    LoadSettings();
    SaveSettings();
    EXPECT_EQ(ERROR_SUCCESS, ResetSettings());
    EXPECT_EQ(ERROR_SUCCESS, ResetSettings());
}
