// SPDX-License-Identifier: MIT
// Installs the hooks behind the observer of platform/qt/services.
#include "tests/support/services_test_hooks.h"

#include "platform/qt/services/services.h"

ServicesTestHooks services_test_hooks;

namespace {

constexpr int kSystemNotReady = 10091;
constexpr int kTooManySockets = 10024;
constexpr int kHostNotFound = 11001;

int ForcedError(NetworkCall call) {
    const ServicesTestHooks& hooks = services_test_hooks;
    switch (call) {
        case NetworkCall::kStartup:
            return hooks.fail_startup ? kSystemNotReady : 0;
        case NetworkCall::kSocket:
            return hooks.fail_socket ? kTooManySockets : 0;
        case NetworkCall::kConnect:
            return hooks.force_connect_error;
        case NetworkCall::kHostLookup:
            break;
    }
    services_test_hooks.host_lookups++;
    return hooks.fail_host_lookup ? kHostNotFound : 0;
}

int64_t SystemTime() { return services_test_hooks.system_time; }

DialUpHost DialUp() {
    const ServicesTestHooks& hooks = services_test_hooks;
    return {hooks.dial_up_folder.c_str(), hooks.dial_up_program.c_str(), hooks.dial_up_patience};
}

const bool g_installed = [] {
    services_observer = {ForcedError, SystemTime, DialUp};
    return true;
}();

}  // namespace
