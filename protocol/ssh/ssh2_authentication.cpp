// SPDX-License-Identifier: MIT
// Password authentication of SSH-2.
#include "protocol/ssh/ssh2.h"

#include "protocol/ssh/ssh_session.h"
#include "session/session_ports.h"
#include "session/session_state.h"
#include "text/bytes.h"
#include "text/text.h"

constexpr int kCredentialSize = 80;

// Returns false if nothing more may be sent, since the connection can end while the dialog is open.
static bool SignOn() {
    const SOCKET served = session.socket.load(std::memory_order_acquire);
    const bool shown = session_ports.ask_sign_on();
    if (!SshSessionStands(served) || !HasCipher()) return false;
    if (!shown) CloseSession();
    return shown;
}

static void RefuseEmptyName() {
    const SOCKET served = session.socket.load(std::memory_order_acquire);
    ShowError(TEXT("Cannot sign on to the host without a valid user name"));
    if (SshSessionStands(served)) CloseSession();
}

static void SendPasswordRequest(const char* name, const char* password) {
    static const char kService[] = "ssh-connection";
    static const char kMethod[] = "password";
    BeginPacket(kMsgUserauthRequest, 1 + StringSize(name) + StringSize(kService) +
                                         StringSize(kMethod) + 1 + StringSize(password));
    BYTE* at = PutString(Payload(), name);
    at = PutString(at, kService);
    at = PutString(at, kMethod);
    at = PutByte(at, 0);  // the password is not being changed
    PutString(at, password);
    SendPacket();
}

void Ssh2Authenticate(bool retry) {
    if ((retry || !session.settings.ssh_def) && !SignOn()) return;
    char name[kCredentialSize] = {};
    char password[kCredentialSize] = {};
    AnsiFromWide(session.settings.ssh_u, name, kCredentialSize);
    if (!name[0]) return RefuseEmptyName();
    AnsiFromWide(session.settings.ssh_p, password, kCredentialSize);
    SendPasswordRequest(name, password);
    Wipe(name, sizeof(name));
    Wipe(password, sizeof(password));
}

void OnServiceAccept() { Ssh2Authenticate(false); }

void OnUserauthFailure() { Ssh2Authenticate(true); }
