// SPDX-License-Identifier: MIT
// Runs every transcript of this folder, each exchange as one chunk, byte by byte, and in threes.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "tests/telnet/outside.h"
#include "tests/telnet/transcript.h"

namespace {

std::vector<std::string> Names() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(QUILL_TELNET_TRANSCRIPTS))
        if (entry.path().extension() == ".transcript") names.push_back(entry.path().stem());
    std::sort(names.begin(), names.end());
    return names;
}

void Apply(const Transcript& transcript) {
    for (const auto& [name, text] : transcript.settings) {
        if (name == "nego") {
            session.settings.nego = text == "1";
        } else {
            ASSERT_EQ(name, "termtype");
            SetText(session.settings.termtype, text.c_str());
        }
    }
}

void Play(const Transcript& transcript, size_t chunk) {
    NewSession();
    Apply(transcript);
    for (const Exchange& exchange : transcript.exchanges) {
        SCOPED_TRACE(testing::Message() << "line " << exchange.line << ", chunks of " << chunk);
        for (size_t at = 0; at < exchange.host.size(); at += chunk)
            Receive(exchange.host.substr(at, chunk));
        EXPECT_EQ(Shown(), exchange.show);
        EXPECT_EQ(Sent(), exchange.client);
    }
}

struct Transcripts : testing::TestWithParam<std::string> {};

}  // namespace

TEST_P(Transcripts, GiveTheSameResultWholeAndInPieces) {
    const Transcript transcript =
        ReadTranscript(QUILL_TELNET_TRANSCRIPTS "/" + GetParam() + ".transcript");
    ASSERT_EQ(transcript.wrong, "");
    ASSERT_FALSE(transcript.exchanges.empty());
    for (size_t chunk : {size_t{kReceiveSize}, size_t{1}, size_t{3}}) Play(transcript, chunk);
}

INSTANTIATE_TEST_SUITE_P(Telnet, Transcripts, testing::ValuesIn(Names()),
                         [](const auto& test) { return test.param; });
