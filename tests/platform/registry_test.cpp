// SPDX-License-Identifier: MIT
// The registry as the program uses it.
#include <gtest/gtest.h>

#include <string>

#include "windows_ce.h"

namespace {

const LPCWSTR kPath = TEXT("Software\\QUILLWARE\\REGISTRY TEST");

LPCWSTR const kNames[] = {TEXT("number"), TEXT("text"), TEXT(""), TEXT("Other")};

// Each test starts with the key and no value.
class RegistryKey : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_EQ(ERROR_SUCCESS, Create(KEY_QUERY_VALUE | KEY_SET_VALUE, &key));
        for (LPCWSTR name : kNames) RegDeleteValueW(key, name);
    }
    void TearDown() override {
        for (LPCWSTR name : kNames) RegDeleteValueW(key, name);
        RegCloseKey(key);
    }
    static LONG Create(DWORD access, HKEY* result) {
        return RegCreateKeyExW(HKEY_LOCAL_MACHINE, kPath, 0, nullptr, REG_OPTION_NON_VOLATILE,
                               access, nullptr, result, nullptr);
    }
    LONG SetNumber(LPCWSTR name, DWORD number) {
        return RegSetValueExW(key, name, 0, REG_DWORD, reinterpret_cast<BYTE*>(&number), 4);
    }
    LONG QueryNumber(LPCWSTR name, DWORD* number) {
        DWORD size = sizeof(*number);
        return RegQueryValueExW(key, name, nullptr, nullptr, reinterpret_cast<BYTE*>(number),
                                &size);
    }

    HKEY key = nullptr;
};

}  // namespace

TEST_F(RegistryKey, NumberReadsBackAsSet) {
    DWORD number = 0, type = 0, size = sizeof(number);
    EXPECT_EQ(ERROR_SUCCESS, SetNumber(TEXT("number"), 0xFEDCBA98));
    EXPECT_EQ(ERROR_SUCCESS, RegFlushKey(key));
    EXPECT_EQ(ERROR_SUCCESS, RegQueryValueExW(key, TEXT("number"), nullptr, &type,
                                              reinterpret_cast<BYTE*>(&number), &size));
    EXPECT_EQ(0xFEDCBA98u, number);
    EXPECT_EQ(REG_DWORD, type);
    EXPECT_EQ(4u, size);
}

TEST_F(RegistryKey, TextReadsBackWithItsTerminator) {
    const WCHAR text[] = TEXT("Gr\u00fc\u00dfe \u20ac");
    WCHAR read[40] = {};
    DWORD type = 0, size = sizeof(read);
    EXPECT_EQ(ERROR_SUCCESS, RegSetValueExW(key, TEXT("text"), 0, REG_SZ,
                                            reinterpret_cast<const BYTE*>(text), sizeof(text)));
    EXPECT_EQ(ERROR_SUCCESS, RegQueryValueExW(key, TEXT("text"), nullptr, &type,
                                              reinterpret_cast<BYTE*>(read), &size));
    EXPECT_EQ(0, lstrcmpW(text, read));
    EXPECT_EQ(REG_SZ, type);
    EXPECT_EQ(sizeof(text), size);
}

TEST_F(RegistryKey, SettingAgainReplacesValueAndType) {
    DWORD number = 0, type = 0, size = sizeof(number);
    SetNumber(TEXT("number"), 1);
    const WCHAR text[] = TEXT("a");
    EXPECT_EQ(ERROR_SUCCESS, RegSetValueExW(key, TEXT("number"), 0, REG_SZ,
                                            reinterpret_cast<const BYTE*>(text), sizeof(text)));
    EXPECT_EQ(ERROR_SUCCESS, RegQueryValueExW(key, TEXT("number"), nullptr, &type,
                                              reinterpret_cast<BYTE*>(&number), &size));
    EXPECT_EQ(REG_SZ, type);
    EXPECT_EQ(DWORD{TEXT('a')}, number);
}

TEST_F(RegistryKey, MissingKeyIsNotFound) {
    HKEY missing = key;
    EXPECT_EQ(ERROR_FILE_NOT_FOUND,
              RegOpenKeyExW(HKEY_LOCAL_MACHINE, TEXT("Software\\QUILLWARE\\NO SUCH KEY"), 0,
                            KEY_QUERY_VALUE, &missing));
}

