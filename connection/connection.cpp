// SPDX-License-Identifier: MIT
// Connecting a session and closing it, and the messages to the user about both.
#include "connection/connection.h"

#include "protocol/protocols.h"
#include "protocol/telnet/telnet.h"
#include "session/session_ports.h"
#include "session/session_state.h"
#include "settings/settings.h"
#include "terminal/modes.h"
#include "terminal/screen_buffer.h"
#include "text/text.h"

static void CloseSocket() {
    const SOCKET socket = session.socket.exchange(INVALID_SOCKET);
    if (socket == INVALID_SOCKET) return;
    shutdown(socket, SD_BOTH);
    closesocket(socket);
    WakeReceiveThread();
}

// After a session has ended, its socket may still be open (the host closed the connection), or its
// thread may still run and its messages may still wait (the user closed it). This closes the
// socket, waits for the thread and handles the messages, so that nothing of the old session reaches
// the new one.
static int FinishLastSession() {
    if (session.connect_pending && session.socket != INVALID_SOCKET) return 1;
    if (Connected() && session.socket != INVALID_SOCKET) return 1;
    CloseSocket();
    if (!AwaitReceiveThread()) return 0;
    MSG message;
    while (PeekMessageW(&message, session.main_window, WM_SOCKET_DATA, WM_SOCKET_CONNECTED,
                        PM_REMOVE)) {
        if (message.message == WM_QUIT) {  // no filter keeps WM_QUIT back
            PostQuitMessage(static_cast<int>(message.wParam));
            return 0;
        }
        DispatchMessageW(&message);
    }
    return 1;
}

static void ResetForSession() {
    const int cursor = CursorPosition();
    session.closing = 0;
    TerminalStart();
    TelnetReset();
    ClearAllLines();
    session_ports.repaint();
    if (CursorPosition() != cursor) session_ports.update_status();
}

// Returns the address of settings.host in network byte order, or INADDR_NONE. It does not look up a
// dotted address. An empty name yields INADDR_NONE.
static uint32_t HostAddress() {
    char name[kHostUnits];
    if (AnsiFromWide(session.settings.host, name, kHostUnits) == 0) return INADDR_NONE;
    const uint32_t dotted = inet_addr(name);
    if (dotted != INADDR_NONE) return dotted;
    const HOSTENT* host = gethostbyname(name);
    if (!host || !host->h_addr_list[0]) return INADDR_NONE;
    uint32_t address;
    std::memcpy(&address, host->h_addr_list[0], sizeof(address));
    return address;
}

static int OpenSocket() {
    const SOCKET socket_made = socket(AF_INET, SOCK_STREAM, 0);
    if (socket_made == INVALID_SOCKET) {
        ShowError(TEXT("Cannot open the socket interface. Maybe TCP/IP is missing"));
        return 0;
    }
    u_long on = 1;
    ioctlsocket(socket_made, FIONBIO, &on);
    session.socket.store(socket_made, std::memory_order_release);
    ++session.sockets_made;
    return 1;
}

// Makes the device's first dial-up entry the one to dial.
static void TakeFirstDialEntry() {
    DWORD size = 0, count = 0;
    RasEnumEntries(nullptr, nullptr, nullptr, &size, &count);
    if (size < sizeof(RASENTRYNAMEW)) return;
    auto* entries = static_cast<RASENTRYNAMEW*>(std::calloc(1, size));
    if (!entries) return;
    entries[0].dwSize = sizeof(RASENTRYNAMEW);
    if (RasEnumEntries(nullptr, nullptr, entries, &size, &count) == 0 && count > 0)
        SetDialEntry(entries[0].szEntryName);
    std::free(entries);
}

constexpr int kQuestionUnits = 160;
constexpr int kErrorUnits = 80;

static void AskToDial() {
    if (!session.settings.ras[0] || session.settings.ras[0] == TEXT(' ')) TakeFirstDialEntry();
    WCHAR question[kQuestionUnits];
    wsprintfW(question, TEXT("No active network. Should I dial a network using modem (%s) ?"),
              session.settings.ras);
    if (MessageBoxW(session.main_window, question, TEXT("Request"),
                    MB_OKCANCEL | MB_ICONQUESTION) == IDOK)
        session.dial_request = 1;
}

static void TellConnectError(int error) {
    WCHAR text[kErrorUnits];
    wsprintfW(text, TEXT("Connection to the UNIX Host has failed (%d)"), error);
    ShowError(text);
}

// Returns 1 if the request succeeded or is in progress, 0 if it failed.
static int RequestConnection(uint32_t address) {
    session.peer = SOCKADDR_IN{};
    session.peer.sin_family = AF_INET;
    session.peer.sin_port = htons(static_cast<WORD>(session.settings.port));
    session.peer.sin_addr.s_addr = address;
    session.connect_pending = 1;
    if (connect(session.socket.load(), reinterpret_cast<const SOCKADDR*>(&session.peer),
                sizeof(session.peer)) == 0) {
        session_ports.update_status();
        return 1;
    }
    const int error = WSAGetLastError();
    session_ports.update_status();
    if (error == WSAEWOULDBLOCK) return 1;
    error == WSAEHOSTUNREACH ? AskToDial() : TellConnectError(error);
    session.connect_pending = 0;
    session_ports.update_status();
    return 0;
}

void SessionConnect() {
    if (!FinishLastSession()) return;
    BeginProtocol();
    if (session.connect_pending && !Connected()) return;  // it stays set after the request
    if (Connected()) return ShowError(TEXT("Already a session to the UNIX Host"));
    ArmAutoLogin();
    ResetForSession();
    if (!OpenSocket()) return;
    const uint32_t address = HostAddress();
    if (address == INADDR_NONE) return ShowError(TEXT("Cannot connect to the UNIX Host"));
    if (RequestConnection(address)) StartReceiveThread();
}

void SessionClose() {
    session.closing = 1;
    CloseSocket();
    session.connect_pending = 0;
}
