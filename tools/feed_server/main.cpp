#include "feed_server/feed_server.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFileInfo>
#include <QSaveFile>

#include <sys/prctl.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <optional>
#include <stdexcept>

using tidebrook::FeedServer;

namespace {

struct Options {
    QString directory;
    int port = 0;
    QString portFile;
    std::chrono::milliseconds delay{0};
    bool hasValidators = false;
    pid_t parent = 0; // 0: whichever it is
};

void complain(const QString &message) {
    std::fprintf(stderr, "feedserver: %s\n", message.toLocal8Bit().constData());
}

std::optional<int> number(const QCommandLineParser &parser, const QString &name, int highest) {
    const QString text = parser.value(name);
    bool isNumber = false;
    const int value = text.toInt(&isNumber);
    if (isNumber && value >= 0 && value <= highest)
        return value;
    complain(QStringLiteral("--%1 takes a number from 0 to %2").arg(name).arg(highest));
    return std::nullopt;
}

void describe(QCommandLineParser &parser) {
    parser.setApplicationDescription(QStringLiteral(
        "Serves feeds on 127.0.0.1 until it is ended or its parent process ends:\n"
        "the files of a directory at /, and made-up feeds at /generated/ITEMS/SEED."));
    parser.addOptions({
        {QStringLiteral("directory"), QStringLiteral("Serve the files below DIR."),
         QStringLiteral("DIR")},
        {QStringLiteral("port"), QStringLiteral("Listen on port N; a free one by default."),
         QStringLiteral("N"), QStringLiteral("0")},
        {QStringLiteral("port-file"), QStringLiteral("Write the port to FILE when ready."),
         QStringLiteral("FILE")},
        {QStringLiteral("delay"), QStringLiteral("Wait MS milliseconds before every answer."),
         QStringLiteral("MS"), QStringLiteral("0")},
        {QStringLiteral("validators"),
         QStringLiteral("Send ETags, and answer 304 to clients that have the newest.")},
        {QStringLiteral("parent-pid"),
         QStringLiteral("End at once if the parent is no longer process PID."),
         QStringLiteral("PID"), QStringLiteral("0")},
    });
    parser.addHelpOption();
}

std::optional<Options> read(const QCommandLineParser &parser) {
    Options options;
    options.directory = parser.value(QStringLiteral("directory"));
    options.portFile = parser.value(QStringLiteral("port-file"));
    const std::optional<int> port = number(parser, QStringLiteral("port"), 65535);
    const std::optional<int> delay = number(parser, QStringLiteral("delay"), 3'600'000);
    const std::optional<int> parent = number(parser, QStringLiteral("parent-pid"), 1 << 22);
    if (!port || !delay || !parent)
        return std::nullopt;
    if (!parser.positionalArguments().isEmpty()) {
        complain(QStringLiteral("there is nothing to do with %1")
                     .arg(parser.positionalArguments().constFirst()));
        return std::nullopt;
    }
    if (!options.directory.isEmpty() && !QFileInfo(options.directory).isDir()) {
        complain(QStringLiteral("%1 is not a directory").arg(options.directory));
        return std::nullopt;
    }
    options.port = *port;
    options.delay = std::chrono::milliseconds(*delay);
    options.parent = *parent;
    options.hasValidators = parser.isSet(QStringLiteral("validators"));
    return options;
}

// False if the parent has ended already. Later its end comes as a SIGTERM.
bool endWithParent(pid_t expected) {
    const pid_t parent = expected != 0 ? expected : getppid();
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    return getppid() == parent;
}

// Must come before any thread is started, so that none of them takes the signals.
sigset_t holdBackEndingSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGINT);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    return signals;
}

bool announce(const FeedServer &server, const QString &portFile) {
    if (!portFile.isEmpty()) {
        QSaveFile file(portFile);
        const QByteArray text = QByteArray::number(server.port()) + '\n';
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size() || !file.commit()) {
            complain(QStringLiteral("%1: %2").arg(portFile, file.errorString()));
            return false;
        }
    }
    std::printf("listening on http://127.0.0.1:%d\n", server.port());
    std::fflush(stdout);
    return true;
}

int serve(const Options &options, const sigset_t &endingSignals) {
    try {
        FeedServer server(options.port);
        if (!options.directory.isEmpty())
            server.serveDirectory(QStringLiteral("/"), options.directory);
        server.serveGenerated(QStringLiteral("/generated"));
        server.setDirectoryValidators(options.hasValidators);
        server.setGeneratedValidators(options.hasValidators);
        server.setDelay(options.delay);
        if (!announce(server, options.portFile))
            return 1;
        int signal = 0;
        sigwait(&endingSignals, &signal);
        return 0;
    } catch (const std::runtime_error &error) {
        complain(QString::fromLocal8Bit(error.what()));
        return 1;
    }
}

} // namespace

int main(int argc, char *argv[]) {
    const sigset_t endingSignals = holdBackEndingSignals();
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    describe(parser);
    parser.process(application);
    const std::optional<Options> options = read(parser);
    if (!options)
        return 2;
    if (!endWithParent(options->parent))
        return 0;
    return serve(*options, endingSignals);
}
