// SPDX-License-Identifier: MIT
// What the entry of this terminal is held to beyond the manual.
#include "tests/hosts/own_entry.h"

#include <cstring>

#include "terminal/screen_buffer.h"
#include "tests/hosts/glyphs.h"
#include "tests/hosts/picture.h"

// What the terminal does and `quill` leaves out, with the reason.
struct LeftOut {
    const char* capability;
    const char* reason;
};

// clang-format off
static const LeftOut kLeftOut[] = {
    {"OTbs",  "cub1 is BS"},
    {"OTNL",  "cud1 is not LF, which scrolls"},
    {"OTpt",  "ht is HT"},
    {"cvvis", "the cursor has no second look"},
    {"enacs", "smacs and rmacs designate G0 themselves"},
    {"ich1",  "ich does it, and programs that find ich1 beside smir insert twice"},
    {"is1",   "is2 does it all"},
    {"is3",   "is2 does it all"},
    {"ll",    "cup is as short"},
    {"ma",    "programs take all attributes of sgr together"},
    {"rmcup", "there is nothing to come back to"},
    {"rmkx",  "keys send the same in every mode"},
    {"rs3",   "rs1 and rs2 do it all"},
    {"smcup", "there is no other screen"},
    {"smkx",  "keys send the same in every mode"},
};
// clang-format on

bool IsLeftOut(const std::string& capability) {
    for (const LeftOut& row : kLeftOut) {
        if (capability == row.capability) return true;
    }
    return false;
}

// ---------------------------------------------------------------- setting up

static const Start kMiddle = {12, 20, 1, kScreenRows, 0, false, false};

// As the full reset leaves G1.
static std::string SetsAfter(const std::string& bytes) {
    SetUp(kMiddle);
    Feed("\033)B" + bytes);
    return session.modes.g1_set ? "" : "G1 is not the line drawing set";
}

static std::string LeavesTheText(const std::string& bytes) {
    SetUp(kMiddle);
    const Picture before = TakePicture();
    Feed(bytes);
    return Difference(before, TakePicture(), true);
}

static std::string ClearsAll(const std::string& bytes) {
    SetUp(kMiddle);
    Feed("\033[3g\033#6\033Psilence" + bytes + "\t");
    for (int row = 1; row <= kScreenRows; ++row) {
        if (IsDoubleWidth(row)) return "a row is still of double width";
        for (int col = 1; col <= kScreenColumns; ++col) {
            if (GetCell(row, col) != kBlank) return "text stays on the screen";
        }
    }
    return session.screen.cursor_col == 9 ? "" : "the tab stops are not every 8 columns";
}

std::vector<std::string> FaultsOfSettingUp(const TerminfoEntry& entry) {
    std::vector<std::string> faults;
    const auto note = [&](const char* name, const std::string& fault) {
        if (!fault.empty()) faults.push_back(std::string(name) + ": " + fault);
    };
    for (const char* name : {"is2", "rs2"}) {
        note(name, SetsAfter(Expand(entry, name)));
        note(name, LeavesTheText(Expand(entry, name)));
    }
    note("rs1", SetsAfter(Expand(entry, "rs1")));
    note("rs1", ClearsAll(Expand(entry, "rs1")));
    return faults;
}

// ---------------------------------------------------------------- expressions

// Those that the entry has a use for: %%, %d, %c, %i, %p1, %{1}, operators, and conditions.
std::string FaultOfExpression(const std::string& text) {
    int open = 0;
    for (size_t i = text.find('%'); i != text.npos; i = text.find('%', i + 1)) {
        const char kind = ++i < text.size() ? text[i] : '?';
        if (i >= text.size() || !strchr("%dcip{+-*/m&|^=<>AO!~?te;", kind))
            return "no expression begins with %" + text.substr(i, 1);
        open += kind == '?' ? 1 : kind == ';' ? -1 : 0;
        if ((kind == 't' || kind == 'e') && open == 0) return "a condition has no begin";
    }
    return open == 0 ? "" : "a condition has no end";
}

std::vector<std::string> FaultsOfString(const TerminfoEntry& entry, const std::string& capability) {
    const std::string& text = entry.strings.at(capability);
    std::vector<std::string> faults;
    const auto note = [&](const std::string& fault) {
        if (!fault.empty()) faults.push_back(fault);
    };
    if (capability[0] != 'u') note(FaultOfExpression(text));
    if (text.find("$<") != text.npos) note("no string takes time");
    note(FaultOfChanges(entry, capability));
    note(LeavesAnotherWidth(entry, capability));
    return faults;
}

// ---------------------------------------------------------------- all of it

static bool HoldsWith(TerminfoEntry entry, const std::string& flag) {
    entry.flags.insert(flag);
    return ProveCapability(entry, flag).empty();
}

