// SPDX-License-Identifier: MIT
// The steps of an SSH-2 session, from the identification lines to the shell.
#include "tests/ssh2/conversation.h"

void Conversation::ExpectOpen() {
    EXPECT_EQ(outside.closes, 0);
    EXPECT_TRUE(outside.boxes.empty()) << outside.boxes[0];
}

void Conversation::ExpectClosed() {
    ExpectSilence();
    EXPECT_EQ(outside.closes, 1);
    EXPECT_TRUE(outside.boxes.empty()) << outside.boxes[0];
    EXPECT_EQ(session.ssh2.cipher, nullptr);
}

void Conversation::Use(DWORD ssh_type) {
    session.settings.ssh_type = ssh_type;
    server.blowfish = ssh_type == 2;
    cipher = ssh_type == 2 ? "blowfish-cbc" : "3des-cbc";
}

void Conversation::Identify() {
    Receive(server.line);
    EXPECT_EQ(outside.wire, kClientLine);
    EXPECT_EQ(session.banner_sent, 1u);
    outside.wire.clear();
}

// The client draws the cookie first, then the padding of KEXINIT, then the exponent of KEXDH_INIT.
void Conversation::Offer() {
    server.server_kex_init = ServerKexInit(std::string(16, static_cast<char>(++offers)));
    tape = Tape(5);
    Give(server.server_kex_init);
    const std::string expected = ClientKexInit(tape, cipher);
    server.client_kex_init = Take();
    EXPECT_EQ(Hex(server.client_kex_init), Hex(expected));
    server.e = ClientPublic(tape);
    Expect(Message(30, server.e));
    ExpectSilence();
}

void Conversation::Reply() {
    Give(KexDhReply(server, "SSH-2.0-1.0.00"));
    Expect(Message(21));
    ExpectSilence();
}

void Conversation::SwitchKeys() {
    Give(Message(21));
    InstallKeys(server);
}

void Conversation::ToService() {
    Identify();
    Offer();
    Reply();
    SwitchKeys();
    Expect(Message(5, Str("ssh-userauth")));
    ExpectSilence();
}

void Conversation::ToPassword() {
    ToService();
    Give(Message(6, Str("ssh-userauth")));
    Expect(PasswordRequest("visitor", "warehouse7"));
    ExpectSilence();
}

void Conversation::ToChannel() {
    ToPassword();
    Give(Message(52));
    Expect(Message(90, Str("session") + U32(27) + U32(8000) + U32(16384)));
    ExpectSilence();
}

void Conversation::ToPty() {
    ToChannel();
    Give(Message(91, U32(27) + U32(kServerChannel) + U32(0) + U32(32768)));
    Expect(PtyRequest("vt220"));
    ExpectSilence();
}

void Conversation::ToShell() {
    ToPty();
    Give(Message(99, U32(27)));
    Expect(Message(98, U32(kServerChannel) + Str("shell") + Message(1)));
    Give(Message(99, U32(27)));
    ExpectSilence();
    ExpectOpen();
}

std::string Conversation::PasswordRequest(const std::string& user, const std::string& password) {
    return Message(
        50, Str(user) + Str("ssh-connection") + Str("password") + Message(0) + Str(password));
}

std::string Conversation::PtyRequest(const std::string& type) {
    return Message(98, U32(kServerChannel) + Str("pty-req") + Message(1) + Str(type) + U32(80) +
                           U32(24) + U32(0) + U32(0) + Str(""));
}

std::string Conversation::Data(const std::string& bytes) {
    return Message(94, U32(27) + Str(bytes));
}

std::string Conversation::ClientData(const std::string& bytes) {
    return Message(94, U32(kServerChannel) + Str(bytes));
}

std::string Conversation::Adjust(uint32_t bytes) {
    return Message(93, U32(kServerChannel) + U32(bytes));
}
