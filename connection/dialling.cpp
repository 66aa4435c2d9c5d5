// SPDX-License-Identifier: MIT
// Dialling with the modem: starting a dial, showing its progress in the terminal, and ending it.
#include "connection/connection.h"

#include "session/session_ports.h"
#include "session/session_state.h"
#include "terminal/interpreter.h"
#include "text/text.h"

constexpr DWORD kNotifyWindow = 0xFFFFFFFF;  // RasDial notifies a window

namespace {

struct StateRow {
    WPARAM state;
    const char* text;
};

}  // namespace

// clang-format off
static const StateRow kStates[] = {
    {0,    "Open port\r\n"},
    {1,    "The com. port has been opened successfully\r\n"},
    {2,    "A device is about to be connected\r\n"},
    {3,    "A device has connected successfully\r\n"},
    {4,    "All devices in the device chain have successfully connected\r\n"},
    {5,    "The authentication process is starting\r\n"},
    {6,    "An authentication event has occurred\r\n"},
    {7,    "The client has requested another validation attempt\r\n"},
    {8,    "The remote access server has requested a callback number\r\n"},
    {9,    "The client has requested to change the password on the account\r\n"},
    {10,   "The projection phase is starting\r\n"},
    {11,   "The link-speed calculation phase is starting\r\n"},
    {12,   "An authentication request is being acknowledged\r\n"},
    {13,   "Reauthentication (after callback) is starting\r\n"},
    {14,   "The client has successfully completed authentication\r\n"},
    {15,   "The line is about to disconnect in preparation for callback\r\n"},
    {16,   "The client is delaying in order to give the modem time to reset\r\n"},
    {17,   "The client is waiting for an incoming call from the remote server\r\n"},
    {4096, "Interactive\r\n"},
    {4097, "RetryAuthentication\r\n"},
    {4098, "CallbackSetByCaller\r\n"},
    {4099, "PasswordExpired\r\n"},
    {8192, "Successful connection\r\n"},
    {8193, "Disconnection or failed connection\r\n"},
};
// clang-format on

constexpr int kStateBytes = 48;
constexpr int kErrorUnits = 80;

static void ShowState(int state) {
    for (const StateRow& row : kStates)
        if (row.state == static_cast<WPARAM>(state)) return DialProgress(row.text);
    char text[kStateBytes];
    std::sprintf(text, "unknown ras dial event %d\r\n", state);
    DialProgress(text);
}

static void TellNoEntry() {
    WCHAR text[64 + kDialEntryUnits];
    wsprintfW(text, TEXT("Cannot find dial information for connection name. (%s)"),
              session.settings.ras);
    ShowError(text);
}

static void TellDialError(DWORD error) {
    WCHAR text[kErrorUnits];
    wsprintfW(text, TEXT("RAS Dial has failed. Check your network configuration (%d)"),
              static_cast<int>(error));
    ShowError(text);
}

// A name that is too long cannot name an entry. If it were cut, it might name a different entry.
static bool FetchParameters(RASDIALPARAMSW* parameters) {
    if (lstrlenW(session.settings.ras) > RAS_MaxEntryName) return false;
    parameters->dwSize = sizeof(*parameters);
    CopyBounded(parameters->szEntryName, session.settings.ras, RAS_MaxEntryName + 1);
    BOOL has_password = FALSE;
    return RasGetEntryDialParams(nullptr, parameters, &has_password) == 0;
}

// Ends the previous dial, or the connection that it made, before a new dial. It discards the
// messages of the previous dial, so that they are not taken for those of the new one.
static void EndDialBefore() {
    HangUpDial();
    MSG message;
    while (
        PeekMessageW(&message, session.main_window, WM_RASDIALEVENT, WM_RASDIALEVENT, PM_REMOVE)) {
        if (message.message != WM_QUIT) continue;  // no filter keeps WM_QUIT back
        PostQuitMessage(static_cast<int>(message.wParam));
        return;
    }
}

// A dial that could not start sends no more messages, but its handle must be closed.
static void GiveUp(DWORD error) {
    session.dialling = 0;
    HangUpDial();
    TellDialError(error);
}

void StartDial() {
    RASDIALPARAMSW parameters = {};
    if (!FetchParameters(&parameters)) return TellNoEntry();
    EndDialBefore();
    session.dialling = 1;
    const DWORD error = RasDial(nullptr, nullptr, &parameters, kNotifyWindow, session.main_window,
                                &session.ras_connection);
    if (error) GiveUp(error);
}

void StartRequestedDial() {
    if (!session.dial_request) return;
    session.dial_request = 0;
    StartDial();
}

void OnDialEvent(WPARAM state, LPARAM error) {
    const int reached = static_cast<int>(state);
    if (reached == session.last_dial_state) return;
    session.last_dial_state = reached;
    ShowState(reached);
    if (reached == RASCS_Connected || reached == RASCS_Disconnected) session.dialling = 0;
    if (reached == RASCS_Connected) SessionConnect();
    if (error) ShowError(TEXT("RAS Dial has failed. Check your network configuration "));
}

void DialProgress(const char* text) {
    if (!session.dialling) return;
    TerminalWrite(reinterpret_cast<const BYTE*>(text), static_cast<int>(std::strlen(text)));
}

void HangUpDial() {
    if (session.ras_connection) RasHangUp(session.ras_connection);
    session.ras_connection = nullptr;
}
