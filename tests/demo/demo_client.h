// SPDX-License-Identifier: MIT
// The demo host as a child process, and a plain Telnet client for its tests. Waiting always has an
// end (kPatience), after which the call fails; how long things take is never judged.
#ifndef QUILL_TESTS_DEMO_CLIENT_H
#define QUILL_TESTS_DEMO_CLIENT_H

#include <sys/types.h>
#include <string>
#include <vector>

struct Host {
    pid_t pid = -1;
    int port = 0;
    std::string first_line;
};

// Starts the demo host with the given options and reads its first line. port is 0 on failure.
Host StartHost(const std::vector<std::string>& options = {});

// Waits for the end of the host; its wait status, or -1 when it goes on.
int WaitForEnd(Host& host);

// Sends SIGTERM if it still runs, and waits.
void StopHost(Host& host);

struct Client {
    int socket = -1;
    bool closed = false;   // the host closed the connection
    std::string received;  // everything read so far
};

// receive_buffer 0 leaves the system's own size.
Client Connect(const Host& host, int receive_buffer = 0);
void Disconnect(Client& client);
bool Send(Client& client, const std::string& bytes);

// Reads until `text` stands in what came after `from`; returns the place after it, or npos.
size_t Expect(Client& client, const std::string& text, size_t from = 0);

// Reads until the host closes; false when it does not.
bool ExpectClose(Client& client);

// Answers the options as the program does, logs in as "ada" and waits for the menu's prompt.
// Returns the place after it in `received`, or npos.
size_t LogIn(Client& client);

#endif
