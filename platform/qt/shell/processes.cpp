// Starting other programs. This device has one: the help viewer, which is the desktop's own viewer
// on the page that the program carries.
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QTemporaryFile>
#include <QUrl>

#include "platform/qt/services/device_root.h"
#include "platform/qt/services/wide_text.h"
#include "platform/qt/window/slice.h"

extern "C" const uint8_t quill_help_page[];
extern "C" const uint8_t quill_help_page_end[];

namespace {

bool WritePage(QFile& file) {
    const auto size = static_cast<qint64>(quill_help_page_end - quill_help_page);
    return file.write(reinterpret_cast<const char*>(quill_help_page), size) == size && file.flush();
}

QString PageInRoot() {
    QFile file(QString::fromStdString(DevicePath(u"\\telnet.htm")));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) return {};
    return WritePage(file) ? file.fileName() : QString();
}

// Of a name that nobody can take first, as others may write in that folder too.
QString TemporaryPage() {
    QTemporaryFile file(QDir::tempPath() + "/quill-XXXXXX-telnet.htm");
    if (!file.open() || !WritePage(file)) return {};
    file.setAutoRemove(false);
    return file.fileName();
}

// A viewer needs a file that outlives this program. It lies in the device's root folder or, where
// nobody can write there, among the temporary files.
bool ShowHelp(LPCWSTR page) {
    if (!page || CompareWithoutCase(page, u"telnet.htm") != 0) return false;
    QString path = PageInRoot();
    if (path.isEmpty()) path = TemporaryPage();
    return !path.isEmpty() && QDesktopServices::openUrl(QUrl::fromLocalFile(path));
}

}  // namespace

BOOL CreateProcessW(LPCWSTR program, LPWSTR arguments, LPVOID, LPVOID, BOOL, DWORD, LPVOID, LPCWSTR,
                    LPVOID, PROCESS_INFORMATION* process) {
    if (!program || CompareWithoutCase(program, u"PegHelp.exe") != 0) return FALSE;
    if (process) *process = {};
    return ShowHelp(arguments);
}
