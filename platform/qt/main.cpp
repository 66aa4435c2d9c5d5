// SPDX-License-Identifier: MIT
// The main program of the desktop version. It reads the host's options, opens the device (the
// window that plays the hand-held's screen) and runs Quill on it until Quill ends or a signal ends
// it.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <csignal>

#include <cerrno>
#include <map>
#include <optional>
#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QMessageBox>
#include <QScreen>
#include <QSemaphore>
#include <QSessionManager>
#include <QSocketNotifier>
#include <QThread>
#include <QTimer>

#include "platform/qt/dialog/dialogs.h"
#include "platform/qt/host/command_line.h"
#include "platform/qt/host/host.h"
#include "platform/qt/host/mute_bus.h"
#include "platform/qt/host/profiles.h"
#include "platform/qt/services/services.h"
#include "platform/qt/shell/shell.h"
#include "platform/qt/terminal_source.h"
#include "platform/qt/window/device_screen.h"
#include "windows_ce.h"

static int g_noted[2] = {-1, -1};

static void Note(int) {
    const int before = errno;
    [[maybe_unused]] const ssize_t written = write(g_noted[1], "", 1);
    errno = before;
}

// A signal that the parent process ignores, as nohup does, stays ignored.
static void Watch(int number) {
    struct sigaction action = {};
    if (sigaction(number, nullptr, &action) != 0 || action.sa_handler == SIG_IGN) return;
    action = {};
    action.sa_handler = Note;
    action.sa_flags = SA_RESTART | static_cast<int>(SA_RESETHAND);
    sigaction(number, &action, nullptr);
}

void EndBySignals() {
    if (pipe2(g_noted, O_CLOEXEC | O_NONBLOCK) != 0) return;
    auto* notifier = new QSocketNotifier(g_noted[0], QSocketNotifier::Read, qApp);
    QObject::connect(notifier, &QSocketNotifier::activated, qApp, [notifier] {
        notifier->setEnabled(false);
        PostQuitMessage(0);
    });
    for (const int number : {SIGHUP, SIGINT, SIGTERM}) Watch(number);
}

// Variables that this file and LeaveMuteBuses set for the toolkit alone.
static const char* const kToolkitVariables[] = {"QT_SCALE_FACTOR", "QT_IM_MODULE", kBusVariables[0],
                                                kBusVariables[1]};

using Variables = std::map<const char*, std::optional<QByteArray>>;

static Variables ToolkitVariables() {
    Variables values;
    for (const char* name : kToolkitVariables)
        values[name] =
            qEnvironmentVariableIsSet(name) ? std::optional(qgetenv(name)) : std::nullopt;
    return values;
}

// The programs that this one starts get the values that it was started with.
static void RestoreVariables(const Variables& values) {
    for (const auto& [name, value] : values) value ? qputenv(name, *value) : qunsetenv(name);
}

constexpr double kUsualScale = 2;  // makes the device's small pixels readable on a desktop
constexpr int kTitleBarPixels = 40;
constexpr double kScaleStep = 0.25;
constexpr int kLookMilliseconds = 100;
constexpr int kQuietMilliseconds = 1000;
constexpr int kLongestMilliseconds = 15000;

static bool WriteText(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly)) return false;
    QString text;
    for (const Window* window : AllWindows()) {
        for (const QString& line : ScreenText(window->handle)) text += line + '\n';
    }
    const QByteArray bytes = text.toUtf8();
    return file.write(bytes) == bytes.size() && file.flush();
}

static void TellUnwritten(const QString& path) {
    std::fprintf(stderr, "quill: cannot write %s\n", Printable(path.toStdString()).c_str());
}

// A path that is empty is not written.
static bool WriteBoth(const HostOptions& options) {
    const bool picture =
        options.snapshot.isEmpty() || DeviceScreen()->grab().save(options.snapshot);
    const bool text = options.text.isEmpty() || WriteText(options.text);
    if (!picture) TellUnwritten(options.snapshot);
    if (!text) TellUnwritten(options.text);
    return picture && text;
}

