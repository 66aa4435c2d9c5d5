// SPDX-License-Identifier: MIT
// The host's sockets, names and error numbers, as WinSock needs them. This header and its .cpp stay
// free of windows_ce.h, whose macros take the names of the calls used here.
#ifndef QUILL_PLATFORM_QT_SERVICES_POSIX_SOCKETS_H
#define QUILL_PLATFORM_QT_SERVICES_POSIX_SOCKETS_H

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

// Network streams: shared between threads, closed under a waiting one, and with the end of a
// connection request kept apart from data. Results are 0 or more, or a negative errno.
enum class SocketState { kFresh, kConnecting, kConnected, kFailed };

// The descriptor is closed when the last thread lets go of the object.
//
// A socket that does not block takes up to kLargestBacklog more bytes than the kernel has room for.
// A thread of the socket's own sends them as the peer reads; Close drops what is left.
inline constexpr size_t kLargestBacklog = size_t{64} << 20;

// What is sent after a rest goes out at once, for so many calls; in a longer run, as a paste is,
// the system gathers what is sent while the peer has not confirmed the last of it (RFC 896).
inline constexpr std::chrono::milliseconds kSendingRest{20};
inline constexpr int kSentAtOnce = 16;

class StreamSocket : public std::enable_shared_from_this<StreamSocket> {
  public:
    static int Open(std::shared_ptr<StreamSocket>* opened);
    ~StreamSocket();
    StreamSocket(const StreamSocket&) = delete;
    StreamSocket& operator=(const StreamSocket&) = delete;

    int SetBlocking(bool blocking);
    // -EINPROGRESS for a request under way on a socket that does not block; how it ends is for
    // WaitForSockets to say, never for this call.
    int Connect(uint32_t address, uint16_t port);  // both in network byte order
    int Receive(void* bytes, size_t size, int flags);
    int Send(const void* bytes, size_t size, int flags);
    int Shutdown(int how);
    // Wakes every thread that waits for the socket; all calls fail from then on.
    void Close();

    bool IsClosed();
    SocketState State();  // looks first whether a request under way has ended
    int descriptor() const { return descriptor_; }
    int wake_descriptor() const { return wake_; }

  private:
    StreamSocket(int descriptor, int wake) : descriptor_(descriptor), wake_(wake) {}
    SocketState LookAtRequest();
    int Usable();
    int BeginConnect(uint32_t address, uint16_t port, bool* blocking);
    bool Blocks();
    void ChooseGathering();
    int SendNow(const char* bytes, size_t size, int flags);
    size_t Queue(const char* bytes, size_t size);
    void SendBacklog();
    bool SendSomeOfBacklog(bool closed);

    const int descriptor_;
    const int wake_;  // readable once the socket is closed
    std::mutex mutex_;
    bool closed_ = false;
    bool blocking_ = true;
    SocketState state_ = SocketState::kFresh;
    int pending_error_ = 0;  // of the connection, for the next transfer to report

    std::mutex send_mutex_;  // taken before mutex_
    std::string backlog_;    // bytes that wait for room in the kernel
    size_t backlog_sent_ = 0;
    bool sending_ = false;  // the thread that sends them runs
    int send_error_ = 0;    // what it met
    bool gathers_ = true;   // as a new socket does
    int run_ = 0;           // calls since the last rest, counted up to the limit
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
// How many of the wants are met; 0 after `microseconds` (below 0: no end). -ENOTSOCK as soon as one
// of the sockets is closed.
int WaitForSockets(std::vector<SocketWait>* waits, int64_t microseconds);

// Whether an interface is up that leads anywhere but back.
bool HasNetworkInterface();

// Streams between programs of one user on this machine, by names of the kernel that leave nothing
// on the disk. A name has 100 bytes at most. A descriptor below 0 is none; none of these ends the
// program by a signal.
int ListenLocally(const std::string& name);  // does not block; below 0: the name is taken
int AcceptLocally(int listener);           // does not block; callers of other users are turned away
int CallLocally(const std::string& name);  // below 0: nobody listens
bool SayLocally(int socket, const std::string& bytes);
// The bytes that are there: 0 at the end, below 0 when none has come yet.
long HearLocally(int socket, char* bytes, size_t size);
bool AwaitLocally(int socket, int milliseconds);  // whether there is something to hear by then
void CloseLocally(int socket);

// Looking up names. At least one IPv4 address, in network byte order, or a result of getaddrinfo
// other than 0.
int LookUpAddresses(const char* name, std::vector<uint32_t>* addresses, std::string* official);

// WinSock's numbers for errors.
inline constexpr int kWsaEFault = 10014;
inline constexpr int kWsaEInval = 10022;
inline constexpr int kWsaEMFile = 10024;
inline constexpr int kWsaEOpNotSupp = 10045;
inline constexpr int kWsaEAfNoSupport = 10047;
inline constexpr int kWsaSysNotReady = 10091;
inline constexpr int kWsaVerNotSupported = 10092;
inline constexpr int kWsaNotInitialised = 10093;
inline constexpr int kWsaHostNotFound = 11001;
inline constexpr int kWsaTryAgain = 11002;
inline constexpr int kWsaNoRecovery = 11003;

// 10022 for an errno without a number of its own. Every "no network" and "no route" is 10065.
int WinsockError(int error_number);
// The same for getaddrinfo's results.
int WinsockLookupError(int result);

#endif
