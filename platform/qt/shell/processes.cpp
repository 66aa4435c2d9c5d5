// Starting other programs. This device has one: the help viewer, which is the desktop's own viewer
// on the page that the program carries.
#include <QDesktopServices>
#include <QFile>
#include <QUrl>

#include "platform/qt/services/device_root.h"
#include "platform/qt/services/wide_text.h"
#include "platform/qt/window/slice.h"

extern "C" const uint8_t quill_help_page[];
extern "C" const uint8_t quill_help_page_end[];

namespace {

// A viewer needs a file; it lies in the device's root folder, which outlives this program.
bool WritePage(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) return false;
    const auto size = static_cast<qint64>(quill_help_page_end - quill_help_page);
    return file.write(reinterpret_cast<const char*>(quill_help_page), size) == size;
}

bool ShowHelp(LPCWSTR page) {
    if (!page || CompareWithoutCase(page, u"telnet.htm") != 0) return false;
    const QString path = QString::fromStdString(DevicePath(u"\\telnet.htm"));
    return WritePage(path) && QDesktopServices::openUrl(QUrl::fromLocalFile(path));
}

}  // namespace

BOOL CreateProcessW(LPCWSTR program, LPWSTR arguments, LPVOID, LPVOID, BOOL, DWORD, LPVOID, LPCWSTR,
                    LPVOID, PROCESS_INFORMATION* process) {
    if (!program || CompareWithoutCase(program, u"PegHelp.exe") != 0) return FALSE;
    if (process) *process = {};
    return ShowHelp(arguments);
}
