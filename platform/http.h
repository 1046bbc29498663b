#pragma once

#include <QByteArray>
#include <QIODevice>
#include <QString>

#include <chrono>

namespace tidebrook {

/// What one transfer may take. Both transports one after the other, with the pause between them,
/// answer within 50 seconds under these.
struct HttpLimits {
    std::chrono::milliseconds connect{10'000};
    std::chrono::milliseconds requestObject{25'000}; // a whole transfer of the request object
    std::chrono::milliseconds direct{22'000};        // a whole transfer of the direct download
    qint64 bodyBytes = 32 * 1024 * 1024;             // after decompression
};

/// How far a request got.
enum class HttpProgress {
    NotOpened,  ///< the address is none that can be requested: malformed, or not http or https
    NotSent,    ///< the server could not be reached, or sent on for ever or to another scheme
    Incomplete, ///< the answer did not come whole: cut off, too slow or too large
    Complete,   ///< the answer is here, whatever its status
};

struct HttpAnswer {
    HttpProgress progress = HttpProgress::NotOpened;
    QByteArray body;
    QByteArray charset; ///< of the Content-Type; empty when it names none
    QString detail;     ///< for the log: why the request is not complete
};

/// A synchronous GET with the settings of the system's request object: its proxy, http or https,
/// the address's own port. At most 10 redirects are followed, to http and https only, and gzip is
/// accepted. Thread-safe.
HttpAnswer httpGet(const QString &url, const HttpLimits &limits = {});

/// A synchronous plain download past any proxy: always http on port 80, whatever scheme and port
/// the address has. The body goes into `sink` byte for byte as it comes. Where the environment's
/// TIDEBROOK_HTTP_PORT is set, that port stands for port 80. False when the download did not come
/// whole or `sink` took no more; what `sink` holds then is not to be used. Thread-safe.
bool httpDownloadDirect(const QString &url, QIODevice &sink, const HttpLimits &limits = {});

} // namespace tidebrook
