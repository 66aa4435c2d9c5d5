// SPDX-License-Identifier: MIT
// The demo host as a child process, and a plain Telnet client for its tests. Every wait has a limit
// (kPatience), after which the call fails. No test checks how long something takes.
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

// Waits for the end of the host; returns its wait status, or -1 if it does not end.
int WaitForEnd(Host& host);

// Sends SIGTERM if it still runs, and waits.
void StopHost(Host& host);

struct Client {
    int socket = -1;
    bool closed = false;   // the host closed the connection
    std::string received;  // everything read so far
};

// With receive_buffer 0 the socket has the system's default size.
Client Connect(const Host& host, int receive_buffer = 0);
void Disconnect(Client& client);
bool Send(Client& client, const std::string& bytes);

// Reads until `text` occurs after offset `from`; returns the offset behind it, or npos.
size_t Expect(Client& client, const std::string& text, size_t from = 0);

// Reads until the host closes; false if it does not.
bool ExpectClose(Client& client);

// Answers the options as the program does, logs in as "ada" and waits for the menu's prompt.
// Returns the offset behind it in `received`, or npos.
size_t LogIn(Client& client);

#endif
