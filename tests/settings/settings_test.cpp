// SPDX-License-Identifier: MIT
// Loading and saving of the settings: every row, the types, and what damaged values give.
#include "settings/settings.h"

#include <cstring>

#include "session/session_state.h"
#include "settings/key_map.h"
#include "settings/toolbars.h"
#include "tests/settings/device.h"
#include "tests/settings/registry_log.h"
#include "tests/settings/settings_rows.h"
#include "text/text.h"

namespace {

class SettingsStore : public DeviceTest {};

void ScribbleOverSettings() {
    for (const NumberSetting& row : number_settings) *row.field = 0xDEADBEEF;
    for (const TextSetting& row : text_settings) CopyBounded(row.field, TEXT("scribble"), 40);
}

void ExpectDefaults() {
    for (const NumberSetting& row : number_settings)
        EXPECT_EQ(row.fallback, *row.field) << row.name;
    for (const TextSetting& row : text_settings)
        EXPECT_EQ(Wide(row.fallback), row.field) << row.name;
}

// Another value for each row, so that no two can be mistaken for each other.
DWORD NumberOfRow(size_t i) { return 0x80010203u + static_cast<DWORD>(i); }
std::u16string TextOfRow(size_t i) { return u"text \u20AC " + Wide(std::to_string(i)); }

void FillSettings() {
    for (size_t i = 0; i < std::size(number_settings); i++)
        *number_settings[i].field = NumberOfRow(i);
    for (size_t i = 0; i < std::size(text_settings); i++)
        CopyBounded(text_settings[i].field, TextOfRow(i).c_str(), kSettingUnits);
}

std::u16string LoadedText(const std::string& name) {
    return ReadString(Wide(name).c_str(), TEXT("the fallback"));
}

DWORD LoadedNumber(const std::string& name) { return ReadNumber(Wide(name).c_str(), 4711); }

}  // namespace

TEST_F(SettingsStore, WithoutTheKeyEveryFieldIsItsDefault) {
    ScribbleOverSettings();
    LoadSettings();
    ExpectDefaults();
    EXPECT_TRUE(StoredValues().empty());
}

TEST_F(SettingsStore, WithAnEmptyKeyEveryFieldIsItsDefault) {
    StoreNumber("something else", 1);
    ScribbleOverSettings();
    LoadSettings();
    ExpectDefaults();
}

TEST_F(SettingsStore, SavingIsOnAtFirst) { EXPECT_EQ(1u, SessionState().save_settings); }

TEST_F(SettingsStore, EveryNumberIsLoadedFromItsOwnValue) {
    for (const NumberSetting& wanted : number_settings) {
        StoreNumber(wanted.name, 0xFEDCBA98);
        ScribbleOverSettings();
        LoadSettings();
        EXPECT_EQ(0xFEDCBA98, *wanted.field) << wanted.name;
        StoreNumber(wanted.name, wanted.fallback);
        LoadSettings();
        ExpectDefaults();
    }
}

TEST_F(SettingsStore, EveryStringIsLoadedFromItsOwnValue) {
    for (const TextSetting& wanted : text_settings) {
        StoreText(wanted.name, u"own value");
        ScribbleOverSettings();
        LoadSettings();
        EXPECT_EQ(u"own value", std::u16string(wanted.field)) << wanted.name;
        StoreText(wanted.name, Wide(wanted.fallback));
        LoadSettings();
        ExpectDefaults();
    }
}

TEST_F(SettingsStore, EveryFieldSurvivesASaveAndALoad) {
    FillSettings();
    SaveSettings();
    ScribbleOverSettings();
    LoadSettings();
    for (size_t i = 0; i < std::size(number_settings); i++)
        EXPECT_EQ(NumberOfRow(i), *number_settings[i].field) << number_settings[i].name;
    for (size_t i = 0; i < std::size(text_settings); i++)
        EXPECT_EQ(TextOfRow(i), text_settings[i].field) << text_settings[i].name;
}

TEST_F(SettingsStore, EveryNumberIsSavedAsFourBytesOfADword) {
    FillSettings();
    SaveSettings();
    for (size_t i = 0; i < std::size(number_settings); i++) {
        const RegistryValue value = Stored(number_settings[i].name);
        EXPECT_EQ(REG_DWORD, value.type) << value.name;
        EXPECT_EQ(NumberBytes(NumberOfRow(i)), value.data) << value.name;
    }
}

