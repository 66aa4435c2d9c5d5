// SPDX-License-Identifier: MIT
// The export of the settings as a configuration file: its import gives the same settings.
#include "platform/qt/services/registry.h"

#include <algorithm>
#include <random>

#include "platform/qt/services/services.h"
#include "session/session_state.h"
#include "settings/settings.h"
#include "tests/settings/device.h"
#include "tests/settings/key_rows.h"
#include "tests/settings/settings_rows.h"

namespace {

class Export : public DeviceTest {};

SettingsExport Exported(bool with_passwords = true) {
    SettingsExport result;
    EXPECT_TRUE(ExportSettings(DeviceRoot(), with_passwords, &result));
    return result;
}

bool HasLine(const SettingsExport& settings, const std::string& line) {
    return settings.file.find('\n' + line + '\n') != std::string::npos;
}

// The values sorted by name, because an import may write them in another order.
std::vector<RegistryValue> Sorted() {
    std::vector<RegistryValue> values = StoredValues();
    std::sort(values.begin(), values.end(),
              [](const RegistryValue& a, const RegistryValue& b) { return a.name < b.name; });
    return values;
}

void ReadOnAFreshDevice(const SettingsExport& settings) {
    ResetSettings();
    WriteDeviceFile("mconfig.cfg", settings.file);
    ImportConfigFile(nullptr);
    LoadSettings();
    SaveSettings();
}

// Text of the code page, without double quotes, line ends and end-of-file characters.
std::u16string RandomText(std::mt19937* random) {
    const std::u16string special = u" \t#=\\'\u20AC\u017D\u00FF\u00A0~";
    std::u16string text;
    const size_t length = 1 + (*random)() % 39;
    while (text.size() < length) {
        const char16_t unit = static_cast<char16_t>(' ' + (*random)() % 95);
        const char16_t other = special[(*random)() % special.size()];
        text += (*random)() % 4 == 0 || unit == u'"' ? other : unit;
    }
    return text;
}

void StoreRandomValues(std::mt19937* random) {
    for (const RegistryValue& value : StoredValues()) {
        if (value.type == REG_DWORD)
            StoreNumber(value.name, static_cast<DWORD>((*random)()));
        else
            StoreText(value.name, RandomText(random));
    }
}

}  // namespace

// The stored values are those of a run, and reach a fresh device by the export.
void ExpectStoredValuesReadBack() {
    LoadSettings();
    SaveSettings();
    const std::vector<RegistryValue> before = Sorted();
    ASSERT_EQ(AllValueNames().size(), before.size());
    const SettingsExport settings = Exported();
    EXPECT_EQ(std::vector<std::string>(), settings.unsaid);
    ReadOnAFreshDevice(settings);
    const std::vector<RegistryValue> after = Sorted();
    ASSERT_EQ(before.size(), after.size());
    for (size_t i = 0; i < before.size(); i++) {
        EXPECT_EQ(before[i].name, after[i].name);
        EXPECT_EQ(before[i].type, after[i].type) << before[i].name;
        EXPECT_EQ(before[i].data, after[i].data) << before[i].name;
    }
}

TEST_F(Export, EverySettingOfRandomValuesReadsBackTheSame) {
    std::mt19937 random(1);
    for (int round = 0; round < 20; round++) {
        LoadSettings();
        SaveSettings();
        StoreRandomValues(&random);
        ExpectStoredValuesReadBack();
    }
}

// Numbers from 0 to the largest of 32 bits, with the neighbours of both; texts of 1 to 39 letters.
TEST_F(Export, EverySettingAtBothEndsOfItsRangeReadsBackTheSame) {
    const struct {
        DWORD number;
        std::u16string text;
    } ends[] = {
        {0, u"!"},
        {1, u"\u00FF\u20AC"},
        {0x7FFFFFFF, u" "},
        {0x80000000, std::u16string(38, u' ')},
        {0xFFFFFFFE, std::u16string(39, u'\\')},
        {0xFFFFFFFF, std::u16string(39, u'\u00FF')},
    };
    LoadSettings();
    SaveSettings();
    const std::vector<RegistryValue> values = StoredValues();
    for (const auto& end : ends) {
        SCOPED_TRACE(end.number);
        for (const RegistryValue& value : values)
            value.type == REG_DWORD ? StoreNumber(value.name, end.number)
                                    : StoreText(value.name, end.text);
        ExpectStoredValuesReadBack();
        for (const NumberSetting& row : number_settings)
            EXPECT_EQ(end.number, *row.field) << row.name;
        for (const TextSetting& row : text_settings)
            EXPECT_EQ(end.text, std::u16string(row.field)) << row.name;
    }
}

