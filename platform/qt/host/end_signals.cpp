// A signal may come in the middle of anything, so it is only noted; the window thread acts on it.
#include "platform/qt/host/end_signals.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <QApplication>
#include <QSocketNotifier>

#include "windows_ce.h"

namespace {

int g_noted[2] = {-1, -1};

void Note(int) {
    const int before = errno;
    [[maybe_unused]] const ssize_t written = write(g_noted[1], "", 1);
    errno = before;
}

// What a parent ignores, as nohup does, stays ignored.
void Watch(int number) {
    struct sigaction action = {};
    if (sigaction(number, nullptr, &action) != 0 || action.sa_handler == SIG_IGN) return;
    action = {};
    action.sa_handler = Note;
    action.sa_flags = SA_RESTART | static_cast<int>(SA_RESETHAND);
    sigaction(number, &action, nullptr);
}

}  // namespace

void EndBySignals() {
    if (pipe2(g_noted, O_CLOEXEC | O_NONBLOCK) != 0) return;
    auto* notifier = new QSocketNotifier(g_noted[0], QSocketNotifier::Read, qApp);
    QObject::connect(notifier, &QSocketNotifier::activated, qApp, [notifier] {
        notifier->setEnabled(false);
        PostQuitMessage(0);
    });
    for (const int number : {SIGHUP, SIGINT, SIGTERM}) Watch(number);
}