// Waits until the session paints no more, at most 15 seconds; then writes its picture and its text,
// and quits.
static void WatchForRest(const HostOptions& options) {
    auto* timer = new QTimer(qApp);
    QElapsedTimer started;
    started.start();
    KeepScreenText();
    AnswerMessageBoxes(true);
    QObject::connect(timer, &QTimer::timeout, timer, [=, last = -1, quiet = 0]() mutable {
        const int paints = PaintsKept();
        quiet = paints == last ? quiet + timer->interval() : 0;
        last = paints;
        const bool rest = quiet >= kQuietMilliseconds && paints > 0;
        if (!rest && started.elapsed() < kLongestMilliseconds) return;
        timer->stop();
        PostQuitMessage(WriteBoth(options) ? 0 : 1);
    });
    timer->start(kLookMilliseconds);
}

// Returns the largest scale, at most the usual one, at which the whole device fits on the desktop.
// The caller has already set the usual scale, so the desktop's size is in units of that.
static double ScaleThatFits(const QSize& device) {
    const QSizeF room = QSizeF(QGuiApplication::primaryScreen()->availableSize()) * kUsualScale;
    double scale = kUsualScale;
    while (scale > 1 && (device.width() * scale > room.width() ||
                         device.height() * scale + kTitleBarPixels > room.height()))
        scale -= kScaleStep;
    return scale;
}

static const char* const kChosenScale = "QUILL_CHOSEN_SCALE";

// The toolkit reads its scale only when it starts, so the program executes itself again with
// another one. A variable holds that, so that the arguments remain those of the user.
static void StartAgain(const std::vector<char*>& arguments, double scale) {
    qputenv(kChosenScale, QByteArray::number(scale));
    execv("/proc/self/exe", arguments.data());
    qunsetenv(kChosenScale);
}

// Returns the scale that the program has chosen before it executed itself again, or 0.
static double TakeChosenScale() {
    const double scale = qgetenv(kChosenScale).toDouble();
    qunsetenv(kChosenScale);
    return scale >= 1 && scale <= kUsualScale ? scale : 0;
}

// The input method that the toolkit takes on Wayland by itself crashes in an empty text field if
// the compositor has no input device. This one, which it takes on X, does not.
static void ChooseInputMethod() {
    if (!qEnvironmentVariableIsSet("QT_IM_MODULE")) qputenv("QT_IM_MODULE", "compose");
}

// Without a display the toolkit would abort with a core dump. Its platforms that need no display
// are named by an option or by QT_QPA_PLATFORM.
static bool IsDisplayNamed(int argc, char** argv) {
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        if (!qEnvironmentVariableIsEmpty(name)) return true;
    for (int i = 1; i < argc; ++i)
        if (std::strstr(argv[i], "-platform") || std::strstr(argv[i], "-display")) return true;
    return false;
}

// As other programs do, takes the first display of Wayland if nothing names one. Programs that this
// one starts get that name, too.
static void NameFirstDisplay(int argc, char** argv) {
    if (IsDisplayNamed(argc, argv)) return;
    const QByteArray folder = qgetenv("XDG_RUNTIME_DIR");
    struct stat socket = {};
    if (folder.isEmpty() || stat((folder + "/wayland-0").constData(), &socket) != 0) return;
    if (S_ISSOCK(socket.st_mode)) qputenv("WAYLAND_DISPLAY", "wayland-0");
}

static QtMessageHandler g_usual_messages = nullptr;
static void (*g_save)() = nullptr;  // while the program runs

static void SaveAtLoss() {
    if (g_save) g_save();
    EndDialUps();
}

// The window thread may wait for the lost display, so it is not waited for without end.
static void SaveByWindowThread() {
    constexpr int kPatience = 3000;  // milliseconds
    static QSemaphore saved;
    const auto save = [] {
        SaveAtLoss();
        saved.release();
    };
    QMetaObject::invokeMethod(qApp, save, Qt::QueuedConnection);
    saved.tryAcquire(1, kPatience);
}