TEST_F(RegistryKey, KeyWithoutValuesOpens) {
    HKEY again = nullptr;
    EXPECT_EQ(ERROR_SUCCESS, RegOpenKeyExW(HKEY_LOCAL_MACHINE, kPath, 0, KEY_QUERY_VALUE, &again));
    DWORD number = 0;
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, QueryNumber(TEXT("number"), &number));
    EXPECT_EQ(ERROR_SUCCESS, RegCloseKey(again));
}

TEST_F(RegistryKey, ParentKeyExistsToo) {
    HKEY above = nullptr, below = nullptr;
    ASSERT_EQ(ERROR_SUCCESS, RegOpenKeyExW(HKEY_LOCAL_MACHINE, TEXT("Software\\QUILLWARE"), 0,
                                           KEY_QUERY_VALUE, &above));
    EXPECT_EQ(ERROR_SUCCESS,
              RegOpenKeyExW(above, TEXT("REGISTRY TEST"), 0, KEY_QUERY_VALUE, &below));
    EXPECT_EQ(ERROR_SUCCESS, RegCloseKey(below));
    EXPECT_EQ(ERROR_SUCCESS, RegCloseKey(above));
}

TEST_F(RegistryKey, NamesAreComparedWithoutCase) {
    DWORD number = 0;
    HKEY again = nullptr;
    SetNumber(TEXT("Other"), 5);
    EXPECT_EQ(ERROR_SUCCESS, QueryNumber(TEXT("oTHER"), &number));
    EXPECT_EQ(5u, number);
    EXPECT_EQ(ERROR_SUCCESS,
              RegOpenKeyExW(HKEY_LOCAL_MACHINE, TEXT("SOFTWARE\\quillware\\Registry test"), 0,
                            KEY_QUERY_VALUE, &again));
    EXPECT_EQ(ERROR_SUCCESS, RegCloseKey(again));
}

TEST_F(RegistryKey, LettersBeyondAsciiAreComparedWithoutCaseToo) {
    DWORD number = 0;
    SetNumber(TEXT("m\u00e4\u0107"), 6);
    EXPECT_EQ(ERROR_SUCCESS, QueryNumber(TEXT("M\u00c4\u0106"), &number));
    EXPECT_EQ(6u, number);
    EXPECT_EQ(ERROR_SUCCESS, RegDeleteValueW(key, TEXT("M\u00c4\u0107")));
}

TEST_F(RegistryKey, ValueWithoutNameIsTheEmptyName) {
    DWORD number = 0;
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, QueryNumber(nullptr, &number));
    EXPECT_EQ(ERROR_SUCCESS, SetNumber(nullptr, 7));
    EXPECT_EQ(ERROR_SUCCESS, QueryNumber(TEXT(""), &number));
    EXPECT_EQ(7u, number);
}

TEST_F(RegistryKey, TooSmallABufferGivesTheSizeAndIsLeftAlone) {
    const WCHAR text[] = TEXT("longer than six bytes");
    RegSetValueExW(key, TEXT("text"), 0, REG_SZ, reinterpret_cast<const BYTE*>(text), sizeof(text));
    BYTE bytes[8] = {0, 0, 0, 0, 0, 0, 0xAA, 0xAA};
    DWORD size = 6;
    EXPECT_EQ(ERROR_MORE_DATA, RegQueryValueExW(key, TEXT("text"), nullptr, nullptr, bytes, &size));
    EXPECT_EQ(sizeof(text), size);
    EXPECT_EQ(0xAA, bytes[6]);
}

TEST_F(RegistryKey, NoBufferAsksForTheSize) {
    SetNumber(TEXT("number"), 1);
    DWORD size = 0, type = 0;
    EXPECT_EQ(ERROR_SUCCESS, RegQueryValueExW(key, TEXT("number"), nullptr, &type, nullptr, &size));
    EXPECT_EQ(4u, size);
    EXPECT_EQ(REG_DWORD, type);
}

TEST_F(RegistryKey, BufferWithoutASizeIsRefused) {
    SetNumber(TEXT("number"), 1);
    BYTE bytes[4];
    EXPECT_EQ(ERROR_INVALID_PARAMETER,
              RegQueryValueExW(key, TEXT("number"), nullptr, nullptr, bytes, nullptr));
}

TEST_F(RegistryKey, EmptyValueExists) {
    DWORD size = 9;
    BYTE bytes[9];
    EXPECT_EQ(ERROR_SUCCESS, RegSetValueExW(key, TEXT("text"), 0, REG_SZ, nullptr, 0));
    EXPECT_EQ(ERROR_SUCCESS, RegQueryValueExW(key, TEXT("text"), nullptr, nullptr, bytes, &size));
    EXPECT_EQ(0u, size);
}

