#pragma once

#include "ctl/ctl_process.h"

namespace tidebrook {

/// A device with a real feedlarkd on it, which never outlives the test.
class RunningService : public CtlTest {
protected:
    RunningService();
    ~RunningService() override;

    using CtlTest::start;
    /// Starts the service in the foreground and waits until it is ready.
    void start();
    /// Ends it by a signal and tells its exit status; -1 when that took too long or it crashed.
    int end(int signal);
    bool isRunning() const { return process_ && process_->state() == QProcess::Running; }

    void waitForRequests(qsizetype count);

private:
    std::unique_ptr<QProcess> process_;
};

} // namespace tidebrook
