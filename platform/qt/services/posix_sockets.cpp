// SPDX-License-Identifier: MIT
// The host's own socket calls. This file does not include windows_ce.h, whose macros redefine their
// names.
#include "platform/qt/services/posix_sockets.h"

#include <fcntl.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <climits>
#include <cstring>
#include <system_error>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;

}  // namespace

constexpr int kLargestBuffer = 0x3FFFFFFF;       // the kernel reduces it to its limit
constexpr int64_t kNothingToWaitFor = 20000;     // us between checks of a socket without a request
constexpr int64_t kLongestWait = 1000000000000;  // us; keeps the sum with the clock in range

// A request that fails at once is reported through the wait, like one that takes its time.
static bool IsOutcome(int error) { return error == ECONNREFUSED || error == ETIMEDOUT; }

// The peer accepted the connection and dropped it before anyone looked. A refused request ends with
// other errors.
static bool IsEndOfConnection(int error) { return error == ECONNRESET || error == EPIPE; }

static short EventsFor(const SocketWait& wait) {
    int events = 0;
    if (wait.want_read) events |= POLLIN | POLLRDHUP;
    if (wait.want_write) events |= POLLOUT;
    if (wait.want_except) events |= POLLPRI;
    return static_cast<short>(events);
}

int StreamSocket::Open(std::shared_ptr<StreamSocket>* opened) {
    const int descriptor = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (descriptor < 0) return -errno;
    const int wake = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (wake < 0) {
        const int error = errno;
        close(descriptor);
        return -error;
    }
    setsockopt(descriptor, SOL_SOCKET, SO_SNDBUF, &kLargestBuffer, sizeof(kLargestBuffer));
    opened->reset(new StreamSocket(descriptor, wake));
    return 0;
}

StreamSocket::~StreamSocket() {
    close(descriptor_);
    close(wake_);
}

int StreamSocket::SetBlocking(bool blocking) {
    const std::lock_guard<std::mutex> lock(mutex_);
    const int flags = fcntl(descriptor_, F_GETFL);
    const int wanted = blocking ? flags & ~O_NONBLOCK : flags | O_NONBLOCK;
    if (flags < 0 || fcntl(descriptor_, F_SETFL, wanted) < 0) return -errno;
    blocking_ = blocking;
    return 0;
}

int StreamSocket::BeginConnect(uint32_t address, uint16_t port, bool* blocking) {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (closed_) return -ENOTSOCK;
    LookAtRequest();
    if (state_ == SocketState::kConnecting) return -EALREADY;
    if (state_ == SocketState::kConnected) return -EISCONN;
    // The host would take address 0 for itself; WinSock refuses it, as it refuses port 0.
    if (address == 0 || port == 0) return -EADDRNOTAVAIL;
    state_ = SocketState::kConnecting;
    *blocking = blocking_;
    return 0;
}

int StreamSocket::Connect(uint32_t address, uint16_t port) {
    bool blocking = false;
    const int refused = BeginConnect(address, port, &blocking);
    if (refused < 0) return refused;
    sockaddr_in peer = {};
    peer.sin_family = AF_INET;
    peer.sin_port = port;
    peer.sin_addr.s_addr = address;
    int error = connect(descriptor_, reinterpret_cast<sockaddr*>(&peer), sizeof(peer)) ? errno : 0;
    const std::lock_guard<std::mutex> lock(mutex_);
    if (closed_) return -ENOTSOCK;
    if (error == EINPROGRESS || error == EAGAIN || error == EINTR) return -EINPROGRESS;
    // Another thread's wait may have seen the end of the request first.
    if (state_ == SocketState::kFailed && error == 0) error = ECONNREFUSED;
    const bool outcome = IsOutcome(error);
    if (error == 0)
        state_ = SocketState::kConnected;
    else
        state_ = outcome ? SocketState::kFailed : SocketState::kFresh;
    return !blocking && outcome ? -EINPROGRESS : -error;
}

