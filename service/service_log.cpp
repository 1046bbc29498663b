#include "service/service_log.h"

#include "platform/base/clock.h"
#include "platform/base/text.h"
#include "res/strings.h"

#include <sys/stat.h>
#include <unistd.h>

namespace tidebrook {

namespace {

// The service's own file is emptied at this size, so that it never fills the device.
constexpr off_t fileLimit = 1024 * 1024; // bytes

// The journal names its stream in the environment, which other programs of the session inherit
// without the stream.
bool isJournal(int stream) {
    struct stat status {};
    const QByteArray own = qgetenv("JOURNAL_STREAM");
    return fstat(stream, &status) == 0 && own == QByteArray::number(quint64{status.st_dev}) + ':' +
                                                     QByteArray::number(quint64{status.st_ino});
}

} // namespace

ServiceLog::ServiceLog(bool isVerbose, bool ownsFile)
    : isVerbose_(isVerbose), ownsFile_(ownsFile),
      isForJournal_(!ownsFile && isJournal(STDERR_FILENO)) {}

void ServiceLog::detail(const QString &message) {
    if (isVerbose_)
        write(7, message);
}

void ServiceLog::result(const QString &channelName, const RefreshResult &result) {
    if (result.error != 0)
        warning(QStringLiteral("%1: %2 (%3)%4")
                    .arg(channelName, errorMessage(result.error), QString::number(result.error),
                         result.detail.isEmpty() ? QString() : u": " + result.detail));
    else
        detail(QStringLiteral("%1: %2 new").arg(channelName, QString::number(result.storedCount)));
}

void ServiceLog::write(int priority, const QString &message) {
    const QByteArray prefix = isForJournal_ ? QByteArray('<' + QByteArray::number(priority) + '>')
                                            : localNow().toString(Qt::ISODate).toUtf8() + ' ';
    const QByteArray line = prefix + withoutHidden(message).toUtf8() + '\n';
    const std::lock_guard lock(mutex_);
    if (ownsFile_ && lseek(STDERR_FILENO, 0, SEEK_CUR) > fileLimit &&
        ftruncate(STDERR_FILENO, 0) == 0)
        lseek(STDERR_FILENO, 0, SEEK_SET);
    // A log that cannot be written must not stop the service.
    [[maybe_unused]] const ssize_t written =
        ::write(STDERR_FILENO, line.constData(), static_cast<size_t>(line.size()));
}

} // namespace tidebrook
