// SPDX-License-Identifier: MIT
// A desktop without a message bus: when the toolkit is told not to look for one.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <map>
#include <optional>
#include <string>

#include "platform/qt/host/mute_bus.h"
#include "tests/support/person.h"

namespace {

constexpr char kSession[] = "DBUS_SESSION_BUS_ADDRESS";

// The environment of one test; afterwards it is as before. Empty values are not set.
class Desktop {
  public:
    explicit Desktop(const std::map<const char*, std::string>& values) {
        for (const char* name : {kSession, "AT_SPI_BUS_ADDRESS", "XDG_RUNTIME_DIR", "PATH"}) {
            const char* value = std::getenv(name);
            before_[name] = value ? std::optional<std::string>(value) : std::nullopt;
            const auto wanted = values.find(name);
            Set(name, wanted == values.end() ? std::nullopt : std::optional(wanted->second));
        }
    }
    ~Desktop() {
        for (const auto& [name, value] : before_) Set(name, value);
    }

  private:
    static void Set(const char* name, const std::optional<std::string>& value) {
        value ? setenv(name, value->c_str(), 1) : unsetenv(name);
    }
    std::map<const char*, std::optional<std::string>> before_;
};

std::string SessionAfterwards() {
    LeaveMuteBuses();
    const char* value = std::getenv(kSession);
    return value ? value : "";
}

// A machine may have the launcher in the folders where it always is.
bool MachineHasLauncher() {
    return access("/usr/bin/dbus-launch", X_OK) == 0 || access("/bin/dbus-launch", X_OK) == 0;
}

}  // namespace

TEST(NoBus, IsNotLookedForWithoutALauncher) {
    const std::string folder = FreshRoot();
    const std::string expected = MachineHasLauncher() ? "" : "disabled:";
    {
        const Desktop desktop({});
        EXPECT_EQ(SessionAfterwards(), expected);
    }
    {
        const Desktop desktop({{"PATH", folder + ":" + folder}, {"XDG_RUNTIME_DIR", folder}});
        EXPECT_EQ(SessionAfterwards(), expected);
    }
    std::ofstream(folder + "/dbus-launch") << "cannot be executed\n";
    const Desktop desktop({{"PATH", folder}, {"XDG_RUNTIME_DIR", folder}});
    EXPECT_EQ(SessionAfterwards(), expected);
}

TEST(NoBus, ALauncherInPathIsLeftToLookForOne) {
    const std::string folder = FreshRoot();
    std::ofstream(folder + "/dbus-launch") << "#!/bin/sh\n";
    chmod((folder + "/dbus-launch").c_str(), 0700);
    for (const std::string& path : {folder, "/nowhere:" + folder, folder + ":/nowhere"}) {
        const Desktop desktop({{"PATH", path}, {"XDG_RUNTIME_DIR", folder}});
        EXPECT_EQ(SessionAfterwards(), "");
    }
}

TEST(NoBus, AnAddressAndASocketInTheUsualPlaceAreLeftToTheToolkit) {
    const std::string folder = FreshRoot();
    {
        const std::string address = "unix:path=" + folder + "/nobody";
        const Desktop desktop({{kSession, address}, {"PATH", folder}});
        EXPECT_EQ(SessionAfterwards(), address);
    }
    std::ofstream(folder + "/bus") << "no socket\n";
    const Desktop desktop({{"PATH", folder}, {"XDG_RUNTIME_DIR", folder}});
    EXPECT_EQ(SessionAfterwards(), "");
}
