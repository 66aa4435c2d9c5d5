// SPDX-License-Identifier: MIT
// The system's own headers, as the adapter and the program see them.
#ifndef QUILL_PLATFORM_WIN32_SYSTEM_H
#define QUILL_PLATFORM_WIN32_SYSTEM_H

#ifndef UNICODE
#define UNICODE
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#define WIN32_LEAN_AND_MEAN
#define _WINSOCK_DEPRECATED_NO_WARNINGS

#include <winsock2.h>
// winsock2.h must come before windows.h, and ras.h after it.
#include <windows.h>
//
#include <commctrl.h>
#include <commdlg.h>
#include <prsht.h>
#include <ras.h>
#include <raserror.h>
#include <shellapi.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#endif
