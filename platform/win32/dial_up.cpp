// SPDX-License-Identifier: MIT
// Remote access. Its library is large and few people dial, so it is loaded by the first call, and
// only from the system's folder.
#include "device.h"

template <typename Call>
static Call* RasCall(Call*, const char* name) {
    static const HMODULE library =
        LoadLibraryExW(L"rasapi32.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
    const FARPROC found = library ? GetProcAddress(library, name) : nullptr;
    return reinterpret_cast<Call*>(reinterpret_cast<void*>(found));
}

// Finds the call with that name; null on a system without remote access.
#define RAS_CALL(name) RasCall(static_cast<decltype(name)*>(nullptr), #name)

constexpr DWORD kHangUpLimit = 3000;  // milliseconds
constexpr DWORD kHangUpStep = 20;     // milliseconds

static HRASCONN dialled = nullptr;  // by the program, and not yet hung up

DWORD DeviceRasEnumEntries(LPWSTR reserved, LPWSTR phone_book, RASENTRYNAMEW* entries, DWORD* size,
                           DWORD* count) {
    const auto call = RAS_CALL(RasEnumEntriesW);
    return call ? call(reserved, phone_book, entries, size, count) : ERROR_MOD_NOT_FOUND;
}

DWORD DeviceRasGetEntryDialParams(LPCWSTR phone_book, RASDIALPARAMSW* parameters,
                                  BOOL* has_password) {
    const auto call = RAS_CALL(RasGetEntryDialParamsW);
    return call ? call(phone_book, parameters, has_password) : ERROR_MOD_NOT_FOUND;
}

DWORD DeviceRasDial(RASDIALEXTENSIONS* extensions, LPCWSTR phone_book, RASDIALPARAMSW* parameters,
                    DWORD notifier_type, LPVOID notifier, HRASCONN* connection) {
    const auto call = RAS_CALL(RasDialW);
    if (!call) return ERROR_MOD_NOT_FOUND;
    const DWORD error =
        call(extensions, phone_book, parameters, notifier_type, notifier, connection);
    dialled = connection ? *connection : nullptr;
    return error;
}

// The modem is free when its handle is no longer valid. Until then it would refuse another dial,
// and a program that ended would leave it in use.
static void AwaitFreeModem(HRASCONN connection) {
    const auto call = RAS_CALL(RasGetConnectStatusW);
    if (!call) return;
    RASCONNSTATUSW status = {};
    status.dwSize = sizeof(status);
    for (DWORD waited = 0; waited < kHangUpLimit; waited += kHangUpStep) {
        if (call(connection, &status) == ERROR_INVALID_HANDLE) return;
        Sleep(kHangUpStep);
    }
}

DWORD DeviceRasHangUp(HRASCONN connection) {
    const auto call = RAS_CALL(RasHangUpW);
    if (!call) return ERROR_MOD_NOT_FOUND;
    if (connection == dialled) dialled = nullptr;
    const DWORD error = call(connection);
    if (!error) AwaitFreeModem(connection);
    return error;
}

void HangUpWhatIsLeft() {
    if (dialled) DeviceRasHangUp(dialled);
}
