// SPDX-License-Identifier: MIT
// The host's sockets, host names and error numbers, as WinSock needs them. This header and its .cpp
// do not include windows_ce.h, because its macros redefine the names of the calls used here.
#ifndef QUILL_PLATFORM_QT_SERVICES_POSIX_SOCKETS_H
#define QUILL_PLATFORM_QT_SERVICES_POSIX_SOCKETS_H

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

// Network streams. Several threads may share one, and a thread may close it while another waits for
// it. The end of a connection request is reported apart from data. Results are 0 or more, or a
// negative errno.
enum class SocketState { kFresh, kConnecting, kConnected, kFailed };

// The descriptor is closed when the last reference to the object is gone.
//
// A non-blocking socket accepts up to kLargestBacklog more bytes than the kernel has room for. The
// socket has a thread that sends them as the peer reads; Close drops what is left.
inline constexpr size_t kLargestBacklog = size_t{64} << 20;

// The first kSentAtOnce calls after a pause of kSendingRest send their bytes at once. In a longer
// run, such as a paste, the system gathers bytes while the peer has not confirmed the last ones
// (RFC 896).
inline constexpr std::chrono::milliseconds kSendingRest{20};
inline constexpr int kSentAtOnce = 16;

class StreamSocket : public std::enable_shared_from_this<StreamSocket> {
  public:
    static int Open(std::shared_ptr<StreamSocket>* opened);
    ~StreamSocket();
    StreamSocket(const StreamSocket&) = delete;
    StreamSocket& operator=(const StreamSocket&) = delete;

    int SetBlocking(bool blocking);
    // Returns -EINPROGRESS while the request of a non-blocking socket is in progress. Only
    // WaitForSockets reports how it ends, even if it has already ended.
    int Connect(uint32_t address, uint16_t port);  // both in network byte order
    int Receive(void* bytes, size_t size, int flags);
    int Send(const void* bytes, size_t size, int flags);
    int Shutdown(int how);
    // Wakes every thread that waits for the socket; from then on all calls fail.
    void Close();

    bool IsClosed();
    SocketState State();  // first checks whether a pending request has ended
    int descriptor() const { return descriptor_; }
    int wake_descriptor() const { return wake_; }

  private:
    StreamSocket(int descriptor, int wake) : descriptor_(descriptor), wake_(wake) {}
    SocketState LookAtRequest();
    int Usable();
    int BeginConnect(uint32_t address, uint16_t port, bool* blocking);
    bool Blocks();
    void ChooseGathering();
    int SendNow(const char* bytes, size_t size, int flags) const;
    size_t Queue(const char* bytes, size_t size);
    void SendBacklog();
    bool SendSomeOfBacklog(bool closed);

    const int descriptor_;
    const int wake_;  // readable once the socket is closed
    std::mutex mutex_;
    bool closed_ = false;
    bool blocking_ = true;
    SocketState state_ = SocketState::kFresh;
    int pending_error_ = 0;  // of the connection; the next transfer reports it

    std::mutex send_mutex_;  // taken before mutex_
    std::string backlog_;    // bytes that wait for room in the kernel
    size_t backlog_sent_ = 0;
    bool sending_ = false;  // the thread that sends them runs
    int send_error_ = 0;    // the error that it met
    bool gathers_ = true;   // the system gathers small sends, as on a new socket
    int run_ = 0;           // calls since the last pause, at most kSentAtOnce
    std::chrono::steady_clock::time_point last_sent_;
};

struct SocketWait {
    std::shared_ptr<StreamSocket> socket;
    bool want_read = false;
    bool want_write = false;
    bool want_except = false;
    bool can_read = false;
    bool can_write = false;
    bool has_except = false;  // the request failed, or urgent data came
};
// Returns how many of the wants are met; 0 after `microseconds` (below 0: no limit). Returns
// -ENOTSOCK as soon as one of the sockets is closed.
int WaitForSockets(std::vector<SocketWait>* waits, int64_t microseconds);

// True if a network interface other than loopback is up and has an IPv4 address.
bool HasNetworkInterface();

// Streams between programs of the same user on this machine. Their names exist only in the kernel,
// not on the disk, and have at most 100 bytes. A descriptor below 0 means failure. No call here
// ends the program by a signal.
int ListenLocally(const std::string& name);  // non-blocking; below 0: the name is taken
int AcceptLocally(int listener);             // non-blocking; refuses callers of other users
int CallLocally(const std::string& name);    // below 0: nobody listens
bool SayLocally(int socket, const std::string& bytes);
// Reads the bytes that have arrived: 0 at the end of the stream, below 0 if there are no bytes yet.
long HearLocally(int socket, char* bytes, size_t size);
bool AwaitLocally(int socket, int milliseconds);  // true if something can be read by then
void CloseLocally(int socket);

// Looks up a name. Returns 0 and at least one IPv4 address in network byte order, or the error of
// getaddrinfo.
int LookUpAddresses(const char* name, std::vector<uint32_t>* addresses, std::string* official);

// WinSock's error numbers.
inline constexpr int kWsaEFault = 10014;
inline constexpr int kWsaEInval = 10022;
inline constexpr int kWsaEMFile = 10024;
inline constexpr int kWsaEOpNotSupp = 10045;
inline constexpr int kWsaEAfNoSupport = 10047;
inline constexpr int kWsaEHostUnreach = 10065;
inline constexpr int kWsaSysNotReady = 10091;
inline constexpr int kWsaVerNotSupported = 10092;
inline constexpr int kWsaNotInitialised = 10093;
inline constexpr int kWsaHostNotFound = 11001;
inline constexpr int kWsaTryAgain = 11002;
inline constexpr int kWsaNoRecovery = 11003;

// Translates an errno; 10022 for one that has no counterpart. Every "no network" and "no route" is
// 10065.
int WinsockError(int error_number);
// The same for getaddrinfo's results.
int WinsockLookupError(int result);

#endif
