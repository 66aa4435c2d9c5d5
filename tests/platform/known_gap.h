// SPDX-License-Identifier: MIT
// Marks for tests that are known to fail on one of the systems. A marked test that fails counts as
// skipped, with the reason; a marked test that passes is an error, so that no mark outlives its
// gap. The mark is the first statement of the test.
#ifndef QUILL_TESTS_PLATFORM_KNOWN_GAP_H
#define QUILL_TESTS_PLATFORM_KNOWN_GAP_H

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>

// The system on which these tests run; the main file of each platform defines it.
struct TestPlatform {
    bool slice;    // the slice on a Linux desktop
    bool windows;  // the calls of Windows and the adapter
    bool wine;     // the same, run by Wine
};
TestPlatform PlatformOfTests();

class KnownGap {
  public:
    KnownGap(bool here, const std::string& reason);
    ~KnownGap();
    KnownGap(const KnownGap&) = delete;
    KnownGap& operator=(const KnownGap&) = delete;

  private:
    std::string reason_;
    testing::TestPartResultArray results_;
    std::optional<testing::ScopedFakeTestPartResultReporter> reporter_;
};

#define KNOWN_GAP_ON_SLICE(reason) const KnownGap known_gap(PlatformOfTests().slice, reason)
#define KNOWN_GAP_ON_WINDOWS(reason) const KnownGap known_gap(PlatformOfTests().windows, reason)
#define KNOWN_GAP_ON_WINE(reason) const KnownGap known_gap(PlatformOfTests().wine, reason)

#endif
