# SPDX-License-Identifier: MIT
# Toolchain: tests for a processor other than this machine's, which QEMU's user mode runs. QUILL_DEVICE
# names the processor: armel (ARMv5TE without floating point), mips (big-endian, 32 bits),
# mipsel, s390x (big-endian, 64 bits). Everything is linked in, so a program needs no library of its own
# machine.
set(QUILL_DEVICE "" CACHE STRING "Processor to build the tests for: armel, mips, mipsel or s390x")
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES QUILL_DEVICE)
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR ${QUILL_DEVICE})

set(device_compiler_armel arm-linux-gnueabi)
set(device_compiler_mips mips-linux-gnu)
set(device_compiler_mipsel mipsel-linux-gnu)
set(device_compiler_s390x s390x-linux-gnu)
set(device_emulator_armel qemu-arm -cpu arm926)
set(device_emulator_mips qemu-mips)
set(device_emulator_mipsel qemu-mipsel)
set(device_emulator_s390x qemu-s390x)

set(CMAKE_C_COMPILER ${device_compiler_${QUILL_DEVICE}}-gcc)
set(CMAKE_CXX_COMPILER ${device_compiler_${QUILL_DEVICE}}-g++)
set(CMAKE_CROSSCOMPILING_EMULATOR ${device_emulator_${QUILL_DEVICE}})
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")

set(CMAKE_FIND_ROOT_PATH /usr/${device_compiler_${QUILL_DEVICE}})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