// One at a time, so that no setting takes another one's value.
TEST_F(Export, EachSettingAloneWithAnotherValueThanItsDefaultReadsBack) {
    for (const NumberSetting& row : number_settings) {
        ResetSettings();
        LoadSettings();
        *row.field = row.fallback + 1;
        SaveSettings();
        ExpectStoredValuesReadBack();
        for (const NumberSetting& other : number_settings)
            EXPECT_EQ(other.fallback + (other.name == row.name ? 1 : 0), *other.field)
                << row.name << ' ' << other.name;
    }
    for (const TextSetting& row : text_settings) {
        ResetSettings();
        LoadSettings();
        lstrcpyW(row.field, u"another");
        SaveSettings();
        ExpectStoredValuesReadBack();
        for (const TextSetting& other : text_settings) {
            const std::string fallback = other.name == row.name ? "another" : other.fallback;
            EXPECT_EQ(std::u16string(fallback.begin(), fallback.end()), other.field)
                << row.name << ' ' << other.name;
        }
    }
}

TEST_F(Export, DefaultsReadBackTheSame) {
    LoadSettings();
    SaveSettings();
    const SettingsExport settings = Exported();
    EXPECT_EQ(std::vector<std::string>(), settings.unsaid);
    const std::vector<RegistryValue> before = Sorted();
    ReadOnAFreshDevice(settings);
    const std::vector<RegistryValue> after = Sorted();
    ASSERT_EQ(before.size(), after.size());
    for (size_t i = 0; i < before.size(); i++) EXPECT_EQ(before[i].data, after[i].data);
}

TEST_F(Export, NumbersAreDecimalAndWhole) {
    StoreNumber("port", 4294967295u);
    EXPECT_TRUE(HasLine(Exported(), "port = 4294967295"));
}

TEST_F(Export, TextsAreQuoted) {
    StoreText("host", u" a  b ");
    EXPECT_TRUE(HasLine(Exported(), "host = \" a  b \""));
}

TEST_F(Export, NumberedSettingsComeLastAndInTheirOrder) {
    for (const char* name : {"key10", "tbar2", "key2", "port", "tbar10", "bell"})
        StoreNumber(name, 1);
    const std::string file = Exported().file;
    EXPECT_NE(std::string::npos,
              file.find("bell = 1\nport = 1\nkey2 = 1\nkey10 = 1\ntbar2 = 1\ntbar10 = 1\n"));
}

TEST_F(Export, PasswordsAndResponsesAreLeftOutByTheirNames) {
    StoreText("ssh_p", u"secret");
    StoreText("resp1", u"anna");
    StoreText("resp2", u"secret");
    StoreText("sear1", u"ogin");
    const SettingsExport without = Exported(false);
    EXPECT_EQ((std::vector<std::string>{"ssh_p", "resp1", "resp2"}), without.left_out);
    EXPECT_EQ(std::string::npos, without.file.find("secret"));
    EXPECT_TRUE(HasLine(without, "sear1 = \"ogin\""));
    EXPECT_TRUE(HasLine(Exported(true), "ssh_p = \"secret\""));
}

TEST_F(Export, EmptyPasswordsAreNotNamed) {
    StoreText("ssh_p", u"");
    EXPECT_EQ(std::vector<std::string>(), Exported(false).left_out);
}

TEST_F(Export, ValuesThatALineCannotHoldAreReported) {
    StoreText("termtype", u"a\"b");
    StoreText("host", u"a\nb");
    StoreText("ras", u"\u03A9");
    StoreText("sear1", u"");
    StoreText("key3", std::u16string(40, u'x'));
    Store("bell", 3, "binary");
    StoreNumber("a b", 1);
    StoreNumber("#x", 1);
    StoreNumber(std::string(80, 'n'), 1);
    const SettingsExport settings = Exported();
    EXPECT_EQ(9u, settings.unsaid.size());
    EXPECT_EQ(settings.file.rfind("#"), settings.file.rfind('\n', settings.file.size() - 2) + 1);
}

TEST_F(Export, NoLineIsLongerThanTheProgramReads) {
    StoreNumber(std::string(74, 'n'), 1);  // 78 characters with " = 1"
    StoreNumber(std::string(75, 'm'), 1);
    const SettingsExport settings = Exported();
    EXPECT_TRUE(HasLine(settings, std::string(74, 'n') + " = 1"));
    EXPECT_EQ(1u, settings.unsaid.size());
}

TEST_F(Export, EmptyTextsWithAnEmptyDefaultAreNotReported) {
    for (const TextSetting& row : text_settings)
        EXPECT_EQ(row.fallback[0] == 0, IsEmptyAtFirst(row.name)) << row.name;
    for (int i = 0; i < 66; i++)
        EXPECT_EQ(key_rows[i].text[0] == 0, IsEmptyAtFirst("key" + std::to_string(i))) << i;
    StoreText("host", u"");
    EXPECT_EQ(std::vector<std::string>(), Exported().unsaid);
}

TEST_F(Export, ADeviceWithoutSettingsExportsNothing) {
    SettingsExport result;
    EXPECT_FALSE(ExportSettings(DeviceRoot(), true, &result));
    EXPECT_FALSE(DeviceFileExists("registry.db"));
    WriteDeviceFile("registry.db", "this is no database, but a text of some length");
    EXPECT_FALSE(ExportSettings(DeviceRoot(), true, &result));
    EXPECT_TRUE(DeviceFileExists("registry.db"));
}
