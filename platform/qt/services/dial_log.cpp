// The log of pppd, and of the chat program that it runs to talk to the modem (whose option -s puts
// its lines there too). The debug option of an entry brings the lines in brackets.
#include "platform/qt/services/dial_log.h"

namespace {

constexpr size_t kLongestLine = 64;  // bytes that count

struct StateRow {
    const char* begins;
    DWORD state;
};

// In the order of a dial.
// clang-format off
const StateRow kStates[] = {
    {"Serial port initialized",            RASCS_PortOpened},
    {"send (ATD",                          RASCS_ConnectDevice},
    {"Serial connection established",      RASCS_DeviceConnected},
    {"Connect: ",                          RASCS_AllDevicesConnected},
    {"sent [PAP AuthReq",                  RASCS_Authenticate},
    {"rcvd [CHAP Challenge",               RASCS_Authenticate},
    {"PAP authentication succeeded",       RASCS_Authenticated},
    {"CHAP authentication succeeded",      RASCS_Authenticated},
    {"sent [IPCP ConfReq",                 RASCS_AuthProject},
    {"local  IP address ",                 RASCS_Connected},
};

struct ScriptRow {
    const char* begins;
    DWORD error;
};

// What the modem answered; chat tells the word that its script gave up on.
const ScriptRow kScriptFailures[] = {
    {"Failed (BUSY",         676},
    {"Failed (NO ANSWER",    678},
    {"Failed (NO CARRIER",   679},
    {"Failed (NO DIALTONE",  680},
    {"Failed (NO DIAL TONE", 680},
};

struct ExitRow {
    int code;
    DWORD error;
};

constexpr DWORD kDisconnected = 628;
constexpr DWORD kUnknown = 635;

const ExitRow kExits[] = {
    {0,  kDisconnected},
    {2,  625},  // options: the entry is damaged
    {3,  5},    // not installed with root's rights
    {4,  608},  // the kernel has no PPP
    {5,  kDisconnected},  // a signal of someone else's
    {6,  633},  // the port is in use
    {7,  618},  // the port cannot be opened
    {8,  651},  // the modem's script failed
    {9,  651},
    {10, 720},  // no protocol in common
    {11, 691},  // authentication
    {15, 721},  // the peer does not answer
    {16, 629},  // the modem hung up
    {18, 651},
    {19, 691},
};
// clang-format on

bool Begins(const std::string& line, const char* begins) { return line.rfind(begins, 0) == 0; }

}  // namespace

std::vector<DWORD> DialLog::Take(const char* bytes, size_t count) {
    std::vector<DWORD> reached;
    for (size_t i = 0; i < count; i++) {
        const bool end = bytes[i] == '\n' || bytes[i] == '\r';
        if (!end && line_.size() < kLongestLine) line_ += bytes[i];
        if (!end) continue;
        TakeLine(&reached);
        line_.clear();
    }
    return reached;
}

void DialLog::TakeLine(std::vector<DWORD>* reached) {
    for (const ScriptRow& row : kScriptFailures)
        if (Begins(line_, row.begins)) script_error_ = row.error;
    for (size_t i = next_row_; i < std::size(kStates); i++) {
        if (!Begins(line_, kStates[i].begins)) continue;
        // Two rows may stand for one state.
        if (i == 0 || next_row_ == 0 || kStates[next_row_ - 1].state != kStates[i].state)
            reached->push_back(kStates[i].state);
        connected_ = kStates[i].state == RASCS_Connected;
        next_row_ = i + 1;
        return;
    }
}

DWORD DialLog::ErrorOf(int exit_code) const {
    if (script_error_) return script_error_;
    if (exit_code < 0) return kDisconnected;
    for (const ExitRow& row : kExits)
        if (row.code == exit_code) return row.error;
    return kUnknown;
}
