#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QIODevice>
#include <QString>

#include <chrono>

namespace tidebrook {

class StopSignal;

/// What one transfer may take. Both transports one after the other, with the pause between them,
/// answer within 50 seconds under these.
struct HttpLimits {
    std::chrono::milliseconds connect{10'000};
    std::chrono::milliseconds requestObject{25'000}; // a whole transfer of the request object
    std::chrono::milliseconds direct{22'000};        // a whole transfer of the direct download
    qint64 bodyBytes = 32 * 1024 * 1024;             // after decompression
    const StopSignal *stop = nullptr;                // ends a transfer at once when it is raised
};

/// What a server said of the state of a document, byte for byte; empty where it said nothing, more
/// than a kilobyte, or control characters. Sent back, it has the server answer 304 while the
/// document is the same.
struct HttpValidators {
    QByteArray etag;
    QByteArray lastModified;

    bool isEmpty() const { return etag.isEmpty() && lastModified.isEmpty(); }
};

struct HttpRequest {
    QString url;
    HttpValidators validators = {};
};

/// How far a request got.
enum class HttpProgress {
    NotStarted, ///< the library for HTTP cannot be loaded
    NotOpened,  ///< the address is none that can be requested: malformed, or not http or https
    NotSent,    ///< no server was reached, or it redirects without end or to another scheme
    Incomplete, ///< the answer did not come whole: cut off, too slow, too large, stopped or refused
    Complete,   ///< the answer is here, whatever its status
};

struct HttpAnswer {
    HttpProgress progress = HttpProgress::NotOpened;
    bool isTimedOut = false;  ///< a time limit has ended it
    int status = 0;           ///< 0 when the server did not answer
    bool isUnchanged = false; ///< the document is the one that the request's validators are of
    QByteArrayList body;      ///< in pieces, none of them empty
    QByteArray charset;       ///< of the Content-Type; empty when it names none
    QString address;          ///< of the document, behind any redirects; empty unless Complete
    HttpValidators validators;
    std::chrono::seconds retryAfter{0}; ///< how long the server asks to be left alone
    QString detail;                     ///< for the log: why the request is not complete
};

/// A synchronous GET with the settings of the system's request object: its proxy, http or https,
/// the address's own port. At most 10 redirects are followed, to http and https only, and gzip is
/// accepted. Thread-safe.
HttpAnswer httpGet(const HttpRequest &request, const HttpLimits &limits = {});

/// A synchronous plain download past any proxy: always http on port 80, whatever scheme and port
/// the address has. The body goes into `sink` byte for byte as it comes, unpacked where the server
/// has packed it. Where the environment's TIDEBROOK_HTTP_PORT is set, that port stands for port 80.
/// A download is Incomplete also when `sink` takes no more, which ends it. `failure` then says for
/// the log why it is not Complete. Thread-safe.
HttpProgress httpDownloadDirect(const QString &url, QIODevice &sink, const HttpLimits &limits = {},
                                QString *failure = nullptr);

} // namespace tidebrook
