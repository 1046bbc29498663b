#include "feed_server/feed_server.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <sys/prctl.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>

using tidebrook::FeedServer;

namespace {

void describe(QCommandLineParser &parser) {
    parser.setApplicationDescription(QStringLiteral(
        "Serves feeds on 127.0.0.1 until it is ended or its parent process ends:\n"
        "the files of a directory at /, and made-up feeds at /generated/ITEMS/SEED."));
    parser.addOptions({
        {QStringLiteral("directory"), QStringLiteral("Serve the files below DIR."),
         QStringLiteral("DIR")},
        {QStringLiteral("delay"), QStringLiteral("Wait MS milliseconds before every answer."),
         QStringLiteral("MS"), QStringLiteral("0")},
        {QStringLiteral("validators"),
         QStringLiteral("Send ETags, and answer 304 to clients that have the newest.")},
    });
    parser.addHelpOption();
}

int serve(const QCommandLineParser &parser) {
    FeedServer server;
    if (parser.isSet(QStringLiteral("directory")))
        server.serveDirectory(parser.value(QStringLiteral("directory")));
    server.setValidators(parser.isSet(QStringLiteral("validators")));
    server.setDelay(std::chrono::milliseconds(parser.value(QStringLiteral("delay")).toInt()));
    std::printf("listening on http://127.0.0.1:%d\n", server.port());
    std::fflush(stdout);
    return pause();
}

} // namespace

int main(int argc, char *argv[]) {
    const pid_t parent = getppid();
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    describe(parser);
    parser.process(application);
    // The parent may have ended before its end would have been told of.
    return getppid() == parent ? serve(parser) : 0;
}