// The system reports SO_ERROR only once, so the first reader must keep it.
SocketState StreamSocket::LookAtRequest() {
    if (state_ != SocketState::kConnecting) return state_;
    pollfd request = {descriptor_, POLLOUT, 0};
    if (poll(&request, 1, 0) <= 0) return state_;
    int error = 0;
    socklen_t size = sizeof(error);
    if (getsockopt(descriptor_, SOL_SOCKET, SO_ERROR, &error, &size) < 0) error = errno;
    // Before a request begins, poll reports a hang-up without an error.
    sockaddr_in peer;
    socklen_t peer_size = sizeof(peer);
    const bool has_peer =
        getpeername(descriptor_, reinterpret_cast<sockaddr*>(&peer), &peer_size) == 0;
    if (error != 0 && !IsEndOfConnection(error)) {
        state_ = SocketState::kFailed;
    } else if (error != 0 || has_peer || !(request.revents & POLLHUP)) {
        state_ = SocketState::kConnected;
        pending_error_ = error;
    }
    return state_;
}

SocketState StreamSocket::State() {
    const std::lock_guard<std::mutex> lock(mutex_);
    return LookAtRequest();
}

bool StreamSocket::IsClosed() {
    const std::lock_guard<std::mutex> lock(mutex_);
    return closed_;
}

int StreamSocket::Usable() {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (closed_) return -ENOTSOCK;
    if (LookAtRequest() != SocketState::kConnected) return -ENOTCONN;
    const int error = pending_error_;
    pending_error_ = 0;
    return -error;
}

int StreamSocket::Receive(void* bytes, size_t size, int flags) {
    const int usable = Usable();
    if (usable < 0) return usable;
    ssize_t count;
    do count = recv(descriptor_, bytes, std::min<size_t>(size, INT_MAX), flags);
    while (count < 0 && errno == EINTR);
    const int error = errno;
    if (IsClosed()) return -ENOTSOCK;
    return count < 0 ? -error : static_cast<int>(count);
}

bool StreamSocket::Blocks() {
    const std::lock_guard<std::mutex> lock(mutex_);
    return blocking_;
}

int StreamSocket::SendNow(const char* bytes, size_t size, int flags) const {
    ssize_t count;
    do count = send(descriptor_, bytes, size, flags | MSG_NOSIGNAL);
    while (count < 0 && errno == EINTR);
    return count < 0 ? -errno : static_cast<int>(count);
}

// Otherwise a key, or a packet of an exchange, waits until the peer confirms the bytes before it,
// which the peer delays by about 40 ms.
void StreamSocket::ChooseGathering() {
    const auto now = Clock::now();
    if (now - last_sent_ > kSendingRest) run_ = 0;
    last_sent_ = now;
    const bool gather = run_ >= kSentAtOnce;
    if (!gather) ++run_;
    if (gather == gathers_) return;
    gathers_ = gather;
    const int at_once = !gather;
    setsockopt(descriptor_, IPPROTO_TCP, TCP_NODELAY, &at_once, sizeof(at_once));
}

int StreamSocket::Send(const void* bytes, size_t size, int flags) {
    const int usable = Usable();
    if (usable < 0) return usable;
    const char* first = static_cast<const char*>(bytes);
    size = std::min<size_t>(size, INT_MAX);
    if (flags != 0 || Blocks()) return SendNow(first, size, flags);
    const std::lock_guard<std::mutex> lock(send_mutex_);
    if (send_error_) return -send_error_;
    ChooseGathering();
    int sent = sending_ ? -EAGAIN : SendNow(first, size, 0);
    if (sent < 0 && sent != -EAGAIN) return sent;
    sent = std::max(sent, 0);
    sent += static_cast<int>(Queue(first + sent, size - static_cast<size_t>(sent)));
    return sent > 0 || size == 0 ? sent : -EAGAIN;
}

