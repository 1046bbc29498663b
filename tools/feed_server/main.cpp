#include "feed_server/feed_server.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <sys/prctl.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

void describe(QCommandLineParser &parser) {
    parser.setApplicationDescription(
        u"Serves the files of a directory on 127.0.0.1 until it is ended or its parent ends."_s);
    parser.addOption({u"directory"_s, u"Serve the files below DIR."_s, u"DIR"_s});
    parser.addHelpOption();
}

int serve(const QCommandLineParser &parser) {
    tidebrook::FeedServer server;
    if (parser.isSet(u"directory"_s))
        server.serveDirectory(parser.value(u"directory"_s));
    std::printf("listening on http://127.0.0.1:%d\n", server.port());
    std::fflush(stdout);
    return pause(); // until a signal ends the process
}

} // namespace

int main(int argc, char *argv[]) {
    const pid_t parent = getppid();
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    describe(parser);
    parser.process(application);
    // The parent may have ended before its end could be reported.
    return getppid() == parent ? serve(parser) : 0;
}
