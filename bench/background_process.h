#pragma once

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QStringList>

#include <sys/types.h>

namespace tidebrook {

/// Has the process end when this thread does, however that ends.
void endWithThisThread(QProcess &process);

/// A program that runs beside the measurements, and ends with this object.
class BackgroundProcess {
public:
    /// `channel` is what `awaitLine` reads; the other one is ours. Throws MeasurementError when it
    /// cannot be started.
    BackgroundProcess(const QString &program, const QStringList &arguments,
                      QProcess::ProcessChannel channel);
    ~BackgroundProcess();
    BackgroundProcess(const BackgroundProcess &) = delete;
    BackgroundProcess &operator=(const BackgroundProcess &) = delete;

    /// The next line that holds `text`. Throws MeasurementError when there is none within half a
    /// minute, and when the user has asked for the end meanwhile.
    QByteArray awaitLine(const QByteArray &text);

    pid_t pid() const { return static_cast<pid_t>(process_.processId()); }

    /// Asks it to end, and waits for that.
    void end();

private:
    QProcess process_;
};

} // namespace tidebrook
