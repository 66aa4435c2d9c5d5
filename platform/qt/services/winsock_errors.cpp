// The table behind WSAGetLastError.
#include "platform/qt/services/winsock_errors.h"

#include <netdb.h>

#include <cerrno>

#include "platform/qt/services/posix_sockets.h"

namespace {

struct ErrorRow {
    int from;
    int to;
};
// clang-format off
const ErrorRow kErrors[] = {
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
const ErrorRow kLookupErrors[] = {
    {EAI_NONAME,      kWsaHostNotFound},
    {EAI_AGAIN,       kWsaTryAgain},
    {EAI_FAIL,        kWsaNoRecovery},
    {EAI_MEMORY,      10055},
};
// clang-format on

}  // namespace

int WinsockError(int error_number) {
    // Out of local addresses, or without any.
    if (error_number == EADDRNOTAVAIL && !HasNetworkInterface()) return 10065;
    for (const ErrorRow& row : kErrors)
        if (row.from == error_number) return row.to;
    return kWsaEInval;
}

int WinsockLookupError(int result) {
    for (const ErrorRow& row : kLookupErrors)
        if (row.from == result) return row.to;
    return kWsaHostNotFound;
}
