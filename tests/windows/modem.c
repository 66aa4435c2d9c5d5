/* SPDX-License-Identifier: MIT */
/* A remote access library with one entry, "office", for the system's folder of a prefix: a dial
   gets as far as the modem and stays there. What is asked of it is written to C:\modem.log. */
#include <stdio.h>
#include <string.h>
#include <windows.h>
//
#include <ras.h>
#include <raserror.h>

static void Note(const char* what) {
    FILE* log = fopen("C:\\modem.log", "a");
    if (!log) return;
    fprintf(log, "%s\n", what);
    fclose(log);
}

__declspec(dllexport) DWORD APIENTRY
    RasEnumEntriesW(LPCWSTR reserved, LPCWSTR book, LPRASENTRYNAMEW entries, LPDWORD size,
                    LPDWORD count) {
    (void)reserved, (void)book;
    const DWORD room = *size;
    *size = sizeof(RASENTRYNAMEW);
    *count = 1;
    if (!entries || room < sizeof(RASENTRYNAMEW)) return ERROR_BUFFER_TOO_SMALL;
    wcscpy(entries[0].szEntryName, L"office");
    return 0;
}

__declspec(dllexport) DWORD APIENTRY
    RasGetEntryDialParamsW(LPCWSTR book, LPRASDIALPARAMSW parameters, LPBOOL has_password) {
    (void)book;
    *has_password = FALSE;
    return wcscmp(parameters->szEntryName, L"office") ? ERROR_CANNOT_FIND_PHONEBOOK_ENTRY : 0;
}

__declspec(dllexport) DWORD APIENTRY
    RasDialW(LPRASDIALEXTENSIONS extensions, LPCWSTR book, LPRASDIALPARAMSW parameters, DWORD type,
             LPVOID notifier, LPHRASCONN connection) {
    (void)extensions, (void)book, (void)parameters;
    if (type != 0xFFFFFFFF) return ERROR_INVALID_PARAMETER;
    const UINT message = RegisterWindowMessageA(RASDIALEVENT);
    for (WPARAM state = RASCS_OpenPort; state <= RASCS_ConnectDevice; state++)
        PostMessageW((HWND)notifier, message, state, 0);
    *connection = (HRASCONN)(INT_PTR)0x1234;
    Note("dial");
    return 0;
}

static ULONGLONG hung_up;  // time of the hang-up, in milliseconds
static int busy_noted;

__declspec(dllexport) DWORD APIENTRY RasHangUpW(HRASCONN connection) {
    Note(connection == (HRASCONN)(INT_PTR)0x1234 ? "hang up" : "hang up of another one");
    hung_up = GetTickCount64();
    return 0;
}

/* The modem needs half a second to hang up. The first answer of each kind is written. */
__declspec(dllexport) DWORD APIENTRY
    RasGetConnectStatusW(HRASCONN connection, LPRASCONNSTATUSW status) {
    (void)connection, (void)status;
    if (GetTickCount64() - hung_up < 500) {
        if (!busy_noted) Note("busy");
        busy_noted = 1;
        return 0;
    }
    Note("free");
    return ERROR_INVALID_HANDLE;
}
