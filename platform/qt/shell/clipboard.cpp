// The clipboard: the desktop's, with text alone.
#include <QClipboard>
#include <QMimeData>

#include "platform/qt/window/slice.h"

namespace {

bool g_open = false;
HLOCAL g_lent = nullptr;  // what GetClipboardData gave out

void TakeBack() {
    if (g_lent) LocalFree(g_lent);
    g_lent = nullptr;
}

std::u16string WithCarriageReturns(const std::u16string& text) {
    std::u16string lines;
    lines.reserve(text.size() + text.size() / 16);
    for (size_t i = 0; i < text.size(); i++) {
        if (text[i] == u'\n' && (i == 0 || text[i - 1] != u'\r')) lines += u'\r';
        lines += text[i];
    }
    return lines;
}

QString TextOf(HLOCAL block) {
    const auto* text = static_cast<const char16_t*>(LocalLock(block));
    const size_t units = LocalSize(block) / sizeof(char16_t);
    const size_t length = std::u16string_view(text, units).find(u'\0');
    const QString whole = QString::fromUtf16(text, static_cast<qsizetype>(std::min(length, units)));
    return QString(whole).replace("\r\n", "\n");
}

HLOCAL BlockOf(const std::u16string& text) {
    const size_t bytes = (text.size() + 1) * sizeof(char16_t);
    const HLOCAL block = LocalAlloc(LMEM_MOVEABLE, bytes);
    if (block) memcpy(LocalLock(block), text.c_str(), bytes);
    return block;
}

}  // namespace

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

// A list of files is text for the toolkit too, but not for the program.
HANDLE GetClipboardData(UINT format) {
    if (!g_open || format != CF_UNICODETEXT) return nullptr;
    TakeBack();
    const QMimeData* content = QGuiApplication::clipboard()->mimeData();
    if (!content || !content->hasFormat("text/plain")) return nullptr;
    return g_lent = BlockOf(WithCarriageReturns(ToWide(content->text())));
}