// Returns how many of the bytes there is room for; 0 if the thread cannot start.
size_t StreamSocket::Queue(const char* bytes, size_t size) {
    const size_t room = kLargestBacklog - (backlog_.size() - backlog_sent_);
    size = std::min(size, room);
    if (size == 0) return 0;
    if (!sending_) {
        try {
            std::thread([self = shared_from_this()] { self->SendBacklog(); }).detach();
        } catch (const std::system_error&) {
            return 0;
        }
        sending_ = true;
    }
    backlog_.append(bytes, size);
    return size;
}

// The body of the thread: ends when all is sent, when the connection fails or when the socket is
// closed.
void StreamSocket::SendBacklog() {
    pollfd waits[2] = {{descriptor_, POLLOUT, 0}, {wake_, POLLIN, 0}};
    do poll(waits, 2, -1);
    while (SendSomeOfBacklog(waits[1].revents != 0));
}

// Returns false if the thread must end; the next bytes then start another one.
bool StreamSocket::SendSomeOfBacklog(bool closed) {
    const std::lock_guard<std::mutex> lock(send_mutex_);
    const size_t left = backlog_.size() - backlog_sent_;
    const int count =
        closed ? -ENOTSOCK : SendNow(backlog_.data() + backlog_sent_, left, MSG_DONTWAIT);
    if (count == -EAGAIN) return true;
    if (count < 0) send_error_ = -count;
    backlog_sent_ += count < 0 ? left : static_cast<size_t>(count);
    if (backlog_sent_ * 2 >= backlog_.size()) {
        backlog_.erase(0, backlog_sent_);
        backlog_sent_ = 0;
    }
    sending_ = !backlog_.empty();
    if (!sending_) backlog_.shrink_to_fit();
    return sending_;
}

int StreamSocket::Shutdown(int how) {
    if (State() != SocketState::kConnected) return -ENOTCONN;
    return shutdown(descriptor_, how) < 0 ? -errno : 0;
}

void StreamSocket::Close() {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (closed_) return;
    closed_ = true;
    shutdown(descriptor_, SHUT_RDWR);  // ends a call that blocks in another thread
    const uint64_t one = 1;
    if (write(wake_, &one, sizeof(one)) < 0) return;  // the counter is full, so already readable
}

namespace {

// One round of the wait: what to poll for, and the results.
class WaitRound {
  public:
    WaitRound(std::vector<SocketWait>* waits, std::vector<bool>* muted)
        : waits_(*waits), muted_(*muted), polled_(waits->size() * 2) {}

    // Returns how long the round may last, in microseconds.
    int64_t Prepare(int64_t left) {
        for (size_t i = 0; i < waits_.size(); ++i) {
            SocketWait& wait = waits_[i];
            const SocketState state = wait.socket->State();
            connecting_.push_back(state == SocketState::kConnecting);
            const bool live = (connecting_[i] || state == SocketState::kConnected) && !muted_[i];
            polled_[2 * i] = {live ? wait.socket->descriptor() : -1, EventsFor(wait), 0};
            if (connecting_[i]) polled_[2 * i].events = POLLOUT;
            polled_[2 * i + 1] = {wait.socket->wake_descriptor(), POLLIN, 0};
            wait.has_except = wait.want_except && state == SocketState::kFailed;
            if (wait.has_except) left = 0;
            if (state == SocketState::kFresh) left = std::min(left, kNothingToWaitFor);
        }
        return left;
    }

    void Poll(int64_t microseconds) {
        const timespec end = {static_cast<time_t>(microseconds / 1000000),
                              static_cast<long>(microseconds % 1000000) * 1000};
        if (ppoll(polled_.data(), polled_.size(), &end, nullptr) >= 0) return;
        for (pollfd& one : polled_) one.revents = 0;
    }

