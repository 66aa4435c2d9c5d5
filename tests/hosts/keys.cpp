// SPDX-License-Identifier: MIT
// Keys: which row of the key table a key string belongs to, and what the row sends by default.
#include <cstdio>

#include "settings/key_map.h"
#include "tests/hosts/proof.h"

static const int kBackspaceRow = 39;

// clang-format off
static const KeyRow kKeys[] = {
    {"kf1",   0 }, {"kf2",   1 }, {"kf3",   2 }, {"kf4",   3 }, {"kf5",   4 },
    {"kf6",   5 }, {"kf7",   6 }, {"kf8",   7 }, {"kf9",   8 }, {"kf10",  9 },
    {"kf11",  10}, {"kf12",  11}, {"kf13",  12}, {"kf14",  13}, {"kf15",  14},
    {"kf16",  15}, {"kf17",  16}, {"kf18",  17}, {"kf19",  18}, {"kf20",  19},
    {"khome", 32}, {"kend",  34}, {"kpp",   35}, {"knp",   36}, {"kdch1", 38},
    {"kbs",   39}, {"kcbt",  41}, {"kcuu1", 62}, {"kcud1", 63}, {"kcub1", 64},
    {"kcuf1", 65},
};
// clang-format on

const KeyRow* FindKey(const std::string& capability) {
    for (const KeyRow& key : kKeys) {
        if (capability == key.capability) return &key;
    }
    return nullptr;
}

std::vector<std::string> KeyCapabilities() {
    std::vector<std::string> names;
    for (const KeyRow& key : kKeys) names.push_back(key.capability);
    return names;
}

std::string KeyName(const KeyRow& key) { return key_map[key.row].name; }

// The row of Backspace sends nothing by default (its text begins with a 0 byte), so the key sends
// its character.
static std::string SentByRow(int row) {
    const std::string text = UnescapeKeyText(key_map[row].defaultText);
    return row == kBackspaceRow && text.empty() ? "\b" : text;
}

std::string SentByDefault(const KeyRow& key) { return SentByRow(key.row); }

std::string OtherKeyOf(const KeyRow& key) {
    for (int row = 0; row < key.row; ++row) {
        if (SentByRow(row) == SentByDefault(key)) return key_map[row].name;
    }
    return "";
}
