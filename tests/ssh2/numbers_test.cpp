// SPDX-License-Identifier: MIT
// Numbers of every length in the key exchange. With random exponents the public values and the
// secret have 128 bytes and are shorter only once in 256 times. These tests choose both exponents.
#include "tests/ssh2/conversation.h"

namespace {

const char kPrimeLessOne[] =
    "FFFFFFFFFFFFFFFFC90FDAA22168C234C4C6628B80DC1CD129024E088A67CC74020BBEA63B139B22514A08798E3404"
    "DD"
    "EF9519B3CD3A431B302B0A6DF25F14374FE1356D6D51C245E485B576625E7EC6F44C42E9A637ED6B0BFF5CB6F406B7"
    "ED"
    "EE386BFB5A899FA5AE9F24117C4B1FE649286651ECE65381FFFFFFFFFFFFFFFE";
constexpr size_t kBeforeExponent = 16 + 10;  // the cookie, and the padding of KEXINIT

class Ssh2Numbers : public Conversation {
  protected:
    void Begin() {
        NewSession();
        server = {};
        offers = 0;
        Identify();
    }

    // The client draws these exponents, each from its lowest byte on, and uses the last one.
    void OfferWith(const std::vector<std::string>& exponents) {
        server.server_kex_init = ServerKexInit();
        tape = Tape(5);
        std::string drawn = tape.Rest();
        size_t at = kBeforeExponent;
        for (const std::string& exponent : exponents) {
            drawn.replace(at, 32, exponent + std::string(32 - exponent.size(), '\0'));
            at += 32;
        }
        tape.bytes.assign(drawn.begin(), drawn.end());
        outside.drawn = drawn;
        Give(server.server_kex_init);
        Expect(server.client_kex_init = ClientKexInit(tape, cipher));
        tape.Take(32 * (exponents.size() - 1));
        Expect(Message(30, server.e = ClientPublic(tape)));
    }

    // Expects that both sides have the same keys: the session goes on to the password request.
    void ExpectAgreement() {
        Reply();
        SwitchKeys();
        Expect(Message(5, Str("ssh-userauth")));
        Give(Message(6, Str("ssh-userauth")));
        Expect(PasswordRequest("visitor", "warehouse7"));
        ExpectSilence();
        ExpectOpen();
    }

    // Finds the first of the server's secrets 2, 3, ... for which `holds` is true.
    template <typename Condition>
    void SearchSecret(Condition holds) {
        for (unsigned secret = 2; secret < 20000; secret++) {
            server.secret = Hex(U32(secret));
            KexDhReply(server, "SSH-2.0-1.0.00");
            if (holds()) return;
        }
        FAIL() << "no such secret";
    }
};

std::string Exponent(unsigned value) {
    return {static_cast<char>(value & 0xff), static_cast<char>(value >> 8)};
}

size_t BodySize(const std::string& mpint) { return mpint.size() - 4; }

TEST_F(Ssh2Numbers, OurPublicValueOfAnyLengthIsSentAndHashedAsAnMpint) {
    const struct {
        unsigned x;  // e is 2 to the power of it
        size_t size;
    } kRows[] = {{2, 1},      {6, 1},      {7, 2},      {8, 2},      {1006, 126}, {1007, 127},
                 {1008, 127}, {1014, 127}, {1015, 128}, {1016, 128}, {1022, 128}, {1023, 129}};
    for (const auto& row : kRows) {
        Begin();
        OfferWith({Exponent(row.x)});
        EXPECT_EQ(BodySize(server.e), row.size) << row.x;
        ExpectAgreement();
    }
}

TEST_F(Ssh2Numbers, ExponentsOfZeroAndOneAreDrawnAgain) {
    Begin();
    OfferWith({Exponent(0), Exponent(1), Exponent(0), Exponent(2)});
    EXPECT_EQ(server.e, Str("\4"));
    ExpectAgreement();
}

TEST_F(Ssh2Numbers, SecretOfAnyLengthIsHashedAsAnMpint) {
    const struct {
        unsigned x, y;  // the secret is 2 to the power of their product
        size_t size;
    } kRows[] = {{2, 1, 1},     {2, 3, 1},     {7, 1, 2},     {2, 4, 2},     {5, 203, 128},
                 {2, 507, 127}, {3, 341, 129}, {2, 511, 128}, {16, 63, 127}, {1007, 1, 127}};
    for (const auto& row : kRows) {
        Begin();
        OfferWith({Exponent(row.x)});
        server.secret = Hex(U32(row.y));
        ExpectAgreement();
        EXPECT_EQ(BodySize(server.k), row.size) << row.x << ' ' << row.y;
    }
}

TEST_F(Ssh2Numbers, SecretAndPublicValueWithALeadingZeroByteAgree) {
    for (const bool of_secret : {false, true}) {
        for (const size_t size : {127u, 128u, 129u}) {
            Begin();
            Offer();
            SearchSecret([&] { return BodySize(of_secret ? server.k : server.f) == size; });
            ExpectAgreement();
        }
    }
}

// No real server chooses these values. The secret is again one of the two values, by the exponent's
// lowest bit.
TEST_F(Ssh2Numbers, PublicValuesAtBothEndsOfTheGroupAreTaken) {
    const std::string first = "1", last = kPrimeLessOne;
    for (const unsigned x : {6u, 7u}) {
        for (const std::string& value : {first, last}) {
            Begin();
            OfferWith({Exponent(x)});
            server.public_value = value;
            server.agreed = x % 2 == 0 ? first : value;
            ExpectAgreement();
        }
    }
}

TEST_F(Ssh2Numbers, LeadingZerosOfTheServersValueAreNotHashed) {
    Begin();
    Offer();
    const std::string reply = KexDhReply(server, "SSH-2.0-1.0.00");
    const size_t at = 1 + 4 + HostKeyBlob().size();
    ASSERT_EQ(reply.substr(at, server.f.size()), server.f);
    Give(reply.substr(0, at) + Str(std::string(40, '\0') + server.f.substr(4)) +
         reply.substr(at + server.f.size()));
    Expect(Message(21));
    SwitchKeys();
    Expect(Message(5, Str("ssh-userauth")));
}

// Without its leading zero byte the same value is negative. Both sides would agree on it otherwise.
TEST_F(Ssh2Numbers, NegativeServersValueIsRefused) {
    Begin();
    Offer();
    SearchSecret([&] { return BodySize(server.f) == 129; });
    const std::string reply = KexDhReply(server, "SSH-2.0-1.0.00");
    const size_t at = 1 + 4 + HostKeyBlob().size();
    ASSERT_EQ(reply.substr(at, server.f.size()), server.f);
    Give(reply.substr(0, at) + Str(server.f.substr(5)) + reply.substr(at + server.f.size()));
    ExpectSilence();
    EXPECT_EQ(session.ssh2.kexDone, 0u);
}

}  // namespace
