// SPDX-License-Identifier: MIT
// The other end of a connection on loopback, driven by the test. It does not include windows_ce.h.
#ifndef QUILL_TESTS_PLATFORM_LOOPBACK_PEER_H
#define QUILL_TESTS_PLATFORM_LOOPBACK_PEER_H

#include <cstdint>
#include <string>

class LoopbackPeer {
  public:
    LoopbackPeer();  // listens on a free port of 127.0.0.1
    ~LoopbackPeer();
    LoopbackPeer(const LoopbackPeer&) = delete;
    LoopbackPeer& operator=(const LoopbackPeer&) = delete;

    uint16_t port() const { return port_; }
    bool Accept();  // waits for a connection and closes the previous one
    void Send(const std::string& bytes);
    void SendUrgent(char byte);
    std::string Receive(size_t size);  // waits for that many bytes; fewer at the end of the stream
    void CloseConnection();
    void ResetConnection();
    void StopListening();

  private:
    intptr_t listening_ = -1;  // the system's socket numbers; -1: no socket
    intptr_t connection_ = -1;
    uint16_t port_ = 0;
};

uint16_t UnusedPort();  // a port on which nobody listens

#endif