static bool HoldsWith(TerminfoEntry entry, const std::string& number, int value) {
    entry.numbers[number] = value;
    return ProveCapability(entry, number).empty();
}

std::string FaultOfGlyphs(const TerminfoEntry& entry) {
    const std::string pairs = Expand(entry, "acsc");
    std::string named, missing;
    for (size_t i = 0; i < pairs.size(); i += 2) named += pairs[i];
    for (const char name : DrawnGlyphs()) {
        if (named.find(name) == named.npos) missing += name;
    }
    return missing.empty() ? "" : "acsc lacks the glyphs " + missing;
}

static void NoteLacking(const TerminfoEntry& entry, std::vector<std::string>* faults) {
    for (const std::string& flag : FlagNames()) {
        if (entry.flags.count(flag) == 0 && !IsLeftOut(flag) && HoldsWith(entry, flag))
            faults->push_back("the terminal does " + flag + ", and the entry lacks it");
    }
    for (const std::string& number : NumberNames()) {
        if (entry.numbers.count(number) != 0 || IsLeftOut(number)) continue;
        for (const int value : {0, 1, 4, 8, 24, 80, 9600}) {
            if (HoldsWith(entry, number, value))
                faults->push_back("the entry lacks " + number + "#" + std::to_string(value));
        }
    }
}

static void NoteLeftOut(const TerminfoEntry& entry, std::vector<std::string>* faults) {
    for (const LeftOut& row : kLeftOut) {
        if (Has(entry, row.capability) || entry.flags.count(row.capability) != 0 ||
            entry.numbers.count(row.capability) != 0)
            faults->push_back(std::string("the entry has ") + row.capability + ": " + row.reason);
    }
}

static std::string FaultOfKey(const std::string& capability) {
    const KeyRow* key = FindKey(capability);
    if (!key) return "the key table has no key " + capability;
    const std::string other = OtherKeyOf(*key);
    return other.empty() ? "" : capability + " is what the key " + other + " sends";
}

std::vector<std::string> FaultsOfOwnEntry(const TerminfoEntry& entry) {
    std::vector<std::string> faults = FaultsOfSettingUp(entry);
    for (const Finding& finding : ProveEntry(entry))
        faults.push_back(finding.capability + ": " + finding.message);
    NoteLacking(entry, &faults);
    NoteLeftOut(entry, &faults);
    if (const std::string fault = FaultOfGlyphs(entry); !fault.empty()) faults.push_back(fault);
    for (const auto& [capability, text] : entry.strings) {
        for (const std::string& fault : FaultsOfString(entry, capability))
            faults.push_back(capability + ": " + fault);
        if (IsNeutral(capability)) faults.push_back(capability + " promises nothing");
        const std::string fault = capability[0] == 'k' ? FaultOfKey(capability) : "";
        if (!fault.empty()) faults.push_back(fault);
    }
    return faults;
}

// ---------------------------------------------------------------- keys of seven bits

static const unsigned kC1Mask = 0xe0, kC1 = 0x80, kC1ToFinal = 0x40;

static std::string InSevenBits(const std::string& text) {
    std::string seven;
    for (const char c : text) {
        const unsigned byte = static_cast<unsigned char>(c);
        if ((byte & kC1Mask) == kC1) {
            seven += '\033';
            seven += static_cast<char>(byte - kC1ToFinal);
        } else {
            seven += c;
        }
    }
    return seven;
}

static void NoteString(const std::string& name, const TerminfoEntry& seven,
                       const TerminfoEntry& eight, std::vector<std::string>* faults) {
    const std::string text = Expand(eight, name);
    const std::string wanted = name[0] == 'k' ? InSevenBits(text) : text;
    if (Has(seven, name) != Has(eight, name) || Expand(seven, name) != wanted)
        faults->push_back(name + "=" + AsEscapeText(Expand(seven, name)) + ", not " +
                          AsEscapeText(wanted));
}

std::vector<std::string> FaultsOfSevenBitEntry(const TerminfoEntry& seven,
                                               const TerminfoEntry& eight) {
    std::vector<std::string> faults;
    for (const std::string& flag : FlagNames()) {
        if (seven.flags.count(flag) != eight.flags.count(flag)) faults.push_back(flag);
    }
    for (const std::string& number : NumberNames()) {
        const auto found = seven.numbers.find(number), wanted = eight.numbers.find(number);
        const bool has = found != seven.numbers.end();
        if (has != (wanted != eight.numbers.end()) || (has && found->second != wanted->second))
            faults.push_back(number);
    }
    for (const std::string& name : StringNames()) NoteString(name, seven, eight, &faults);
    return faults;
}
