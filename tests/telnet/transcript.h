// SPDX-License-Identifier: MIT
// Transcripts: conversations with a host as commented text files, one line each of
//     # a comment
//     set NAME "TEXT"     nego (a digit) or termtype
//     host "BYTES"        what the host sends
//     show "BYTES"        what the terminal gets
//     client "BYTES"      what the host gets
// Several lines of a kind are joined. A host line after show or client lines begins the next
// exchange. Each exchange must list everything that is shown and sent. In BYTES \ooo is one byte in
// octal, and \r, \n, \\ have their usual meaning. The number of blanks between words is free.
#ifndef QUILL_TESTS_TELNET_TRANSCRIPT_H
#define QUILL_TESTS_TELNET_TRANSCRIPT_H

#include <string>
#include <utility>
#include <vector>

struct Exchange {
    int line;  // of its first host line
    std::string host, show, client;
};

struct Transcript {
    std::vector<std::pair<std::string, std::string>> settings;
    std::vector<Exchange> exchanges;
    std::string wrong;  // the first line that could not be read
};

Transcript ReadTranscript(const std::string& path);

#endif
