// SPDX-License-Identifier: MIT
// Values that hold for one run only, in front of the stored ones.
#include "platform/qt/services/registry.h"

#include <strings.h>

#include <cstring>
#include <map>

#include "platform/qt/services/services.h"
#include "windows_ce.h"

constexpr DWORD kTelnetPort = 23;
constexpr DWORD kSshPort = 22;

namespace {

enum Rule {
    kTarget,      // always this run's
    kUser,        // this run's if the command line names a user or the target is another one
    kOwn,         // this run's if the target is another one; starts as stored
    kSecret,      // the same, but starts empty
    kSecretFlag,  // the same, but starts at 0
};

struct RuleRow {
    const char* name;
    Rule rule;
};

}  // namespace

static const RuleRow kRules[] = {
    {"host", kTarget},  {"port", kTarget},        {"ssh", kTarget},   {"autoconnect", kTarget},
    {"ssh_u", kUser},   {"ssh_def", kSecretFlag}, {"sear1", kOwn},    {"sear2", kOwn},
    {"ssh_p", kSecret}, {"resp1", kSecret},       {"resp2", kSecret},
};

namespace {

struct Run {
    bool wanted = false;
    bool begun = false;  // a value has been read
    bool other = false;  // the target differs from the stored one
    RunTarget target;
    std::map<std::string, StoredValue> values;
};

}  // namespace

static Run g_run;

static const RuleRow* FindRule(const std::string& key, const std::string& name) {
    if (!g_run.wanted || key != kSettingsKeyPath) return nullptr;
    for (const RuleRow& row : kRules)
        if (name == row.name) return &row;
    return nullptr;
}

static StoredValue NumberValue(DWORD number) {
    StoredValue value{REG_DWORD, std::string(sizeof(number), 0)};
    std::memcpy(value.data.data(), &number, sizeof(number));
    return value;
}

static StoredValue TextValue(const std::string& text) {
    const std::u16string wide = WideFromUtf8(text);
    const size_t bytes = (wide.size() + 1) * sizeof(char16_t);
    return {REG_SZ, std::string(reinterpret_cast<const char*>(wide.c_str()), bytes)};
}

static DWORD StoredNumber(RegistryStore& store, const char* name, DWORD fallback) {
    StoredValue value;
    DWORD number = 0;
    if (store.Read(kSettingsKeyPath, name, &value) != StoreResult::kOk) return fallback;
    if (value.data.size() > sizeof(number)) return fallback;
    std::memcpy(&number, value.data.data(), value.data.size());
    return number;
}

static std::string StoredText(RegistryStore& store, const char* name) {
    StoredValue value;
    if (store.Read(kSettingsKeyPath, name, &value) != StoreResult::kOk) return "";
    std::u16string text(value.data.size() / sizeof(char16_t), 0);
    std::memcpy(text.data(), value.data.data(), text.size() * sizeof(char16_t));
    return Utf8FromWide(text.c_str());
}

static bool GoesElsewhere(RegistryStore& store, DWORD ssh, DWORD port) {
    const RunTarget& target = g_run.target;
    const bool same_user = target.user.empty() || target.user == StoredText(store, "ssh_u");
    const DWORD stored_port = StoredNumber(store, "port", kTelnetPort) & 0xFFFF;
    const bool stored_ssh = StoredNumber(store, "ssh", 0) != 0;
    return !same_user || port != stored_port || (ssh != 0) != stored_ssh ||
           strcasecmp(target.host.c_str(), StoredText(store, "host").c_str()) != 0;
}

static void Begin(RegistryStore& store) {
    const RunTarget& target = g_run.target;
    DWORD ssh = target.protocol == RunProtocol::kSsh;
    if (target.protocol == RunProtocol::kOfTheStore) ssh = StoredNumber(store, "ssh", 0);
    const DWORD port = target.port ? static_cast<DWORD>(target.port) : ssh ? kSshPort : kTelnetPort;
    g_run.begun = true;
    g_run.other = GoesElsewhere(store, ssh, port);
    g_run.values = {{"host", TextValue(target.host)},
                    {"port", NumberValue(port)},
                    {"ssh", NumberValue(ssh)},
                    {"autoconnect", NumberValue(1)}};
    if (!target.user.empty()) g_run.values["ssh_u"] = TextValue(target.user);
    if (!g_run.other) return;
    for (const RuleRow& row : kRules) {
        if (row.rule == kSecret) g_run.values[row.name] = TextValue("");
        if (row.rule == kSecretFlag) g_run.values[row.name] = NumberValue(0);
    }
}

static bool IsKept(const RuleRow& row) {
    if (row.rule == kTarget || g_run.other) return true;
    return row.rule == kUser && !g_run.target.user.empty();
}

void SetRunTarget(const RunTarget& target) {
    ForgetRun();
    g_run.target = target;
    g_run.wanted = true;
}

void ForgetRun() { g_run = Run(); }

bool ReadRunValue(RegistryStore& store, const std::string& key, const std::string& name,
                  StoredValue* value) {
    if (!FindRule(key, name)) return false;
    if (!g_run.begun) Begin(store);
    const auto found = g_run.values.find(name);
    if (found == g_run.values.end()) return false;
    *value = found->second;
    return true;
}

bool KeepRunValue(const std::string& key, const std::string& name, const StoredValue& value) {
    const RuleRow* row = FindRule(key, name);
    if (!row || !g_run.begun || !IsKept(*row)) return false;
    g_run.values[name] = value;
    return true;
}
