#include "update/request_file.h"

#include "platform/sync/named_event.h"
#include "store/settings_store.h"
#include "update/channel_file.h"

#include <QFile>

#include <sys/stat.h>

namespace tidebrook {

namespace {

constexpr std::chrono::milliseconds longestTurn{500};
constexpr qint64 lineLimit = 612 * 2; // bytes; the longest line that requesters write

std::optional<RefreshJob> readJob(const QString &path) {
    // What is longer, or has no end, is not what a requester writes.
    const std::optional<QString> text = readChannelFile(path, lineLimit);
    if (!text || !text->endsWith(u'\n') || text->indexOf(u'\n') != text->size() - 1)
        return std::nullopt;
    return parseChannelLine(QStringView(*text).chopped(1));
}

} // namespace

QString requestFilePath(const DeviceRoot &device) {
    return device.filePath(u"\\windows\\UpdateChannel.single");
}

RequestFile::RequestFile(const DeviceRoot &device)
    : path_(requestFilePath(device)), identity_(identify(path_)), job_(readJob(path_)) {}

RequestFile::Identity RequestFile::identify(const QString &path) {
    struct stat status {};
    if (stat(QFile::encodeName(path).constData(), &status) != 0)
        return {};
    return {static_cast<qint64>(status.st_dev), static_cast<qint64>(status.st_ino),
            qint64{status.st_size}, qint64{status.st_mtim.tv_sec}, qint64{status.st_mtim.tv_nsec}};
}

RequestTurn::RequestTurn(const DeviceRoot &device) : mutex_(device, u"UpdateChannel") {
    mutex_.lock(longestTurn);
}

bool answerDownload(const DeviceRoot &device, Registry &registry, const RequestFile &request,
                    quint32 code) {
    NamedEvent answer(device, code == 0 ? doneEvent : failedEvent, NamedEvent::Reset::Auto);
    // This may have to wait, so it comes first; a newer request will write its own.
    if (code != 0 && request.isLatest())
        SetLastErrorCode(registry, code);
    const RequestTurn turn(device);
    return request.isLatest() && answer.set();
}

} // namespace tidebrook
