#include "platform/desktop/service.h"
#include "platform/sync/process_lock.h"
#include "res/strings.h"
#include "service/detach.h"
#include "service/downloader.h"
#include "service/service_log.h"
#include "store/settings_store.h"

#include <QCommandLineParser>

#include <fcntl.h>
#include <malloc.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <optional>

namespace tidebrook {

namespace {

enum ExitStatus { ExitEnded = 0, ExitFailed = 1, ExitUsage = 2, ExitNoDevice = 3 };

constexpr char help[] = R"(Usage: feedlarkd [--home DIR] [--foreground] [--verbose]

Tidebrook's background downloader: answers the requests of the reader, and keeps
the channels of the automatic list up to date as the settings say. One runs for
each device; a second one ends at once.

  --home DIR     the device root; else $TIDEBROOK_HOME or $XDG_DATA_HOME/tidebrook
  --foreground   stay in the foreground and log to standard error; else the log is
                 run/feedlarkd.log below the device root
  --verbose      log every channel
  --help         print this
  --version      print the version

SIGTERM and SIGINT end it, also in the middle of a download.
Exit status: 0 ended or already running, 1 failed, 2 wrong usage, 3 no device.
)";

struct Options {
    DeviceRoot root = DeviceRoot::standard();
    bool isForeground = false;
    bool isVerbose = false;
};

int fail(const QString &message) {
    std::fprintf(stderr, "feedlarkd: %s\n", qUtf8Printable(message));
    return ExitFailed;
}

int runService(const Options &options) {
    Detachment detachment;
    if (!options.isForeground && !detachment.begin())
        return fail(QStringLiteral("there is no process to go into the background"));
    ServiceLog log(options.isVerbose, !options.isForeground);
    std::signal(SIGPIPE, SIG_IGN);   // writing to a server that hangs up fails instead
    mallopt(M_ARENA_MAX, 2);         // threads come and go here, and none is in a hurry for memory
    std::optional<ProcessLock> lock; // released last, when nothing is under way any more
    Interrupt interrupt;
    std::optional<TerminationSignals> termination;
    // It receives requests before it is known to run, so that none comes too early.
    Downloader downloader(options.root, todayItemKey(resourceString(todayItemNameString)), log,
                          interrupt);
    if (!downloader.isReady())
        return fail(QStringLiteral("%1: the device cannot be used").arg(options.root.path()));
    lock.emplace(serviceLockPath(options.root));
    const bool isFirst = lock->isHeld();
    if (!isFirst && !runningService(options.root))
        return fail(QStringLiteral("%1: cannot be locked").arg(serviceLockPath(options.root)));
    if (isFirst)
        termination.emplace(interrupt);
    if (!options.isForeground)
        detachment.ready(isFirst ? options.root.filePath(u"\\run\\feedlarkd.log") : QString());
    if (!isFirst)
        return ExitEnded;
    log.info(QStringLiteral("feedlarkd " TIDEBROOK_VERSION " serves %1").arg(options.root.path()));
    const bool isStopped = downloader.run();
    log.info(QStringLiteral("feedlarkd is ending"));
    return isStopped ? ExitEnded : ExitFailed;
}

int failUsage(const QString &message) {
    std::fprintf(stderr, "feedlarkd: %s\nTry 'feedlarkd --help'.\n", qUtf8Printable(message));
    return ExitUsage;
}

int run(const QStringList &commandLine) {
    const QCommandLineOption helpOption(QStringList{QStringLiteral("help"), QStringLiteral("h")});
    const QCommandLineOption version(QStringLiteral("version"));
    const QCommandLineOption home(QStringLiteral("home"), {}, QStringLiteral("DIR"));
    const QCommandLineOption foreground(QStringLiteral("foreground"));
    const QCommandLineOption verbose(QStringLiteral("verbose"));
    QCommandLineParser parser;
    parser.addOptions({helpOption, version, home, foreground, verbose});
    if (!parser.parse(commandLine))
        return failUsage(parser.errorText());
    if (!parser.positionalArguments().isEmpty())
        return failUsage(QStringLiteral("it takes options only"));
    if (parser.isSet(home) && parser.value(home).isEmpty())
        return failUsage(QStringLiteral("--home takes a folder"));
    if (parser.isSet(helpOption) || parser.isSet(version)) {
        std::fputs(parser.isSet(helpOption) ? help : "feedlarkd " TIDEBROOK_VERSION "\n", stdout);
        return ExitEnded;
    }
    Options options{.isForeground = parser.isSet(foreground), .isVerbose = parser.isSet(verbose)};
    if (parser.isSet(home))
        options.root = DeviceRoot(parser.value(home));
    if (!options.root.isDevice()) {
        fail(QStringLiteral("there is no device at %1").arg(options.root.path()));
        return ExitNoDevice;
    }
    if (!options.root.makeFolders())
        return fail(QStringLiteral("%1: the device cannot be used").arg(options.root.path()));
    if (const auto pid = runningService(options.root)) {
        std::fprintf(stderr, "feedlarkd: it runs already, as process %d\n", static_cast<int>(*pid));
        return ExitEnded;
    }
    return runService(options);
}

// What is opened later must not take the place of a standard stream.
void openStandardStreams() {
    int stream = 0;
    do {
        stream = open("/dev/null", O_RDWR);
    } while (stream >= STDIN_FILENO && stream <= STDERR_FILENO);
    close(stream);
}

} // namespace

} // namespace tidebrook

int main(int argc, char **argv) {
    tidebrook::openStandardStreams();
    QStringList commandLine;
    for (int i = 0; i < argc; ++i)
        commandLine.append(QString::fromUtf8(argv[i]));
    return tidebrook::run(commandLine);
}