TEST_F(RegistryKey, DeletedValueIsNotFound) {
    DWORD number = 0;
    SetNumber(TEXT("number"), 1);
    EXPECT_EQ(ERROR_SUCCESS, RegDeleteValueW(key, TEXT("number")));
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, QueryNumber(TEXT("number"), &number));
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, RegDeleteValueW(key, TEXT("number")));
}

TEST_F(RegistryKey, KeyOpenedForReadingRefusesWrites) {
    HKEY reading = nullptr;
    DWORD number = 1;
    ASSERT_EQ(ERROR_SUCCESS,
              RegOpenKeyExW(HKEY_LOCAL_MACHINE, kPath, 0, KEY_QUERY_VALUE, &reading));
    EXPECT_EQ(ERROR_ACCESS_DENIED, RegSetValueExW(reading, TEXT("number"), 0, REG_DWORD,
                                                  reinterpret_cast<BYTE*>(&number), 4));
    EXPECT_EQ(ERROR_ACCESS_DENIED, RegDeleteValueW(reading, TEXT("number")));
    RegCloseKey(reading);
}

TEST_F(RegistryKey, KeyOpenedForWritingRefusesReads) {
    HKEY writing = nullptr;
    DWORD number = 1, size = 4;
    ASSERT_EQ(ERROR_SUCCESS, Create(KEY_SET_VALUE, &writing));
    EXPECT_EQ(ERROR_SUCCESS, RegSetValueExW(writing, TEXT("number"), 0, REG_DWORD,
                                            reinterpret_cast<BYTE*>(&number), 4));
    EXPECT_EQ(ERROR_ACCESS_DENIED, RegQueryValueExW(writing, TEXT("number"), nullptr, nullptr,
                                                    reinterpret_cast<BYTE*>(&number), &size));
    RegCloseKey(writing);
}

TEST_F(RegistryKey, DispositionTellsNewFromExisting) {
    HKEY again = nullptr;
    DWORD disposition = 0;
    ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyExW(HKEY_LOCAL_MACHINE, kPath, 0, nullptr, 0,
                                             KEY_SET_VALUE, nullptr, &again, &disposition));
    EXPECT_EQ(2u, disposition);
    RegCloseKey(again);
}

TEST_F(RegistryKey, InvalidHandlesAreErrors) {
    HKEY wild = reinterpret_cast<HKEY>(static_cast<UINT_PTR>(0x7ffffff4)), result = nullptr;
    DWORD number = 0, size = 4;
    BYTE* bytes = reinterpret_cast<BYTE*>(&number);
    for (HKEY bad : {wild, static_cast<HKEY>(nullptr)}) {
        EXPECT_EQ(ERROR_INVALID_HANDLE,
                  RegOpenKeyExW(bad, TEXT("Software"), 0, KEY_QUERY_VALUE, &result));
        EXPECT_EQ(ERROR_INVALID_HANDLE, RegCreateKeyExW(bad, TEXT("Software"), 0, nullptr, 0,
                                                        KEY_SET_VALUE, nullptr, &result, nullptr));
        EXPECT_EQ(ERROR_INVALID_HANDLE,
                  RegQueryValueExW(bad, TEXT("number"), nullptr, nullptr, bytes, &size));
        EXPECT_EQ(ERROR_INVALID_HANDLE,
                  RegSetValueExW(bad, TEXT("number"), 0, REG_DWORD, bytes, 4));
        EXPECT_EQ(ERROR_INVALID_HANDLE, RegDeleteValueW(bad, TEXT("number")));
        EXPECT_EQ(ERROR_INVALID_HANDLE, RegFlushKey(bad));
        EXPECT_EQ(ERROR_INVALID_HANDLE, RegCloseKey(bad));
    }
}

TEST_F(RegistryKey, ClosedHandleIsInvalid) {
    HKEY once = nullptr;
    DWORD number = 0, size = 4;
    ASSERT_EQ(ERROR_SUCCESS, Create(KEY_QUERY_VALUE, &once));
    EXPECT_EQ(ERROR_SUCCESS, RegCloseKey(once));
    EXPECT_EQ(ERROR_INVALID_HANDLE, RegQueryValueExW(once, TEXT("number"), nullptr, nullptr,
                                                     reinterpret_cast<BYTE*>(&number), &size));
}
