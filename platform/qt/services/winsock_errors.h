// WinSock's error numbers for the host's errno values.
#ifndef QUILL_PLATFORM_QT_SERVICES_WINSOCK_ERRORS_H
#define QUILL_PLATFORM_QT_SERVICES_WINSOCK_ERRORS_H

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
