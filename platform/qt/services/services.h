// SPDX-License-Identifier: MIT
// What the services share with each other and with the rooms above: the slice's 16-bit text as the
// host's UTF-8 and back, the folder that is the root of the device's files, and who may come
// between the services and the system.
#ifndef QUILL_PLATFORM_QT_SERVICES_SERVICES_H
#define QUILL_PLATFORM_QT_SERVICES_SERVICES_H

#include <cstdint>
#include <string>
#include <string_view>

#include "windows_ce.h"

// A surrogate without its other half is written as three bytes of its own, so that two different
// texts never become the same bytes.
std::string Utf8FromWide(std::u16string_view text);
// Bytes that are not UTF-8 become U+FFFD.
std::u16string WideFromUtf8(std::string_view bytes);

// Simple mapping of one unit, by the Unicode tables, whatever the locale. A unit above U+007F is
// never mapped to one below.
char16_t UpperUnit(char16_t unit);
char16_t LowerUnit(char16_t unit);
// Order of two texts by their units, case set aside: below 0, 0 or above 0.
int CompareWithoutCase(const char16_t* a, const char16_t* b);

// Copies at most `capacity` - 1 units and terminates.
void CopyUnits(char16_t* to, const char16_t* from, int capacity);

// $XDG_DATA_HOME/quill, or ~/.local/share/quill, whether it is there or not.
std::string UserRoot();
// The folder and what is missing of the way to it, each with mode 0700.
void MakeFolders(const std::string& path);

// Takes an existing folder; nothing is created in its place. "" stands for the user's own,
// made with mode 0700 where it is missing.
void SetDeviceRoot(const std::string& folder);
// Absolute, without a slash at the end; the user's own while none was set.
const std::string& DeviceRoot();
// "\mconfig.cfg" gives ROOT/mconfig.cfg. ".." ends at the root. "" for null.
std::string DevicePath(LPCWSTR device_path);

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
