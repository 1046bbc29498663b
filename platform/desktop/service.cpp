#include "platform/desktop/service.h"

#include "platform/base/descriptor.h"
#include "platform/desktop/own_program.h"
#include "platform/desktop/own_unit.h"
#include "platform/sync/process_lock.h"
#include "platform/sync/wait_any.h"

#include <QProcess>

#include <fcntl.h>

#include <csignal>
#ifdef __SANITIZE_THREAD__
#include <thread>
#endif

extern "C" { // which glibc 2.36 lacks in this header
#include <sys/pidfd.h>
}

namespace tidebrook {

namespace {

using namespace Qt::StringLiterals;

constexpr int launchTimeout = 10'000; // milliseconds

/// Runs the program until the service is in the background; why that failed, or an empty text.
QString launchHere(const QString &program, const DeviceRoot &device) {
    const QStringList command =
        outsideOwnUnit({program, u"--home"_s, device.path()}, {u"--property=Type=forking"_s});
    QProcess launcher;
    launcher.setStandardInputFile(QProcess::nullDevice());
    launcher.setStandardOutputFile(QProcess::nullDevice());
    launcher.start(command.first(), command.mid(1));
    if (!launcher.waitForStarted())
        return program + u": " + launcher.errorString();
    if (!launcher.waitForFinished(launchTimeout)) {
        launcher.kill();
        launcher.waitForFinished();
        return program + u" was not done in time";
    }
    if (launcher.exitStatus() == QProcess::NormalExit && launcher.exitCode() == 0)
        return {};
    const QString words = QString::fromLocal8Bit(launcher.readAllStandardError()).trimmed();
    return words.isEmpty() ? QString(program + u" failed without a word") : words;
}

QString launch(const QString &program, const DeviceRoot &device) {
#ifdef __SANITIZE_THREAD__
    // Qt's child shares this process's memory until it runs the program. ThreadSanitizer then
    // mistakes the launching thread for the child and misses its locks, so it is a thread that
    // ends.
    QString failure;
    std::thread([&] { failure = launchHere(program, device); }).join();
    return failure;
#else
    return launchHere(program, device);
#endif
}

} // namespace

QString serviceLockPath(const DeviceRoot &device) { return device.path() + u"/run/feedlarkd.lock"; }

std::optional<pid_t> runningService(const DeviceRoot &device) {
    return ProcessLock::holder(serviceLockPath(device));
}

Activation activateService(const DeviceRoot &device, QString *error) {
    if (runningService(device))
        return Activation::AlreadyRunning;
    const QString program = ownProgram(u"feedlarkd"_s);
    const QString failure =
        program.isEmpty() ? u"the program feedlarkd was not found"_s : launch(program, device);
    if (failure.isEmpty())
        return Activation::Started;
    if (error != nullptr)
        *error = failure;
    return Activation::Failed;
}

bool stopService(const DeviceRoot &device, std::chrono::milliseconds timeout) {
    const auto service = runningService(device);
    if (!service)
        return true;
    const Descriptor process(pidfd_open(*service, 0));
    // The process may have ended before the descriptor was open, and its id be another's.
    if (process.isOpen() && runningService(device) == service &&
        pidfd_send_signal(process.number(), SIGTERM, nullptr, 0) == 0)
        WaitAny({}, process.number(), timeout);
    return !runningService(device);
}

} // namespace tidebrook
