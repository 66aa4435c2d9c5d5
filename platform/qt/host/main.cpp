// The desktop program: reads the host's options, opens the device and runs the program on it.
#include <unistd.h>
#include <QElapsedTimer>
#include <QFile>
#include <QScreen>
#include <QTimer>

#include "platform/qt/host/end_signals.h"
#include "platform/qt/host/host.h"
#include "platform/qt/host/screen_text.h"
#include "platform/qt/host/terminal_source.h"
#include "platform/qt/testing.h"

namespace {

constexpr double kUsualScale = 2;  // the device's small pixels, readable on a desktop
constexpr int kTitleBarPixels = 40;
constexpr int kQuietMilliseconds = 1000;
constexpr int kLongestMilliseconds = 15000;

bool WriteText(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly)) return false;
    QString text;
    for (const Window* window : AllWindows()) {
        for (const QString& line : ScreenText(window->handle)) text += line + '\n';
    }
    const QByteArray bytes = text.toUtf8();
    return file.write(bytes) == bytes.size() && file.flush();
}

// Nothing is written where no path was given.
bool WriteBoth(const HostOptions& options) {
    const bool picture =
        options.snapshot.isEmpty() || DeviceScreen()->grab().save(options.snapshot);
    const bool text = options.text.isEmpty() || WriteText(options.text);
    if (!picture) std::fprintf(stderr, "quill: cannot write %s\n", qPrintable(options.snapshot));
    if (!text) std::fprintf(stderr, "quill: cannot write %s\n", qPrintable(options.text));
    return picture && text;
}

// A picture and the text of a session that has come to rest, and then the end.
void WatchForRest(const HostOptions& options) {
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
    timer->start(100);
}

// The largest scale up to the usual one that leaves the whole device on the desktop; asked while
// the usual one is in force.
double ScaleThatFits(const QSize& device) {
    const QSizeF room = QSizeF(QGuiApplication::primaryScreen()->availableSize()) * kUsualScale;
    double scale = kUsualScale;
    while (scale > 1 && (device.width() * scale > room.width() ||
                         device.height() * scale + kTitleBarPixels > room.height()))
        scale -= 0.25;
    return scale;
}

// The toolkit reads its scale once, when it starts; for another one the program starts again.
void StartAgain(std::vector<char*> arguments, double scale) {
    std::string option = "--scale", value = QByteArray::number(scale).toStdString();
    arguments.insert(arguments.begin() + 1, {option.data(), value.data()});
    execv("/proc/self/exe", arguments.data());
}

// The toolkit itself would end with a core dump. Other platforms of its need no display.
bool IsDisplayNamed(int argc, char** argv) {
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        if (!qEnvironmentVariableIsEmpty(name)) return true;
    for (int i = 1; i < argc; i++)
        if (std::strstr(argv[i], "-platform") || std::strstr(argv[i], "-display")) return true;
    return false;
}

void SetScale(double scale) { qputenv("QT_SCALE_FACTOR", QByteArray::number(scale)); }

}  // namespace

int main(int argc, char** argv) {
    std::vector<char*> given(argv, argv + argc + 1);
    HostOptions options;
    if (!TakeHostOptions(&argc, argv, &options)) return 2;
    if (options.help) return TellUsage(stdout), 0;
    if (!MakeRoot(options.root)) return 2;
    if (!IsDisplayNamed(argc, argv)) {
        std::fputs("quill: there is no display (DISPLAY and WAYLAND_DISPLAY are empty)\n", stderr);
        return 1;
    }
    const bool choose = options.scale == 0 && qEnvironmentVariableIsEmpty("QT_SCALE_FACTOR");
    if (choose || options.scale > 0) SetScale(choose ? kUsualScale : options.scale);
    QApplication::setApplicationName("quill");
    QApplication::setApplicationDisplayName("");
    QApplication::setHighDpiScaleFactorRoundingPolicy(
        Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);

    QApplication application(argc, argv);
    if (argc > 1) {
        std::fprintf(stderr, "quill: %s is no option\n", argv[1]);
        TellUsage(stderr);
        return 2;
    }
    QApplication::setQuitOnLastWindowClosed(false);
    OpenDevice(options);
    const double scale = choose ? ScaleThatFits(DeviceScreen()->size()) : kUsualScale;
    if (scale != kUsualScale) StartAgain(given, scale);
    if (!options.snapshot.isEmpty() || !options.text.isEmpty()) WatchForRest(options);
    EndBySignals();
    ServeTerminalText();
    const int result = WinMain(nullptr, nullptr, nullptr, SW_SHOW);
    CloseDevice();
    return result;
}
