// SPDX-License-Identifier: MIT
// The key table: its rows, and how they are saved to the registry and loaded from it.
#include "settings/key_map.h"

#include "settings/settings.h"
#include "tests/settings/device.h"
#include "tests/settings/key_rows.h"
#include "tests/settings/registry_log.h"

namespace {

class KeyMap : public DeviceTest {
  protected:
    void TearDown() override {
        for (KeyMapEntry* row = key_map; row->name; row++) SetKeyText(row, TEXT(""));
        DeviceTest::TearDown();
    }
};

std::string HexOf(const char* bytes) {
    std::string text;
    for (; *bytes; bytes++) {
        char digits[8];
        snprintf(digits, sizeof digits, "%s%02X", text.empty() ? "" : " ",
                 static_cast<unsigned>(static_cast<BYTE>(*bytes)));
        text += digits;
    }
    return text;
}

int calls_to_refusal = 0;  // 1: the next call of malloc is refused; 0: no call is refused

std::string KeyName(size_t i) { return "key" + std::to_string(i); }

}  // namespace

// Null in a build for another processor, which does not redirect malloc.
[[gnu::weak]] void* RealMalloc(size_t size) __asm__("__real_malloc");
void* RefusingMalloc(size_t size) __asm__("__wrap_malloc");
void* RefusingMalloc(size_t size) {
    return calls_to_refusal > 0 && --calls_to_refusal == 0 ? nullptr : RealMalloc(size);
}

TEST_F(KeyMap, EveryRowHasItsNameAndDefault) {
    for (size_t i = 0; i < 66; i++) {
        EXPECT_STREQ(key_rows[i].name, key_map[i].name) << i;
        EXPECT_STREQ(key_rows[i].text, key_map[i].defaultText) << i;
    }
}

TEST_F(KeyMap, TheTableEndsAfter66Rows) { EXPECT_EQ(nullptr, key_map[66].name); }

TEST_F(KeyMap, WithoutValuesEveryRowSendsItsDefault) {
    LoadKeyMap();
    for (size_t i = 0; i < 66; i++) {
        ASSERT_NE(nullptr, key_map[i].text) << i;
        EXPECT_STREQ(key_rows[i].text, key_map[i].text) << i;
        EXPECT_EQ(key_rows[i].bytes, HexOf(UnescapeKeyText(key_map[i].text))) << key_map[i].name;
    }
}

TEST_F(KeyMap, EveryRowIsLoadedFromItsOwnValue) {
    for (size_t i = 0; i < 66; i++) StoreText(KeyName(i), u"own " + Wide(std::to_string(i)));
    LoadKeyMap();
    for (size_t i = 0; i < 66; i++) EXPECT_EQ("own " + std::to_string(i), key_map[i].text);
}

TEST_F(KeyMap, EveryRowIsSavedAsItsOwnString) {
    LoadKeyMap();
    SaveKeyMap();
    EXPECT_EQ(NumberedNames("key", 66), StoredNames());
    for (size_t i = 0; i < 66; i++) {
        const RegistryValue value = Stored(KeyName(i));
        EXPECT_EQ(REG_SZ, value.type) << i;
        EXPECT_EQ(TerminatedBytes(Wide(key_rows[i].text)), value.data) << i;
    }
}

TEST_F(KeyMap, EveryRowSurvivesASaveAndALoad) {
    LoadKeyMap();
    for (size_t i = 0; i < 66; i++) SetKeyText(&key_map[i], Wide("\\" + std::to_string(i)).c_str());
    SaveKeyMap();
    for (size_t i = 0; i < 66; i++) SetKeyText(&key_map[i], TEXT("other"));
    LoadKeyMap();
    for (size_t i = 0; i < 66; i++) EXPECT_EQ("\\" + std::to_string(i), key_map[i].text);
}

TEST_F(KeyMap, DeletingDeletesTheRowsAndNothingElse) {
    LoadKeyMap();
    SaveKeyMap();
    StoreNumber("fsize", 9);
    DeleteKeyMap();
    EXPECT_EQ(NumberedNames("key", 66), LoggedNames("delete"));
    EXPECT_EQ(std::vector<std::string>{"fsize"}, StoredNames());
}

TEST_F(KeyMap, DeletingWithoutTheKeyDoesNothing) {
    DeleteKeyMap();
    EXPECT_TRUE(LoggedNames("delete").empty());
}

TEST_F(KeyMap, ARowEditedToAbcSendsTheThreeLetters) {
    LoadKeyMap();
    EXPECT_EQ(1, SetKeyText(&key_map[0], TEXT("abc")));
    EXPECT_STREQ("abc", TranslateVirtualKey(VK_F1));
}

TEST_F(KeyMap, ARowEditedToNothingSendsNothing) {
    LoadKeyMap();
    EXPECT_EQ(1, SetKeyText(&key_map[0], TEXT("")));
    EXPECT_STREQ("", TranslateVirtualKey(VK_F1));
}