// A toolkit that cannot start says why, and would then abort with a core dump. A toolkit that has
// lost its display says that, and then ends the process. That end can crash while a screen reader
// listens, so it is not waited for.
static void EndOnLastMessage(QtMsgType type, const QMessageLogContext& place, const QString& text) {
    g_usual_messages(type, place, text);
    if (type != QtFatalMsg && !text.contains("connection broke")) return;
    const bool own = !qApp || QThread::currentThread() == qApp->thread();
    own ? SaveAtLoss() : SaveByWindowThread();
    _exit(1);
}

static void SetScale(double scale) { qputenv("QT_SCALE_FACTOR", QByteArray::number(scale)); }

static bool MakeSettingsFolder(const CommandLine& line) {
    if (!line.profile.empty()) MakeFolders(line.options.root);
    return MakeRoot(line.options.root);
}

// X servers take the window's class from the program's name.
static void NameAfterProfile(char** argv, const std::string& profile) {
    static std::string name;
    name = "quill-" + profile;
    if (!profile.empty()) argv[0] = name.data();
}

// Wayland's compositors tell windows apart by this name. On X it names the entry in the menu, whose
// icon a profile's window has too.
static void NameEntry(const std::string& profile) {
    const bool own = !profile.empty() && QGuiApplication::platformName().startsWith("wayland");
    QGuiApplication::setDesktopFileName(own ? "quill-" + QString::fromStdString(profile) : "quill");
}

// The place is kept only for ordinary windows: not with --screen, which sets the size, and not when
// a picture or the text is wanted.
static bool KeepsPlace(const HostOptions& options) {
    return options.screen.isEmpty() && !WantsFile(options);
}

static void SavePlaceAndSettings() {
    ReleaseRegistry();
    SaveWindowPlace();
    SaveLoadedSettings();
}

static void SaveSettingsOnly() {
    ReleaseRegistry();
    SaveLoadedSettings();
}

// Not every session manager goes to the folder that the program was started in.
static QStringList GivenCommand(const std::vector<char*>& given) {
    QStringList command{QCoreApplication::applicationFilePath()};
    for (size_t i = 1; i < given.size() && given[i]; ++i) {
        const bool root = command.back() == "--root";
        command << (root ? QString::fromStdString(DeviceRoot()) : QString(given[i]));
    }
    return command;
}

// At the end of the desktop's session on X, the session's manager asks for what is to be saved, and
// starts the program in the next session with the same arguments.
static void FollowSession(const std::vector<char*>& given) {
    QObject::connect(qApp, &QGuiApplication::commitDataRequest, qApp, [] {
        if (g_save) g_save();
    });
    QObject::connect(qApp, &QGuiApplication::saveStateRequest, qApp, [=](QSessionManager& manager) {
        QStringList again = GivenCommand(given);
        const auto session = again.indexOf("-session");
        if (session > 0) again.remove(session, std::min<qsizetype>(2, again.size() - session));
        again.insert(1, manager.sessionId());
        again.insert(1, "-session");  // not behind a host or --
        manager.setRestartCommand(again);
        manager.setManagerProperty("CurrentDirectory", QDir::currentPath());
    });
}

namespace {

class Application : public QApplication {
  public:
    using QApplication::QApplication;
    bool event(QEvent* event) override {
        if (event->type() == QEvent::Quit) return PostQuitMessage(0), true;
        return QApplication::event(event);
    }
};

}  // namespace

static void TellIfReadOnly() {
    if (access(DeviceRoot().c_str(), W_OK) == 0) return;
    std::fprintf(stderr, "quill: %s cannot be written; the settings of this run are not kept\n",
                 Printable(DeviceRoot()).c_str());
}

