#pragma once

#include "platform/base/device_root.h"
#include "platform/sql/registry.h"
#include "platform/sync/named_mutex.h"
#include "update/refresh_job.h"

#include <QString>
#include <QStringView>

#include <array>
#include <optional>

namespace tidebrook {

/// The events between those who request a download and the downloader.
inline constexpr QStringView requestEvent = u"RSS_NONAUTODL";     // manual reset
inline constexpr QStringView doneEvent = u"DAEMON_DLOAD_DONE";    // auto reset
inline constexpr QStringView failedEvent = u"DAEMON_DLOAD_ERROR"; // auto reset

QString requestFilePath(const DeviceRoot &device);

/// The request file as the downloader found it.
class RequestFile {
public:
    /// Reads the file of the device, whatever is in it.
    explicit RequestFile(const DeviceRoot &device);

    /// The channel that is requested; nothing when the file is no request.
    const std::optional<RefreshJob> &job() const { return job_; }

    /// Whether it still is the file that is there: no newer request has been written.
    bool isLatest() const { return identify(path_) == identity_; }
    bool operator==(const RequestFile &other) const { return identity_ == other.identity_; }

private:
    // Device, file, size and moment of the last change; all 0 when there is no file.
    using Identity = std::array<qint64, 5>;
    static Identity identify(const QString &path);

    QString path_;
    Identity identity_;
    std::optional<RefreshJob> job_;
};

/// Held while a request is written, and while one that is still the latest is answered: so the
/// writer of a newer one does not get that answer. A process that was stopped or killed meanwhile
/// blocks the others for half a second at most.
class RequestTurn {
public:
    explicit RequestTurn(const DeviceRoot &device);

private:
    NamedMutex mutex_;
};

/// Answers the process that waits for this request: with success for the code 0, else with the code
/// in the registry's "ERRORNO". An answer that no process waits for is lost. False when a newer
/// request has been written, and so none was given.
bool answerDownload(const DeviceRoot &device, Registry &registry, const RequestFile &request,
                    quint32 code);

} // namespace tidebrook
