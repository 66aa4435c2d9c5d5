#!/bin/sh
# SPDX-License-Identifier: MIT
# Prints how many instructions a key exchange of SSH-2, a megabyte of 3DES and a screen cost here and on
# the other processors, in optimised builds. QEMU's user mode runs all of them, also the build for this
# machine, and a plugin counts. The cost of a program that does nothing is subtracted.
# Usage: tests/devices/cost.sh [armel] [mips] [mipsel] [s390x]
set -eu
cd "$(dirname "$0")/../.."
for device; do
    case $device in
        armel | mips | mipsel | s390x) ;;
        *) echo "usage: tests/devices/cost.sh [armel] [mips] [mipsel] [s390x]" >&2 && exit 2 ;;
    esac
done
mkdir -p build
cc -O2 -Wall -Wextra -Werror -shared -fPIC -o build/count_instructions.so tests/devices/count_instructions.c

# instructions EMULATOR PROGRAM WORK: prints the count.
instructions() {
    $1 -plugin build/count_instructions.so "$2" "$3" 2>&1
}

cost_of() {
    nothing=$(instructions "$2" "$3" nothing)
    for work in exchange 3des screen; do
        echo "$1 $work $(($(instructions "$2" "$3" $work) - nothing))"
    done
}

# build_cost PRESET: builds device_cost.
build_cost() {
    cmake --preset "$1" -B "build/cost-$1" -DCMAKE_BUILD_TYPE=Release >/dev/null
    cmake --build "build/cost-$1" --target device_cost >/dev/null
}

build_cost release
cost_of this "qemu-$(uname -m)" build/cost-release/tests/devices/device_cost
for device; do
    build_cost "$device"
    case $device in armel) emulator="qemu-arm -cpu arm926" ;; *) emulator=qemu-$device ;; esac
    cost_of "$device" "$emulator" "build/cost-$device/tests/devices/device_cost"
done
