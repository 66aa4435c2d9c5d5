// SPDX-License-Identifier: MIT
// The import of the configuration file: every kind of line, and when the file is deleted.
#include "settings/settings.h"

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <random>

#include "platform/qt/services/services.h"
#include "session/session_state.h"
#include "tests/settings/device.h"
#include "tests/settings/window_doubles.h"

namespace {

const HWND kOwner = reinterpret_cast<HWND>(UINT_PTR{0x1234});
const char kFile[] = "mconfig.cfg";

class ConfigFile : public DeviceTest {};

void Import(const std::string& content) {
    WriteDeviceFile(kFile, content);
    shown_messages.clear();
    ImportConfigFile(kOwner);
    EXPECT_EQ(1u, shown_messages.size());
    EXPECT_FALSE(DeviceFileExists(kFile));
}

void ExpectNumber(const std::string& name, DWORD number) {
    const RegistryValue value = Stored(name);
    EXPECT_EQ(REG_DWORD, value.type) << name;
    EXPECT_EQ(NumberBytes(number), value.data) << name;
}

void ExpectText(const std::string& name, const std::u16string& text) {
    const RegistryValue value = Stored(name);
    EXPECT_EQ(REG_SZ, value.type) << name;
    EXPECT_EQ(TerminatedBytes(text), value.data) << name;
}

void ExpectNothingWritten(const std::string& content) {
    Import(content);
    EXPECT_EQ(std::vector<std::string>(), StoredNames()) << content;
}

}  // namespace

TEST_F(ConfigFile, AHexadecimalPortOf0x17Is23) {
    Import("port = 0x17\n");
    ExpectNumber("port", 23);
    LoadSettings();
    EXPECT_EQ(23u, session.settings.port);
}

TEST_F(ConfigFile, AQuotedTerminalTypeIsItsText) {
    Import("termtype = \"vt100\"\n");
    ExpectText("termtype", u"vt100");
    LoadSettings();
    EXPECT_EQ(u"vt100", std::u16string(session.settings.termtype));
}

TEST_F(ConfigFile, AQuotedHostKeepsItsBlanks) {
    Import("host = \" my  host \"\n");
    ExpectText("host", u" my  host ");
    LoadSettings();
    EXPECT_EQ(u" my  host ", std::u16string(session.settings.host));
}

TEST_F(ConfigFile, ALineBeginningWithANumberSignIsIgnored) {
    Import("# fsize = 9\n#fsize = 10\n#\nport = 24\n");
    EXPECT_EQ(std::vector<std::string>{"port"}, StoredNames());
}

TEST_F(ConfigFile, ANumberSignAfterABlankIsNoComment) {
    Import(" #fsize = 9\n");
    ExpectNumber("#fsize", 9);
}

TEST_F(ConfigFile, TheFileIsGoneAndTheMessageShownOnlyTheFirstTime) {
    Import("port = 24\n");
    shown_messages.clear();
    ImportConfigFile(kOwner);
    EXPECT_TRUE(shown_messages.empty());
    ExpectNumber("port", 24);
}

TEST_F(ConfigFile, TheMessageComesBeforeTheImportOverTheOwner) {
    Import("port = 24\n");
    const ShownMessage& shown = shown_messages[0];
    EXPECT_EQ(u"Installing configuration from file \\mconfig.cfg ", shown.text);
    EXPECT_EQ(u"Quill Telnet", shown.caption);
    EXPECT_EQ(kOwner, shown.owner);
    EXPECT_EQ(MB_OK | MB_ICONINFORMATION, static_cast<int>(shown.type));
    EXPECT_TRUE(shown.file_present);
}

TEST_F(ConfigFile, NothingIsShownOrWrittenWithoutAFile) {
    ImportConfigFile(kOwner);
    EXPECT_TRUE(shown_messages.empty());
    EXPECT_FALSE(DeviceFileExists("registry.db"));
}

TEST_F(ConfigFile, AnEmptyFileIsShownAndDeleted) { ExpectNothingWritten(""); }

TEST_F(ConfigFile, NumbersAreDecimalHexadecimalOrOctal) {
    const struct {
        const char* text;
        DWORD number;
    } kNumbers[] = {
        {"0", 0},
        {"1", 1},
        {"+7", 7},
        {"++7", 0},
        {"-+7", 0},
        {"+-7", 0},
        {"65559", 65559},
        {"0x0", 0},
        {"0xFFFFFF", 16777215},
        {"0Xab", 171},
        {"010", 8},
        {"0777", 511},
        {"089", 0},
        {"-1", 0xFFFFFFFF},
        {"-2147483648", 0x80000000},
        {"-2147483647", 0x80000001},
        {"-0x10", 0xFFFFFFF0},
        {"2147483647", 0x7FFFFFFF},
        {"4294967294", 0xFFFFFFFE},
        {"4294967295", 0xFFFFFFFF},
        {"0xFFFFFFFF", 0xFFFFFFFF},
        {"12abc", 12},
        {"12\"", 12},
    };
    for (const auto& row : kNumbers) {
        SCOPED_TRACE(row.text);
        Import(std::string("fsize = ") + row.text + "\n");
        ExpectNumber("fsize", row.number);
    }
}

