#pragma once

#include "ctl/ctl_process.h"
#include "feed_server/feed_server.h"
#include "platform/registry.h"
#include "update/download_request.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace tidebrook {

/// A device with a real feedlarkd on it, which never outlives the test.
class RunningService : public testing::Test {
protected:
    RunningService();
    ~RunningService() override;

    /// Starts the service in the foreground and waits until it is ready.
    void start();
    /// Ends it by a signal and tells its exit status; -1 when that took too long or it crashed.
    int end(int signal);
    bool isRunning() const { return process_ && process_->state() == QProcess::Running; }

    /// Adds a channel whose feed the server has at /NAME.
    RefreshJob addChannel(const QString &name);

    DownloadAnswer request(const RefreshJob &job);
    QString counts(const QString &channel);
    quint32 errorCode();
    void waitFor(const std::function<bool()> &condition);
    void expectSound();

    FeedServer server_;
    CtlProcess ctl_;
    const DeviceRoot root_{ctl_.root()};

private:
    std::unique_ptr<QProcess> process_;
};

} // namespace tidebrook
