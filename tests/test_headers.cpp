// SPDX-License-Identifier: MIT
// GoogleTest's headers, compiled once for the test programs that do without the toolkit.
#include <gtest/gtest.h>
