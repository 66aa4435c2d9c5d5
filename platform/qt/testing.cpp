// What tests may refuse the program.
#include "platform/qt/testing.h"

namespace {

std::u16string g_refused;

}  // namespace

void RefuseWindows(LPCWSTR class_name) { g_refused = class_name ? class_name : u""; }

bool WindowRefused(LPCWSTR class_name) { return !g_refused.empty() && g_refused == class_name; }

void ForgetRecords() {
    g_refused.clear();
    ForgetDialogs();
    TakeLibrariesAway(false);
}