    // Returns how many wants are met, or -ENOTSOCK. Sets `again` when a request has just ended.
    int Collect(bool* again) {
        int met = 0;
        for (size_t i = 0; i < waits_.size(); ++i) {
            SocketWait& wait = waits_[i];
            if (wait.socket->IsClosed()) return -ENOTSOCK;
            const short seen = polled_[2 * i].revents;
            if (connecting_[i]) {
                *again = *again || (seen != 0 && HasEnded(wait));
            } else {
                Take(&wait, seen);
                // Otherwise an end that nobody asked about would wake every later poll.
                if (seen && !wait.can_read && !wait.can_write && !wait.has_except) muted_[i] = true;
            }
            met += wait.can_read + wait.can_write + wait.has_except;
        }
        return met;
    }

  private:
    static bool HasEnded(const SocketWait& wait) {
        return wait.socket->State() != SocketState::kConnecting;
    }

    static void Take(SocketWait* wait, short seen) {
        const bool over = seen & (POLLHUP | POLLERR);
        wait->can_read = wait->want_read && (over || (seen & (POLLIN | POLLRDHUP)));
        wait->can_write = wait->want_write && (over || (seen & POLLOUT));
        if (wait->want_except && (seen & POLLPRI)) wait->has_except = true;
    }

    std::vector<SocketWait>& waits_;
    std::vector<bool>& muted_;
    std::vector<pollfd> polled_;  // each socket, and behind it its wake descriptor
    std::vector<bool> connecting_;
};

}  // namespace

static int64_t MicrosecondsUntil(Clock::time_point end) {
    const auto left = std::chrono::duration_cast<std::chrono::microseconds>(end - Clock::now());
    return std::max<int64_t>(left.count(), 0);
}

int WaitForSockets(std::vector<SocketWait>* waits, int64_t microseconds) {
    const int64_t span = microseconds < 0 ? kLongestWait : std::min(microseconds, kLongestWait);
    const Clock::time_point end = Clock::now() + std::chrono::microseconds(span);
    std::vector<bool> muted(waits->size(), false);
    for (;;) {
        WaitRound round(waits, &muted);
        const int64_t left = MicrosecondsUntil(end);
        round.Poll(round.Prepare(left));
        bool again = false;
        const int met = round.Collect(&again);
        if (met != 0) return met;
        if (!again && left == 0) return 0;
    }
}

bool HasNetworkInterface() {
    ifaddrs* list = nullptr;
    if (getifaddrs(&list) != 0) return false;
    bool found = false;
    for (const ifaddrs* row = list; row; row = row->ifa_next)
        found |= (row->ifa_flags & IFF_UP) && !(row->ifa_flags & IFF_LOOPBACK) && row->ifa_addr &&
                 row->ifa_addr->sa_family == AF_INET;
    freeifaddrs(list);
    return found;
}

namespace {

struct LocalAddress {
    sockaddr_un address = {};
    socklen_t length = 0;
    const sockaddr* Generic() const { return reinterpret_cast<const sockaddr*>(&address); }
};

}  // namespace

// A name that begins with a zero byte belongs to the kernel and is not in the file system.
static LocalAddress AddressOf(const std::string& name) {
    LocalAddress local;
    local.address.sun_family = AF_UNIX;
    const size_t length = name.copy(local.address.sun_path + 1, sizeof(local.address.sun_path) - 1);
    local.length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + length);
    return local;
}

static int NewSocket(int flags) { return socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | flags, 0); }

// The kernel lets any user on the machine connect to a name.
static bool IsOwnUser(int socket) {
    ucred peer = {};
    socklen_t size = sizeof(peer);
    return getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && peer.uid == getuid();
}

int ListenLocally(const std::string& name) {
    const LocalAddress local = AddressOf(name);
    const int listener = NewSocket(SOCK_NONBLOCK);
    if (listener < 0) return -1;
    if (bind(listener, local.Generic(), local.length) == 0 && listen(listener, 8) == 0)
        return listener;
    close(listener);
    return -1;
}

int AcceptLocally(int listener) {
    const int caller = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
    if (caller < 0 || IsOwnUser(caller)) return caller;
    close(caller);
    return -1;
}

int CallLocally(const std::string& name) {
    const LocalAddress local = AddressOf(name);
    const int caller = NewSocket(0);
    if (caller < 0 || connect(caller, local.Generic(), local.length) == 0) return caller;
    close(caller);
    return -1;
}

