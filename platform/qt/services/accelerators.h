// A table of accelerators as the resources hold it.
#ifndef QUILL_PLATFORM_QT_SERVICES_ACCELERATORS_H
#define QUILL_PLATFORM_QT_SERVICES_ACCELERATORS_H

#include <vector>

#include "windows_ce.h"

inline constexpr WORD kAcceleratorKey = 0x01;  // `key` is a virtual key, else a character
inline constexpr WORD kAcceleratorShift = 0x04;
inline constexpr WORD kAcceleratorControl = 0x08;
inline constexpr WORD kAcceleratorAlt = 0x10;

struct AcceleratorRow {
    WORD flags;
    WORD key;
    WORD command;
};

struct SliceAccelerators {
    std::vector<AcceleratorRow> rows;
};

#endif