static int RunProgram(const CommandLine& line) {
    const HostOptions& options = line.options;
    g_save = KeepsPlace(options) ? SavePlaceAndSettings : SaveSettingsOnly;
    TellIfReadOnly();
    if (!line.target.host.empty()) ConnectThisRun(line.target);
    MarkWindow(line.profile);
    if (KeepsPlace(options)) RestoreWindowPlace();
    if (WantsFile(options)) WatchForRest(options);
    EndBySignals();
    ServeTerminalText();
    HoldRegistry();  // for the load of the settings, until the first wait for a message
    QTimer::singleShot(0, qApp, ReleaseRegistry);
    const int result = WinMain(nullptr, nullptr, nullptr, SW_SHOW);
    g_save = nullptr;
    if (KeepsPlace(options)) SaveWindowPlace();
    return result;
}

// The toolkit's end of its connection to Wayland can wait for its own thread forever, when the
// program is ended right after its start. Everything is saved and closed, so the process ends
// without it.
static int EndProcess(int result) {
    if (DesktopTellsPlaces()) return result;
    std::fflush(nullptr);
    _exit(result);
}

// A desktop that follows a link has nobody who reads stderr.
static bool IsFollowedLink(const std::vector<char*>& arguments) {
    return arguments.size() == 3 && std::strstr(arguments[1], "://") && !isatty(STDERR_FILENO);
}

// Exit code 2, whatever the toolkit says.
static int RefuseCommandLine(std::vector<char*> given) {
    int count = 1;
    NameFirstDisplay(count, given.data());
    if (!IsFollowedLink(given) || !IsDisplayNamed(count, given.data())) return 2;
    LeaveMuteBuses();
    ChooseInputMethod();
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString&) {
        if (type == QtFatalMsg) _exit(2);
    });
    QApplication application(count, given.data());
    QMessageBox box(QMessageBox::Warning, "Quill Telnet", QString::fromStdString(LastComplaint()));
    box.setTextFormat(Qt::PlainText);
    box.exec();
    return EndProcess(2);
}

// A second start shows the window that is open; one that asks for a host or a file is refused.
static int RunUnlessBusy(const CommandLine& line) {
    const bool asks = !line.target.host.empty() || WantsFile(line.options);
    if (asks && IsProfileBusy(line)) return 1;
    if (!asks) TellIfSizeIsKept(line.options);
    return RunProgram(line);
}

int main(int argc, char** argv) {
    std::vector<char*> given(argv, argv + argc + 1);
    CommandLine line;
    if (!TakeCommandLine(&argc, argv, &line)) return RefuseCommandLine(given);
    if (line.task != Task::kRun) return DoTask(line);
    const HostOptions& options = line.options;
    NameFirstDisplay(argc, argv);
    if (!IsDisplayNamed(argc, argv)) {
        std::fputs("quill: there is no display (DISPLAY and WAYLAND_DISPLAY are empty)\n", stderr);
        return 1;
    }
    const Variables variables = ToolkitVariables();
    const double wanted = options.scale > 0 ? options.scale : TakeChosenScale();
    const bool choose = wanted == 0 && qEnvironmentVariableIsEmpty("QT_SCALE_FACTOR");
    if (choose || wanted > 0) SetScale(choose ? kUsualScale : wanted);
    NameAfterProfile(argv, line.profile);
    QApplication::setApplicationName("quill");
    QApplication::setApplicationDisplayName("");
    QApplication::setHighDpiScaleFactorRoundingPolicy(
        Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);

    LeaveMuteBuses();
    ChooseInputMethod();
    g_usual_messages = qInstallMessageHandler(EndOnLastMessage);
    Application application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    NameEntry(line.profile);
    FollowSession(given);
    if (!MakeSettingsFolder(line)) return EndProcess(2);
    OpenDevice(options);
    RestoreVariables(variables);
    const double scale = choose ? ScaleThatFits(DeviceScreen()->size()) : kUsualScale;
    if (scale != kUsualScale) StartAgain(given, scale);
    const int result = RunUnlessBusy(line);
    CloseDevice();
    return EndProcess(result);
}
