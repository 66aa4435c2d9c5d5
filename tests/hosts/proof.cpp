// SPDX-License-Identifier: MIT
// The proof of a terminfo entry: which check belongs to which promise.
#include "tests/hosts/proof.h"

#include "tests/hosts/picture.h"

const char* LossName(Loss loss) {
    switch (loss) {
        case Loss::kScreen:
            return "screen";
        case Loss::kLook:
            return "look";
        case Loss::kReset:
            return "reset";
        case Loss::kKey:
            return "key";
        case Loss::kEdge:
            return "edge";
    }
    return "";
}

std::vector<std::string> PromisesOf(const TerminfoEntry& entry) {
    std::vector<std::string> promises;
    for (const char* flag : {"am", "xenl"}) {
        if (entry.flags.count(flag) == 0) promises.push_back(std::string("no ") + flag);
    }
    promises.insert(promises.end(), entry.flags.begin(), entry.flags.end());
    for (const auto& [name, value] : entry.numbers) promises.push_back(name);
    for (const auto& [name, value] : entry.strings) promises.push_back(name);
    return promises;
}

static bool IsKey(const std::string& capability) { return capability[0] == 'k'; }

static std::string CheckKey(const TerminfoEntry& entry, const KeyRow& key) {
    const std::string wanted = Expand(entry, key.capability);
    const std::string sent = SentByDefault(key);
    if (sent == wanted) return "";
    return KeyName(key) + " sends " + AsEscapeText(sent) + ", not " + AsEscapeText(wanted);
}

// A string that no check knows: the terminal has nothing of the kind. It is only wrong on the
// screen if its bytes print something or move the cursor.
static Finding CheckUnknown(const TerminfoEntry& entry, const std::string& capability) {
    SetUp({12, 20, 1, kScreenRows, 0, false, false});
    const Picture before = TakePicture();
    Feed(Expand(entry, capability, {1, 2, 3}));
    const std::string printed = Difference(before, TakePicture(), true);
    if (printed.empty()) return {capability, Loss::kLook, "the terminal does nothing of the kind"};
    return {capability, Loss::kScreen, printed};
}

static Finding CheckString(const TerminfoEntry& entry, const std::string& capability) {
    const std::string more = ChangesMore(entry, capability);
    if (!more.empty()) return {capability, Loss::kScreen, more};
    if (const CheckRow* row = FindLookCheck(capability))
        return {capability, row->loss, row->check(entry)};
    std::string message;
    if (CheckEffect(entry, capability, &message)) return {capability, Loss::kScreen, message};
    return CheckUnknown(entry, capability);
}

std::vector<Finding> ProveCapability(const TerminfoEntry& entry, const std::string& capability) {
    Finding finding = {capability, Loss::kKey, ""};
    if (const CheckRow* row = FindFlagCheck(capability)) {
        finding = {capability, row->loss, row->check(entry)};
    } else if (!Has(entry, capability)) {
        return {};
    } else if (const KeyRow* key = FindKey(capability)) {
        finding.message = CheckKey(entry, *key);
    } else if (!IsKey(capability)) {
        finding = CheckString(entry, capability);
    }
    if (finding.message.empty())
        finding = {capability, Loss::kEdge, LeavesTheScreen(entry, capability)};
    if (finding.message.empty()) return {};
    return {finding};
}

std::vector<Finding> ProveEntry(const TerminfoEntry& entry) {
    std::vector<Finding> findings;
    for (const std::string& promise : PromisesOf(entry)) {
        for (const Finding& finding : ProveCapability(entry, promise)) findings.push_back(finding);
    }
    return findings;
}
