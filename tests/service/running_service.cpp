#include "service/running_service.h"

#include "platform/desktop/service.h"

#include <csignal>

namespace tidebrook {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

RunningService::RunningService() {
    // The second, direct download of a feed goes to the server too.
    environment_.insert(u"TIDEBROOK_HTTP_PORT"_s, QString::number(server_.port()));
    qputenv("TIDEBROOK_HTTP_PORT", QByteArray::number(server_.port()));
    run(u"init"_s);
}

RunningService::~RunningService() {
    if (isRunning()) {
        process_->kill();
        process_->waitForFinished();
    }
    stopService(root_, 10s);
}

void RunningService::start() {
    process_ = std::make_unique<QProcess>();
    process_->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process_->start(QStringLiteral(FEEDLARKD), {u"--foreground"_s, u"--home"_s, root_.path()});
    ASSERT_TRUE(process_->waitForStarted());
    waitFor([this] { return runningService(root_) == process_->processId(); });
}

int RunningService::end(int signal) {
    kill(static_cast<pid_t>(process_->processId()), signal);
    if (!process_->waitForFinished(10'000) || process_->exitStatus() != QProcess::NormalExit)
        return -1;
    return process_->exitCode();
}

RefreshJob RunningService::addChannel(const QString &name, const QByteArray &feed) {
    RefreshJob job{server_.url(QString(u'/' + name)), name, u"C"_s};
    if (!feed.isNull())
        server_.serve(u'/' + name, feed);
    EXPECT_EQ(ok(u"add C %1 %2"_s.arg(name, job.url)).trimmed(), name);
    return job;
}

QString RunningService::counts(const QString &channel) {
    for (const QString &line : run(u"channels"_s).lines()) {
        if (line.section(u'\t', 1, 1) == channel)
            return line.section(u'\t', 0, 0);
    }
    return {};
}

void RunningService::waitForRequests(qsizetype count) {
    waitFor([&] { return server_.requests().size() == count; });
}

} // namespace tidebrook