TEST_F(ConfigFile, NumbersBeyond32BitsStopAtTheBounds) {
    Import("a = 4294967296\nb = 99999999999999999999999999\nc = -99999999999999999999999999\n");
    ExpectNumber("a", 0xFFFFFFFF);
    ExpectNumber("b", 0xFFFFFFFF);
    ExpectNumber("c", 0x80000000);
}

TEST_F(ConfigFile, TextThatIsNoNumberIs0) {
    Import("a = vt100\nb = -\nc = 0x\nd = 'x'\n");
    for (const char* name : {"a", "b", "c", "d"}) ExpectNumber(name, 0);
}

TEST_F(ConfigFile, AnEmptyStringSkipsTheLine) {
    ExpectNothingWritten("host = \"\"\nhost = \"\" \"x\"\n");
}

TEST_F(ConfigFile, AMissingClosingQuoteSkipsTheLine) {
    ExpectNothingWritten("host = \"abc\nhost = \"\nhost = \"a b\r\n");
}

TEST_F(ConfigFile, AQuoteOnTheNextLineDoesNotClose) {
    Import("host = \"abc\nport = 24\n\"\n");
    EXPECT_EQ(std::vector<std::string>{"port"}, StoredNames());
}

TEST_F(ConfigFile, TheStringEndsAtTheSecondQuote) {
    Import("host = \"abc\"def\" # more\n");
    ExpectText("host", u"abc");
}

TEST_F(ConfigFile, TheStringBeginsAtTheFirstQuoteOfTheLine) {
    Import("a\"b = \"c\"\n");
    ExpectText("a\"b", u"b = ");
}

TEST_F(ConfigFile, AQuoteWithinAnUnquotedValueMakesNoString) {
    Import("fsize = 1\"2\"\n");
    ExpectNumber("fsize", 1);
}

TEST_F(ConfigFile, AStringMayHoldEqualsSignsAndNumberSigns) {
    Import("resp1 = \"# a = b\"\n");
    ExpectText("resp1", u"# a = b");
}

TEST_F(ConfigFile, EscapeTextIsTakenUnchanged) {
    Import("key0 = \"\\033[A\"\n");
    ExpectText("key0", u"\\033[A");
}

TEST_F(ConfigFile, StringsAreInTheAnsiCodePage) {
    Import("host = \"\xE4\x80\xFF\"\n");
    ExpectText("host", u"\u00E4\u20AC\u00FF");
}

TEST_F(ConfigFile, LinesOfFewerThanTwoTokensAreIgnored) {
    ExpectNothingWritten("port\nport =\nport = \n= 23\n = 23\n\n \n=\nport 23\nport : 23\n");
}

TEST_F(ConfigFile, WithoutABlankBeforeTheEqualsSignTheLineIsIgnored) {
    ExpectNothingWritten("port=23\nport= 23\nhost=\"abc\"\nhost= \"abc\"\n");
}

TEST_F(ConfigFile, ABlankAfterTheEqualsSignMayBeMissing) {
    Import("port =24\nhost =\"a b\"\n");
    ExpectNumber("port", 24);
    ExpectText("host", u"a b");
}

TEST_F(ConfigFile, BlanksMayBeManyAndTabs) {
    Import(" \t port \t  =\t\t 24 \t\n");
    ExpectNumber("port", 24);
}

TEST_F(ConfigFile, MoreTokensAreIgnored) {
    Import("port = 24 25 = 26\n");
    EXPECT_EQ(std::vector<std::string>{"port"}, StoredNames());
    ExpectNumber("port", 24);
}

TEST_F(ConfigFile, AnyNameIsTaken) {
    Import("nobody_knows = 1\n\xE4 = 2\n123 = 3\n");
    ExpectNumber("nobody_knows", 1);
    ExpectNumber("123", 3);
    EXPECT_EQ(2u, ReadNumber(TEXT("\u00E4"), 0));
}

TEST_F(ConfigFile, TheLastEntryOfANameCounts) {
    Import("port = 1\nport = \"two\"\nport = 3\n");
    ExpectNumber("port", 3);
    EXPECT_EQ(1u, StoredValues().size());
}

TEST_F(ConfigFile, TheLastLineNeedsNoNewline) {
    Import("port = 24\nfsize = 9");
    ExpectNumber("fsize", 9);
    Import("host = \"end\"");
    ExpectText("host", u"end");
}

TEST_F(ConfigFile, LinesMayEndInCarriageReturns) {
    Import("port = 24\r\nhost = \"a b\"\r\n# x\r\n\r\nfsize = 9\r\n");
    ExpectNumber("port", 24);
    ExpectText("host", u"a b");
    ExpectNumber("fsize", 9);
    EXPECT_EQ(3u, StoredValues().size());
}

