// Who may come between the services and the system: procedures that are null unless somebody sets
// them, before other threads of the slice run.
#ifndef QUILL_PLATFORM_QT_SERVICES_OBSERVER_H
#define QUILL_PLATFORM_QT_SERVICES_OBSERVER_H

#include <cstdint>

enum class NetworkCall { kStartup, kSocket, kConnect, kHostLookup };

struct DialUpHost {
    const char* folder;   // of the entries
    const char* program;  // that calls one
    int patience;         // ms from asking that program to end to ending it by force
};

struct ServicesObserver {
    int (*network)(NetworkCall call) = nullptr;  // WinSock's error that the call ends with; 0: none
    int64_t (*system_time)() = nullptr;          // ms since 1970-01-01 UTC; below 0: the real one
    DialUpHost (*dial_up)() = nullptr;           // in place of the system's
};

inline ServicesObserver services_observer;

inline int ErrorOf(NetworkCall call) {
    return services_observer.network ? services_observer.network(call) : 0;
}

inline DialUpHost TheDialUpHost() {
    if (services_observer.dial_up) return services_observer.dial_up();
    return {"/etc/ppp/peers", "/usr/sbin/pppd", 8000};
}

#endif