TEST_F(SettingsStore, EveryStringIsSavedWithItsTerminator) {
    FillSettings();
    SaveSettings();
    for (size_t i = 0; i < std::size(text_settings); i++) {
        const RegistryValue value = Stored(text_settings[i].name);
        EXPECT_EQ(REG_SZ, value.type) << value.name;
        EXPECT_EQ((TextOfRow(i).size() + 1) * 2, value.data.size()) << value.name;
        EXPECT_EQ(TerminatedBytes(TextOfRow(i)), value.data) << value.name;
    }
}

TEST_F(SettingsStore, AnEmptyStringIsSavedAsOnlyItsTerminator) {
    WriteString(TEXT("sear1"), TEXT(""));
    EXPECT_EQ(std::string(2, '\0'), Stored("sear1").data);
    LoadSettings();
    EXPECT_EQ(u"", std::u16string(session.settings.sear1));
}

TEST_F(SettingsStore, LoadingGoesNumbersStringsToolbarsKeys) {
    StoreNumber("something else", 1);  // without the key nothing is queried
    LoadSettings();
    EXPECT_EQ(AllValueNames(), LoggedNames("read"));
    EXPECT_TRUE(LoggedNames("write").empty());
}

TEST_F(SettingsStore, SavingGoesNumbersStringsToolbarsKeys) {
    LoadSettings();
    SaveSettings();
    EXPECT_EQ(AllValueNames(), LoggedNames("write"));
    EXPECT_EQ(AllValueNames(), StoredNames());
}

TEST_F(SettingsStore, EveryWriteIsFlushedAndItsKeyClosed) {
    LoadSettings();
    registry_log.clear();
    SaveSettings();
    ASSERT_EQ(3 * AllValueNames().size(), registry_log.size());
    for (size_t i = 0; i < registry_log.size(); i += 3) {
        EXPECT_EQ("write", registry_log[i].call);
        EXPECT_EQ("flush", registry_log[i + 1].call);
        EXPECT_EQ("close", registry_log[i + 2].call);
    }
}

TEST_F(SettingsStore, EveryReadClosesItsKey) {
    StoreNumber("something else", 1);
    LoadSettings();
    ASSERT_EQ(2 * AllValueNames().size(), registry_log.size());
    for (size_t i = 0; i < registry_log.size(); i += 2) {
        EXPECT_EQ("read", registry_log[i].call);
        EXPECT_EQ("close", registry_log[i + 1].call);
    }
}

TEST_F(SettingsStore, APortOfMoreThanSixteenBitsIsKeptWhole) {
    for (const DWORD port : {65559u, 0x80000017u, 0xFFFFFFFFu}) {
        StoreNumber("port", port);
        LoadSettings();
        EXPECT_EQ(port, session.settings.port);
        SaveSettings();
        EXPECT_EQ(NumberBytes(port), Stored("port").data);
    }
}

TEST_F(SettingsStore, ThePasswordReadsBackAsTyped) {
    for (const char16_t* password : {u"  s3cret \"#\\033=\u00E4\u20AC", u"", u"x"}) {
        LoadSettings();
        CopyBounded(session.settings.ssh_p, password, kSettingUnits);
        SaveSettings();
        session.settings = {};
        LoadSettings();
        EXPECT_EQ(std::u16string(password), session.settings.ssh_p);
    }
}

TEST_F(SettingsStore, AStringOf39CharactersIsReadWhole) {
    const std::u16string text(39, u'a');
    StoreText("termtype", text);
    ASSERT_EQ(80u, Stored("termtype").data.size());
    LoadSettings();
    EXPECT_EQ(text, session.settings.termtype);
}

TEST_F(SettingsStore, AStringOfMoreThan80BytesIsTheDefault) {
    StoreText("termtype", std::u16string(40, u'a'));
    Store("host", REG_SZ, std::string(81, 'a'));
    StoreText("sear1", std::u16string(100000, u'a'));
    LoadSettings();
    EXPECT_EQ(u"vt220", std::u16string(session.settings.termtype));
    EXPECT_EQ(u"", std::u16string(session.settings.host));
    EXPECT_EQ(u"ogin", std::u16string(session.settings.sear1));
}

TEST_F(SettingsStore, EightyBytesWithoutTerminatorAreTerminated) {
    Store("termtype", REG_SZ, TextBytes(std::u16string(40, u'a')));
    EXPECT_EQ(std::u16string(39, u'a'), LoadedText("termtype"));
    LoadSettings();
    EXPECT_EQ(std::u16string(39, u'a'), session.settings.termtype);
}

