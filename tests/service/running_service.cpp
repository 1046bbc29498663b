#include "service/running_service.h"

#include "platform/desktop/service.h"

#include <csignal>

namespace tidebrook {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

RunningService::RunningService() {
    qputenv("TIDEBROOK_HTTP_PORT", QByteArray::number(server_.port()));
    // What the machine's own network is like must not matter.
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nowhere");
    environment_.insert(u"DBUS_SYSTEM_BUS_ADDRESS"_s, u"unix:path=/nowhere"_s);
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

void RunningService::waitForRequests(qsizetype count) {
    waitFor([&] { return server_.requests().size() == count; });
}

} // namespace tidebrook
