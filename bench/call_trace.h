#pragma once

#include "bench/background_process.h"

#include <QString>

#include <memory>

namespace tidebrook {

/// Traces the system calls of a running process with strace, where that is there and permitted.
class CallTrace {
public:
    /// It listens when this returns.
    CallTrace(pid_t process, const QString &folder);

    /// Ends the trace; the calls by their names, with how often each was made.
    QString end();

private:
    const QString path_;
    QString failure_;
    std::unique_ptr<BackgroundProcess> tracer_;
};

} // namespace tidebrook