TEST_F(SettingsStore, AShortStringWithoutTerminatorEndsWithItsBytes) {
    StoreText("other", std::u16string(39, u'z'));
    Store("sear1", REG_SZ, TextBytes(u"abc"));
    EXPECT_EQ(std::u16string(39, u'z'), LoadedText("other"));
    EXPECT_EQ(u"abc", LoadedText("sear1"));
}

TEST_F(SettingsStore, AnOddByteCountsAsHalfACharacter) {
    Store("sear1", REG_SZ, TextBytes(u"a") + "b");
    std::u16string text = u"a?";
    text[1] = 0;
    memcpy(&text[1], "b", 1);
    EXPECT_EQ(text, LoadedText("sear1"));
}

TEST_F(SettingsStore, AnEmptyValueIsAnEmptyStringAndTheNumber0) {
    Store("sear1", REG_SZ, "");
    Store("fsize", REG_DWORD, "");
    EXPECT_EQ(u"", LoadedText("sear1"));
    EXPECT_EQ(0u, LoadedNumber("fsize"));
}

TEST_F(SettingsStore, TheTypeOfAValueIsNotChecked) {
    Store("fsize", REG_SZ, NumberBytes(u'9'));
    Store("sear1", REG_DWORD, TextBytes(u"ab"));
    EXPECT_EQ(u'9', LoadedNumber("fsize"));
    EXPECT_EQ(u"ab", LoadedText("sear1"));
}

TEST_F(SettingsStore, ANumberOfMoreThanFourBytesIsTheDefault) {
    StoreText("fsize", u"12");
    Store("port", REG_DWORD, std::string(5, '\0'));
    LoadSettings();
    EXPECT_EQ(8u, session.settings.fsize);
    EXPECT_EQ(23u, session.settings.port);
}

TEST_F(SettingsStore, NumbersOutOfRangeAreLoadedUnchanged) {
    for (const DWORD value : {0u, 3u, 26u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
        for (const NumberSetting& row : number_settings) StoreNumber(row.name, value);
        for (const std::string& name : NumberedNames("tbar", 27)) StoreNumber(name, value);
        LoadSettings();
        for (const NumberSetting& row : number_settings) EXPECT_EQ(value, *row.field) << row.name;
        SaveSettings();
        for (const NumberSetting& row : number_settings)
            EXPECT_EQ(NumberBytes(value), Stored(row.name).data) << row.name;
    }
}

TEST_F(SettingsStore, AHostOf59CharactersIsSavedWholeAndReadAsTheDefault) {
    LoadSettings();
    const std::u16string host(kHostUnits - 1, u'h');
    CopyBounded(session.settings.host, host.c_str(), kHostUnits);
    SaveSettings();
    EXPECT_EQ(TerminatedBytes(host), Stored("host").data);
    LoadSettings();
    EXPECT_EQ(u"", std::u16string(session.settings.host));
}

TEST_F(SettingsStore, NamesAreFoundInAnyCase) {
    StoreNumber("FSize", 12);
    EXPECT_EQ(12u, LoadedNumber("fsize"));
}

TEST_F(SettingsStore, ReadStringOverwritesItsOwnResultOnly) {
    StoreText("sear1", u"first");
    StoreText("sear2", u"2");
    LPCWSTR first = ReadString(TEXT("sear1"), TEXT(""));
    EXPECT_EQ(u"first", std::u16string(first));
    EXPECT_EQ(first, ReadString(TEXT("sear2"), TEXT("")));
    EXPECT_EQ(u"2", std::u16string(first));
    LPCWSTR fallback = TEXT("mine");
    EXPECT_EQ(fallback, ReadString(TEXT("missing"), fallback));
}

TEST_F(SettingsStore, WithoutRightsToTheRootReadingGivesDefaultsAndWritingNothing) {
    FillSettings();
    SaveSettings();
    {
        const WithoutRights nobody;
        LoadSettings();
        ExpectDefaults();
        SaveSettings();
        WriteNumber(TEXT("fsize"), 1);
        WriteString(TEXT("host"), TEXT("h"));
    }
    EXPECT_EQ(NumberBytes(NumberOfRow(1)), Stored("fsize").data);
    EXPECT_EQ(TerminatedBytes(TextOfRow(1)), Stored("host").data);
}

TEST_F(SettingsStore, InAnEmptyRootWithoutRightsNothingIsWritten) {
    {
        const WithoutRights nobody;
        LoadSettings();
        ExpectDefaults();
        SaveSettings();
    }
    EXPECT_FALSE(DeviceFileExists("registry.db"));
}