TEST_F(KeyMap, AnEmptyValueIsNotTheDefault) {
    StoreText("key0", u"");
    LoadKeyMap();
    EXPECT_STREQ("", key_map[0].text);
}

TEST_F(KeyMap, ARowWithoutASequenceSendsNothingAndIsSavedEmpty) {
    LoadKeyMap();
    free(key_map[0].text);
    key_map[0].text = nullptr;
    EXPECT_STREQ("", TranslateVirtualKey(VK_F1));
    SaveKeyMap();
    EXPECT_EQ(TerminatedBytes(u""), Stored("key0").data);
    EXPECT_EQ(66u, StoredValues().size());
}

TEST_F(KeyMap, WithoutMemoryForARowItAndTheRowsBehindItHaveNoSequence) {
    if (RealMalloc == nullptr) GTEST_SKIP() << "malloc cannot be refused here";
    LoadKeyMap();
    calls_to_refusal = 4;
    LoadKeyMap();
    EXPECT_EQ(0, calls_to_refusal);
    for (size_t i = 0; i < 3; i++) EXPECT_STREQ(key_rows[i].text, key_map[i].text) << i;
    for (size_t i = 3; i < 66; i++) EXPECT_EQ(nullptr, key_map[i].text) << i;
    LoadKeyMap();
    for (size_t i = 0; i < 66; i++) EXPECT_STREQ(key_rows[i].text, key_map[i].text) << i;
}

TEST_F(KeyMap, WithoutMemoryAnEditedRowKeepsItsSequence) {
    if (RealMalloc == nullptr) GTEST_SKIP() << "malloc cannot be refused here";
    LoadKeyMap();
    calls_to_refusal = 1;
    EXPECT_EQ(0, SetKeyText(&key_map[0], TEXT("abc")));
    EXPECT_STREQ(key_rows[0].text, key_map[0].text);
}

TEST_F(KeyMap, AValueOf39CharactersIsReadWhole) {
    StoreText("key7", std::u16string(39, u'x'));
    LoadKeyMap();
    EXPECT_EQ(std::string(39, 'x'), key_map[7].text);
}

// Strings of more than 80 bytes cannot be read, so the default applies before the limit of 255.
TEST_F(KeyMap, AValueOfMoreThan255CharactersIsTheDefaultAndLoadingContinues) {
    StoreText("key7", std::u16string(256, u'x'));
    StoreText("key8", std::u16string(40, u'x'));
    StoreText("key9", u"after");
    LoadKeyMap();
    EXPECT_STREQ(key_rows[7].text, key_map[7].text);
    EXPECT_STREQ(key_rows[8].text, key_map[8].text);
    EXPECT_STREQ("after", key_map[9].text);
}

TEST_F(KeyMap, ATextOf255CharactersIsTakenAndALongerOneChangesNothing) {
    LoadKeyMap();
    EXPECT_EQ(1, SetKeyText(&key_map[0], std::u16string(255, u'x').c_str()));
    EXPECT_EQ(std::string(255, 'x'), TranslateVirtualKey(VK_F1));
    EXPECT_EQ(0, SetKeyText(&key_map[0], std::u16string(256, u'y').c_str()));
    EXPECT_EQ(std::string(255, 'x'), key_map[0].text);
    EXPECT_EQ(1, SetKeyText(&key_map[0], std::u16string(254, u'z').c_str()));
    EXPECT_EQ(254u, strlen(TranslateVirtualKey(VK_F1)));
}

TEST_F(KeyMap, SavingKeepsAtMost80Characters) {
    LoadKeyMap();
    SetKeyText(&key_map[0], std::u16string(80, u'x').c_str());
    SetKeyText(&key_map[1], std::u16string(81, u'y').c_str());
    SaveKeyMap();
    EXPECT_EQ(TerminatedBytes(std::u16string(80, u'x')), Stored("key0").data);
    EXPECT_EQ(TerminatedBytes(std::u16string(80, u'y')), Stored("key1").data);
}

TEST_F(KeyMap, TextsGoThroughTheAnsiCodePage) {
    StoreText("key0", u"\u00E4\u20AC\u4E00");
    LoadKeyMap();
    EXPECT_STREQ("\xE4\x80?", key_map[0].text);
    SaveKeyMap();
    EXPECT_EQ(TerminatedBytes(u"\u00E4\u20AC?"), Stored("key0").data);
}

TEST_F(KeyMap, LoadingTwiceReplacesTheTexts) {
    StoreText("key0", u"first");
    LoadKeyMap();
    StoreText("key0", u"second");
    LoadKeyMap();
    EXPECT_STREQ("second", key_map[0].text);
}

TEST_F(KeyMap, ANumberInPlaceOfATextIsTakenAsItsCharacters) {
    Store("key0", REG_DWORD, TextBytes(u"ab"));
    Store("key1", REG_DWORD, std::string(4, '\0'));
    LoadKeyMap();
    EXPECT_STREQ("ab", key_map[0].text);
    EXPECT_STREQ("", key_map[1].text);
}
