# SPDX-License-Identifier: MIT
# Toolchain: the program for 64-bit Windows, built on Linux (g++-mingw-w64-x86-64), or for 32-bit
# Windows by way of windows32.cmake. Everything but the system's own DLLs is linked in. The thread
# model is the one whose run-time library knows std::thread, which GoogleTest wants.
if(NOT DEFINED QUILL_WINDOWS_CPU)
    set(QUILL_WINDOWS_CPU x86_64)
endif()
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR ${QUILL_WINDOWS_CPU})

set(CMAKE_C_COMPILER ${QUILL_WINDOWS_CPU}-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER ${QUILL_WINDOWS_CPU}-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER ${QUILL_WINDOWS_CPU}-w64-mingw32-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${QUILL_WINDOWS_CPU}-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
