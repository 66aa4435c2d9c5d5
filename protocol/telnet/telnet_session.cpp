// SPDX-License-Identifier: MIT
// A Telnet session. Received chunks go through the engine to the terminal and to the automatic
// login; typed bytes go to the socket.
#include "protocol/telnet/telnet.h"

#include <string_view>

#include "session/session_ports.h"
#include "session/session_state.h"
#include "terminal/interpreter.h"
#include "text/text.h"

// ---------------------------------------------------------------- typed bytes

constexpr BYTE kIac = 255;
constexpr BYTE kEor = 239;
constexpr int kStagingSize = 1024;

// Sends in pieces that fit the staging buffer.
static void SendEscaped(const BYTE* bytes, int length) {
    BYTE staging[kStagingSize];
    int used = 0;
    for (int i = 0; i < length; ++i) {
        if (used > kStagingSize - 4) {
            if (!SocketSendAll(staging, used)) return;
            used = 0;
        }
        if (bytes[i] == kIac) staging[used++] = kIac;
        staging[used++] = bytes[i];
    }
    staging[used++] = kIac;
    staging[used++] = kEor;
    SocketSendAll(staging, used);
}

void TelnetSendData(const BYTE* bytes, int length, int escape) {
    if (escape) {
        SendEscaped(bytes, length);
    } else {
        SocketSendAll(bytes, length);
    }
}

// ---------------------------------------------------------------- automatic login

static void TakeText(LPCWSTR from, char* to) {
    std::memset(to, 0, kLoginTextSize);
    AnsiFromWide(from, to, kLoginTextSize);
}

static void RespondIfFound(std::string_view chunk, DWORD* armed, const char* search,
                           const char* response) {
    if (!*armed || chunk.find(search) == std::string_view::npos) return;
    *armed = 0;
    SendResponse(response);
}

void ArmAutoLogin() {
    AutoLogin& login = session.login;
    TakeText(session.settings.sear1, login.search1);
    TakeText(session.settings.sear2, login.search2);
    TakeText(session.settings.resp1, login.response1);
    TakeText(session.settings.resp2, login.response2);
    login.login_armed1 = login.search1[0] && login.response1[0];
    login.login_armed2 = login.search2[0] && login.response2[0];
}

void CheckAutoLogin(const BYTE* bytes, int count) {
    AutoLogin& login = session.login;
    const std::string_view chunk(reinterpret_cast<const char*>(bytes), static_cast<size_t>(count));
    RespondIfFound(chunk, &login.login_armed1, login.search1, login.response1);
    RespondIfFound(chunk, &login.login_armed2, login.search2, login.response2);
}

// ---------------------------------------------------------------- received chunks

// Copies the displayable bytes of the chunk to display_buffer. Returns how many there are.
static int FilterChunk(const BYTE* bytes, int count) {
    BYTE* data = session.telnet.display_buffer;
    int kept = 0;
    for (int i = 0; i < count; ++i) {
        const int run = TelnetDataRun(bytes + i, count - i);
        std::memcpy(data + kept, bytes + i, static_cast<size_t>(run));
        kept += run;
        i += run;
        if (i < count) TelnetReceiveByte(bytes[i]);  // never data behind a run
    }
    return kept;
}

static void TakeChunk(const BYTE* bytes, int count) {
    const int kept = FilterChunk(bytes, count);
    if (kept == 0) return;
    TerminalWrite(session.telnet.display_buffer, kept);
    CheckAutoLogin(session.telnet.display_buffer, kept);
}

// `forget` does nothing: the engine's state is kept until TelnetReset.
const Protocol kTelnetProtocol = {
    .identification = nullptr,
    .start = nullptr,
    .take_chunk = TakeChunk,
    .send_data = TelnetSendData,
    .forget = [] {},
};