bool SayLocally(int socket, const std::string& bytes) {
    return send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL) ==
           static_cast<ssize_t>(bytes.size());
}

long HearLocally(int socket, char* bytes, size_t size) {
    const ssize_t count = recv(socket, bytes, size, 0);
    return count >= 0 ? count : errno == EAGAIN || errno == EINTR ? -1 : 0;
}

bool AwaitLocally(int socket, int milliseconds) {
    pollfd wait = {socket, POLLIN, 0};
    return poll(&wait, 1, milliseconds) > 0;
}

void CloseLocally(int socket) { close(socket); }

int LookUpAddresses(const char* name, std::vector<uint32_t>* addresses, std::string* official) {
    addrinfo wanted = {};
    wanted.ai_family = AF_INET;
    wanted.ai_socktype = SOCK_STREAM;
    wanted.ai_flags = AI_CANONNAME;
    addrinfo* list = nullptr;
    const int result = getaddrinfo(name, nullptr, &wanted, &list);
    if (result != 0) return result;
    *official = list->ai_canonname ? list->ai_canonname : name;
    for (const addrinfo* row = list; row; row = row->ai_next) {
        const uint32_t address = reinterpret_cast<sockaddr_in*>(row->ai_addr)->sin_addr.s_addr;
        if (std::find(addresses->begin(), addresses->end(), address) == addresses->end())
            addresses->push_back(address);
    }
    freeaddrinfo(list);
    return 0;
}

namespace {

struct ErrorRow {
    int from;
    int to;
};

}  // namespace
// clang-format off
static const ErrorRow kErrors[] = {
    {EINTR,           10004},
    {EBADF,           10038},
    {EACCES,          10013},
    {EPERM,           10013},
    {EFAULT,          10014},
    {EINVAL,          10022},
    {EMFILE,          10024},
    {ENFILE,          10024},
    {EAGAIN,          10035},
    {EINPROGRESS,     10035},
    {EALREADY,        10037},
    {ENOTSOCK,        10038},
    {EDESTADDRREQ,    10039},
    {EMSGSIZE,        10040},
    {EPROTOTYPE,      10041},
    {ENOPROTOOPT,     10042},
    {EPROTONOSUPPORT, 10043},
    {EOPNOTSUPP,      10045},
    {EAFNOSUPPORT,    10047},
    {EADDRINUSE,      10048},
    {EADDRNOTAVAIL,   10049},
    {ENETDOWN,        10065},
    {ENETUNREACH,     10065},
    {EHOSTDOWN,       10065},
    {EHOSTUNREACH,    10065},
    {ENONET,          10065},
    {ENETRESET,       10052},
    {ECONNABORTED,    10053},
    {ECONNRESET,      10054},
    {EPIPE,           10058},
    {ENOBUFS,         10055},
    {ENOMEM,          10055},
    {EISCONN,         10056},
    {ENOTCONN,        10057},
    {ESHUTDOWN,       10058},
    {ETIMEDOUT,       10060},
    {ECONNREFUSED,    10061},
};
static const ErrorRow kLookupErrors[] = {
    {EAI_NONAME,      kWsaHostNotFound},
    {EAI_AGAIN,       kWsaTryAgain},
    {EAI_FAIL,        kWsaNoRecovery},
    {EAI_MEMORY,      10055},
};
// clang-format on

int WinsockError(int error_number) {
    // EADDRNOTAVAIL may mean that all local addresses are in use, or that there is no network.
    if (error_number == EADDRNOTAVAIL && !HasNetworkInterface()) return kWsaEHostUnreach;
    for (const ErrorRow& row : kErrors)
        if (row.from == error_number) return row.to;
    return kWsaEInval;
}

int WinsockLookupError(int result) {
    for (const ErrorRow& row : kLookupErrors)
        if (row.from == result) return row.to;
    return kWsaHostNotFound;
}
