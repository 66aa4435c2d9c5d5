// SPDX-License-Identifier: MIT
// A client under test and the scripted server, step by step. Each step gives the client what a
// server sends and compares every byte that comes back.
#ifndef QUILL_TESTS_SSH2_CONVERSATION_H
#define QUILL_TESTS_SSH2_CONVERSATION_H

#include <gtest/gtest.h>

#include "tests/ssh2/outside.h"
#include "tests/ssh2/scripted_server.h"

inline constexpr char kClientLine[] = "SSH-2.0-1.0.00\n";
inline constexpr uint32_t kServerChannel = 0xfedc0042;

class Conversation : public testing::Test {
  protected:
    Conversation() { NewSession(); }
    ~Conversation() override { NewSession(); }

    void Give(const std::string& payload, int more = 0) { Receive(Seal(server, payload, more)); }
    std::string Take() { return Open(server, tape, &outside.wire); }
    void Expect(const std::string& payload) { EXPECT_EQ(Hex(Take()), Hex(payload)); }
    void ExpectSilence() { EXPECT_EQ(Hex(outside.wire), ""); }
    void ExpectOpen();
    void ExpectClosed();

    // The steps in order. The To... steps run the earlier ones first.
    void Identify();
    void Offer();       // both KEXINITs, KEXDH_INIT
    void Reply();       // KEXDH_REPLY, our NEWKEYS
    void SwitchKeys();  // the server's NEWKEYS: both sides use the new keys
    void ToService();   // SERVICE_REQUEST has come
    void ToPassword();  // USERAUTH_REQUEST has come
    void ToChannel();   // CHANNEL_OPEN has come
    void ToPty();       // the pty request has come
    void ToShell();     // the shell has been granted

    void Use(DWORD ssh_type);  // chooses the cipher; before the first step

    static std::string PasswordRequest(const std::string& user, const std::string& password);
    static std::string PtyRequest(const std::string& type);
    static std::string Data(const std::string& bytes);        // to the client
    static std::string ClientData(const std::string& bytes);  // from it
    static std::string Adjust(uint32_t bytes);

    ScriptedServer server;
    Tape tape{5};
    std::string cipher = "3des-cbc";
    int offers = 0;
};

#endif
