#pragma once

#include "update/refresh.h"

#include <mutex>

namespace tidebrook {

/// The service's log: a line a message on standard error. Where that is the journal's, the lines
/// carry their priority as the journal reads it, else the time. Feeds' texts are made one line.
/// Thread-safe.
class ServiceLog {
public:
    /// `ownsFile`: standard error is a file of the service's own, which may be begun anew.
    ServiceLog(bool isVerbose, bool ownsFile);

    void error(const QString &message) { write(3, message); }
    void warning(const QString &message) { write(4, message); }
    void info(const QString &message) { write(6, message); }
    /// How a channel's update ended.
    void result(const QString &channelName, const RefreshResult &result);
    /// Written only by a verbose log.
    void detail(const QString &message);

private:
    void write(int priority, const QString &message);

    const bool isVerbose_;
    const bool ownsFile_;
    const bool isForJournal_;
    std::mutex mutex_; // a line at a time
};

} // namespace tidebrook
