#!/bin/sh
# SPDX-License-Identifier: MIT
# Prints how many instructions a key exchange of SSH-2, a megabyte of 3DES and a screen cost here and on
# the other processors, built with the optimiser: QEMU's user mode runs all of them, this machine's own code too,
# and a plugin of it counts. What the program costs that does nothing is taken off.
# Usage: tests/devices/cost.sh PROCESSOR...
set -eu
cd "$(dirname "$0")/../.."
mkdir -p build
cc -O2 -Wall -Wextra -Werror -shared -fPIC -o build/count_instructions.so tests/devices/count_instructions.c

# instructions EMULATOR PROGRAM WORK
instructions() {
    $1 -plugin build/count_instructions.so "$2" "$3" 2>&1
}

cost_of() {
    nothing=$(instructions "$2" "$3" nothing)
    for work in exchange 3des screen; do
        echo "$1 $work $(($(instructions "$2" "$3" $work) - nothing))"
    done
}

# build_cost PRESET
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