TEST_F(ConfigFile, CarriageReturnsWithoutLineFeedsEndNoLine) {
    Import("port = 24\rfsize = 9\r");
    EXPECT_EQ(std::vector<std::string>{"port"}, StoredNames());
}

TEST_F(ConfigFile, ALineOf79CharactersIsOneLine) {
    const std::string line = "host = \"" + std::string(69, 'x') + "\"";
    ASSERT_EQ(78u, line.size());
    Import(line + "\nport = 24\n");
    ExpectText("host", std::u16string(69, u'x'));
    Import("a" + line + "\nport = 25\n");  // 79 characters and the newline
    ExpectText("ahost", std::u16string(69, u'x'));
    ExpectNumber("port", 25);
}

TEST_F(ConfigFile, ALongLineIsReadInPiecesOf79Characters) {
    std::string line = "port = 24";
    line.resize(79, ' ');
    Import(line + "fsize = 9\n");
    ExpectNumber("port", 24);
    ExpectNumber("fsize", 9);
}

TEST_F(ConfigFile, ALongCommentEndsAfter79Characters) {
    Import("#" + std::string(78, 'x') + "fsize = 9\n");
    ExpectNumber("fsize", 9);
    EXPECT_EQ(1u, StoredValues().size());
}

TEST_F(ConfigFile, ATokenCutAtTheEndOfAPieceContinuesAsANewLine) {
    std::string line = "port =";
    line.resize(78, ' ');
    Import(line + "24 = 7\n");
    ExpectNumber("port", 2);
    ExpectNumber("4", 7);
}

TEST_F(ConfigFile, AStringCutAtTheEndOfAPieceIsSkipped) {
    ExpectNothingWritten("host = \"" + std::string(72, 'x') + "\"\n");
}

TEST_F(ConfigFile, ANulByteEndsItsLine) {
    using namespace std::string_literals;
    Import("port = 2\0004\nfsize = 9\n\0a = 1\nhost = \"x\0y\"\n"s);
    ExpectNumber("port", 2);
    ExpectNumber("fsize", 9);
    EXPECT_EQ(2u, StoredValues().size());
}

TEST_F(ConfigFile, ALineOfAMegabyteIsSkipped) {
    ExpectNothingWritten(std::string(1 << 20, 'x') + "\n");
    Import(std::string((1 << 20) / 79 * 79, 'x') + "port = 24\n");
    ExpectNumber("port", 24);
}

TEST_F(ConfigFile, AMegabyteOfQuotesIsSkipped) {
    ExpectNothingWritten("host = " + std::string(1 << 20, '"') + "\n");
}

TEST_F(ConfigFile, RandomBytesDoNoHarmAndTheEndIsStillRead) {
    std::mt19937 random(20010);
    const std::string kSigns = "ab =\"#0x\n\r\t";
    for (int round = 0; round < 20; round++) {
        std::string content;
        for (int i = 0; i < 4000; i++)
            content.push_back(round % 2 ? static_cast<char>(random())
                                        : kSigns[random() % kSigns.size()]);
        Import(content + "\nlast = " + std::to_string(round) + "\n");
        ExpectNumber("last", static_cast<DWORD>(round));
    }
}

TEST_F(ConfigFile, AFolderOfTheNameIsLeftAloneWithoutAMessage) {
    ASSERT_EQ(0, mkdir((DeviceRoot() + "/mconfig.cfg").c_str(), 0700));
    ImportConfigFile(kOwner);
    EXPECT_TRUE(shown_messages.empty());
    EXPECT_TRUE(DeviceFileExists(kFile));
}

TEST_F(ConfigFile, AnUnreadableFileIsLeftAloneWithoutAMessage) {
    WriteDeviceFile(kFile, "port = 24\n");
    ASSERT_EQ(0, chmod((DeviceRoot() + "/mconfig.cfg").c_str(), 0));
    {
        const WithoutRights nobody;
        ImportConfigFile(kOwner);
    }
    EXPECT_TRUE(shown_messages.empty());
    EXPECT_TRUE(DeviceFileExists(kFile));
    EXPECT_TRUE(StoredValues().empty());
}

TEST_F(ConfigFile, InARootWithoutRightsTheFileIsShownAndStays) {
    WriteDeviceFile(kFile, "port = 24\n");
    ASSERT_EQ(0, chmod((DeviceRoot() + "/mconfig.cfg").c_str(), 0444));
    {
        const WithoutRights nobody;
        ImportConfigFile(kOwner);
    }
    EXPECT_EQ(1u, shown_messages.size());
    EXPECT_TRUE(DeviceFileExists(kFile));
    EXPECT_TRUE(StoredValues().empty());
}

static std::ptrdiff_t OpenFiles() {
    const std::filesystem::directory_iterator files("/proc/self/fd");
    return std::distance(begin(files), end(files));
}

TEST_F(ConfigFile, TheImportLeavesNoFileOpen) {
    Import("port = 24\n");  // opens the registry
    const std::ptrdiff_t open = OpenFiles();
    for (int i = 0; i < 5; i++) Import("port = 24\n");
    EXPECT_EQ(open, OpenFiles());
}
