// SPDX-License-Identifier: MIT
// What the services share with each other and with the layers above: conversion between the slice's
// 16-bit text and the host's UTF-8, the root folder of the device's files, and the observer that
// can step in between the services and the system.
#ifndef QUILL_PLATFORM_QT_SERVICES_SERVICES_H
#define QUILL_PLATFORM_QT_SERVICES_SERVICES_H

#include <cstdint>
#include <string>
#include <string_view>

#include "windows_ce.h"

// A surrogate without its other half is written as three bytes, so two different texts never become
// the same bytes.
std::string Utf8FromWide(std::u16string_view text);
// Bytes that are not UTF-8 become U+FFFD.
std::u16string WideFromUtf8(std::string_view bytes);
// UTF-8 for a terminal: each character that no letter shows, such as a control character or a
// change of the direction, becomes a question mark, and so do bytes that are not UTF-8.
std::string Printable(std::string_view text);

// Maps one unit by the Unicode tables, independent of the locale. A unit above U+007F never becomes
// one below.
char16_t UpperUnit(char16_t unit);
char16_t LowerUnit(char16_t unit);
// Compares two texts unit by unit without case: below 0, 0 or above 0.
int CompareWithoutCase(const char16_t* a, const char16_t* b);

// Copies at most `capacity` - 1 units and terminates.
void CopyUnits(char16_t* to, const char16_t* from, int capacity);

// $XDG_DATA_HOME/quill, or ~/.local/share/quill, whether it exists or not.
std::string UserRoot();
// Makes the folder and all missing folders above it, each with mode 0700.
void MakeFolders(const std::string& path);

// The folder must exist; it is not created. "" selects the user's default root, which is made with
// mode 0700 if it is missing.
void SetDeviceRoot(const std::string& folder);
// An absolute path without a slash at its end. If no root has been set, sets the user's default
// one.
const std::string& DeviceRoot();
// "\mconfig.cfg" becomes ROOT/mconfig.cfg. ".." stops at the root. Null becomes "".
std::string DevicePath(LPCWSTR device_path);

enum class NetworkCall { kStartup, kSocket, kConnect, kHostLookup };

struct DialUpHost {
    const char* folder;   // holds the entries
    const char* program;  // calls an entry
    int patience;         // ms between asking the program to end and killing it
};

struct ServicesObserver {
    int (*network)(NetworkCall call) = nullptr;  // the WinSock error of the call; 0: no error
    int64_t (*system_time)() = nullptr;          // ms since 1970-01-01 UTC; below 0: the real time
    DialUpHost (*dial_up)() = nullptr;           // replaces the system's
};

inline ServicesObserver services_observer;

inline int ErrorOf(NetworkCall call) {
    return services_observer.network ? services_observer.network(call) : 0;
}

inline constexpr int kHangUpMilliseconds = 8000;

inline DialUpHost TheDialUpHost() {
    if (services_observer.dial_up) return services_observer.dial_up();
    return {"/etc/ppp/peers", "/usr/sbin/pppd", kHangUpMilliseconds};
}

#endif
