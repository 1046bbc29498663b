#include "reader/reader.h"

#include "kit/touch_style.h"
#include "platform/desktop/single_instance.h"
#include "reader/application.h"
#include "res/strings.h"
#include "subscriptions/device.h"

#include <QApplication>
#include <QScreen>

#include <unistd.h>

#include <cstdio>
#include <mutex>
#include <optional>
#include <string_view>

namespace tidebrook {

namespace {

constexpr std::chrono::seconds forwardTimeout(15);
constexpr int usageStatus = 2;

constexpr char help[] = R"(Usage: tidebrook

Opens the reader of news feeds; a second start brings the running one forward.

  -h, --help      print this
  -V, --version   print the version

The device root is $TIDEBROOK_HOME, else $XDG_DATA_HOME/tidebrook, which usually
is ~/.local/share/tidebrook.
)";

// The exit status where the first argument leaves nothing to start.
int answer(std::string_view argument) {
    if (argument == "--help" || argument == "-h") {
        std::fputs(help, stdout);
        return 0;
    }
    if (argument == "--version" || argument == "-V") {
        std::puts("tidebrook " TIDEBROOK_VERSION);
        return 0;
    }
    std::fprintf(stderr, "tidebrook: it takes no \"%s\"; try 'tidebrook --help'\n",
                 argument.data());
    return usageStatus;
}

void prepareApplication() {
    QApplication::setApplicationName(QStringLiteral("tidebrook"));
    QApplication::setApplicationDisplayName(resourceString(programNameString));
    QApplication::setApplicationVersion(QStringLiteral(TIDEBROOK_VERSION));
    QGuiApplication::setDesktopFileName(QStringLiteral("tidebrook"));
    // The category list alone ends the screens, which run in nested loops.
    QApplication::setQuitOnLastWindowClosed(false);
}

void makeDevice(const DeviceRoot &device) {
    // Where this fails, the screens find no device and say so.
    if (device.isDevice() || provisionDevice(device))
        device.makeFolders();
}

/// A start of the reader, up to the making of its window.
class Start {
public:
    /// False when another reader of the device runs: this start is over.
    bool claim();
    /// Makes the application. Where there is no display the program ends in here, without a word.
    void makeApplication(std::optional<QApplication> &application, int &argc, char **argv);
    bool isRunningElsewhere() const { return SingleInstance::isRunning(device_); }

    std::optional<SingleInstance> single;
    std::optional<DeviceOpening> opening; ///< none when another reader runs

private:
    static void take(QtMsgType type, const QMessageLogContext &context, const QString &text);
    static void go();

    static inline Start *current = nullptr;

    const DeviceRoot device_ = DeviceRoot::standard();
    QtMessageHandler handler_ = nullptr;
    std::mutex mutex_; // guards this: a plugin may have threads
    QByteArray said_;  // by Qt, before the display was there
};

bool Start::claim() {
    if (!single)
        single.emplace(device_);
    const SingleInstance::Claim claim = single->claim(forwardTimeout);
    if (claim == SingleInstance::Claim::NoAnswer)
        std::fputs("tidebrook: it runs already, but does not answer\n", stderr);
    return claim == SingleInstance::Claim::Mine || claim == SingleInstance::Claim::Failed;
}

void Start::makeApplication(std::optional<QApplication> &application, int &argc, char **argv) {
    current = this;
    handler_ = qInstallMessageHandler(take);
    qAddPreRoutine(go);
    application.emplace(argc, argv);
}

// Qt says why there is no display, and aborts.
void Start::take(QtMsgType type, const QMessageLogContext &context, const QString &text) {
    if (type == QtFatalMsg)
        ::_exit(0);
    const std::lock_guard guard(current->mutex_);
    current->said_ += qFormatLogMessage(type, context, text).toLocal8Bit() + '\n';
}

// The display is there now. The device opens while the rest of the application is made.
void Start::go() {
    if (QGuiApplication::screens().isEmpty())
        ::_exit(0);
    qInstallMessageHandler(current->handler_);
    {
        const std::lock_guard guard(current->mutex_);
        std::fputs(current->said_.constData(), stderr);
    }
    makeDevice(current->device_);
    if (current->claim())
        current->opening.emplace(current->device_);
}

} // namespace

int runReader(int argc, char **argv) {
    if (argc > 1)
        return answer(argv[1]);
    Start start;
    if (start.isRunningElsewhere() && !start.claim())
        return 0;
    prepareApplication();
    std::optional<QApplication> application;
    start.makeApplication(application, argc, argv);
    if (!start.opening)
        return 0;
    installTouchStyle(); // over that of the desktop, which is known now
    Application reader(*start.opening, *start.single);
    reader.InitInstance();
    return 0;
}

} // namespace tidebrook
