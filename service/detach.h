#pragma once

#include <QString>

namespace tidebrook {

/// Puts a program into the background: the process that was started waits until the service is
/// ready or has failed, and ends. For a process of one thread that has opened nothing yet.
class Detachment {
public:
    /// Goes on in a new process without a terminal, and returns there; ends the one that was
    /// started, with 0 once the new one is ready, else with 1. False, in the process that was
    /// started, when there is no new one.
    bool begin();

    /// The service is ready: lets the started process end, and turns standard error to the log
    /// file, or to nothing where its path is empty, and the other streams to nothing.
    void ready(const QString &logPath);

private:
    int readyPipe_ = -1;
};

} // namespace tidebrook
