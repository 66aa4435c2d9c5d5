# SPDX-License-Identifier: MIT
# Toolchain: the program for 32-bit Windows (g++-mingw-w64-i686); see windows.cmake.
set(QUILL_WINDOWS_CPU i686)
include(${CMAKE_CURRENT_LIST_DIR}/windows.cmake)
