// SPDX-License-Identifier: MIT
// What the device uses of the desktop: its clipboard, for text only, and its viewer. The help
// viewer is the only program that can be started: it is the desktop's viewer with the help page
// that this program contains.
#include <QClipboard>
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QMimeData>
#include <QTemporaryFile>
#include <QUrl>

#include "platform/qt/services/services.h"
#include "platform/qt/window/window.h"

static bool g_open = false;
static HLOCAL g_lent = nullptr;  // the block that GetClipboardData returned

static void TakeBack() {
    if (g_lent) LocalFree(g_lent);
    g_lent = nullptr;
}

static std::u16string WithCarriageReturns(const std::u16string& text) {
    std::u16string lines;
    lines.reserve(text.size() + text.size() / 16);
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == u'\n' && (i == 0 || text[i - 1] != u'\r')) lines += u'\r';
        lines += text[i];
    }
    return lines;
}

static QString TextOf(HLOCAL block) {
    const auto* text = static_cast<const char16_t*>(LocalLock(block));
    const size_t units = LocalSize(block) / sizeof(char16_t);
    const size_t length = std::u16string_view(text, units).find(u'\0');
    const QString whole = QString::fromUtf16(text, static_cast<qsizetype>(std::min(length, units)));
    return QString(whole).replace("\r\n", "\n");
}

static HLOCAL BlockOf(const std::u16string& text) {
    const size_t bytes = (text.size() + 1) * sizeof(char16_t);
    const HLOCAL block = LocalAlloc(LMEM_MOVEABLE, bytes);
    if (block) memcpy(LocalLock(block), text.c_str(), bytes);
    return block;
}

BOOL OpenClipboard(HWND) {
    if (g_open) return FALSE;
    return g_open = true;
}

BOOL CloseClipboard() {
    if (!g_open) return FALSE;
    TakeBack();
    g_open = false;
    return TRUE;
}

BOOL EmptyClipboard() {
    if (!g_open) return FALSE;
    TakeBack();
    QGuiApplication::clipboard()->clear();
    return TRUE;
}

HANDLE SetClipboardData(UINT format, HANDLE block) {
    if (!g_open || format != CF_UNICODETEXT || !LocalLock(block)) return nullptr;
    QGuiApplication::clipboard()->setText(TextOf(block));
    LocalFree(block);
    return block;
}

// The toolkit offers a list of files as text too, but the program must not get it.
HANDLE GetClipboardData(UINT format) {
    if (!g_open || format != CF_UNICODETEXT) return nullptr;
    TakeBack();
    const QMimeData* content = QGuiApplication::clipboard()->mimeData();
    if (!content || !content->hasFormat("text/plain")) return nullptr;
    return g_lent = BlockOf(WithCarriageReturns(ToWide(content->text())));
}

extern "C" const uint8_t quill_help_page[];
extern "C" const uint8_t quill_help_page_end[];

static bool WritePage(QFile& file) {
    const auto size = static_cast<qint64>(quill_help_page_end - quill_help_page);
    return file.write(reinterpret_cast<const char*>(quill_help_page), size) == size && file.flush();
}

static QString PageInRoot() {
    QFile file(QString::fromStdString(DevicePath(u"\\telnet.htm")));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) return {};
    return WritePage(file) ? file.fileName() : QString();
}

// The file gets a name that nobody can take first, because others may write in that folder too.
static QString TemporaryPage() {
    QTemporaryFile file(QDir::tempPath() + "/quill-XXXXXX-telnet.htm");
    if (!file.open() || !WritePage(file)) return {};
    file.setAutoRemove(false);
    return file.fileName();
}

// The viewer needs a file that outlives this program. The file is in the device's root folder or,
// if that cannot be written, among the temporary files.
static bool ShowHelp(LPCWSTR page) {
    if (!page || CompareWithoutCase(page, u"telnet.htm") != 0) return false;
    QString path = PageInRoot();
    if (path.isEmpty()) path = TemporaryPage();
    return !path.isEmpty() && QDesktopServices::openUrl(QUrl::fromLocalFile(path));
}

BOOL CreateProcessW(LPCWSTR program, LPWSTR arguments, LPVOID, LPVOID, BOOL, DWORD, LPVOID, LPCWSTR,
                    LPVOID, PROCESS_INFORMATION* process) {
    if (!program || CompareWithoutCase(program, u"PegHelp.exe") != 0) return FALSE;
    if (process) *process = {};
    return ShowHelp(arguments);
}
