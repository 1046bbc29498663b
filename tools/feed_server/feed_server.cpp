#include "feed_server/feed_server.h"

#include <QtEndian>

#include <zlib.h>

namespace tidebrook {

QByteArray gzipped(const QByteArray &body) {
    // What qCompress makes begins with a length and zlib's header and ends with zlib's checksum.
    const QByteArray deflated = qCompress(body).sliced(6).chopped(4);
    const quint32 end[]{
        qToLittleEndian(static_cast<quint32>(crc32(0, reinterpret_cast<const Bytef *>(body.data()),
                                                   static_cast<uInt>(body.size())))),
        qToLittleEndian(static_cast<quint32>(body.size()))};
    return QByteArray("\x1F\x8B\x08\0\0\0\0\0\0\3", 10) + deflated +
           QByteArray(reinterpret_cast<const char *>(end), sizeof end);
}

QByteArray FeedServer::Request::header(QByteArrayView name) const {
    for (const auto &[itsName, value] : headers) {
        if (name.compare(itsName, Qt::CaseInsensitive) == 0)
            return value;
    }
    return {};
}

QString FeedServer::url(QStringView path) const {
    return QStringLiteral("http://%1:%2%3").arg(QLatin1String(address_)).arg(port()).arg(path);
}

void FeedServer::serve(const QString &path, const QByteArray &body, const QByteArray &contentType) {
    book_.set(path, {.body = body, .contentType = contentType});
}

void FeedServer::serveWithValidators(const QString &path, const QByteArray &body,
                                     const QByteArray &etag, const QByteArray &lastModified) {
    book_.set(path, {.body = body, .etag = etag, .lastModified = lastModified});
}

void FeedServer::serveGzip(const QString &path, const QByteArray &body) {
    book_.set(path, {.body = gzipped(body), .headers = {{"Content-Encoding", "gzip"}}});
}

void FeedServer::answerStatus(const QString &path, int status, const QByteArray &body,
                              const Headers &headers) {
    book_.set(path, {.body = body, .status = status, .headers = headers});
}

void FeedServer::redirect(const QString &path, const QByteArray &location) {
    answerStatus(path, 302, {}, {{"Location", location}});
}

void FeedServer::hang(const QString &path) { book_.set(path, {.manner = Answer::Manner::Never}); }

void FeedServer::resetHalfWay(const QString &path, const QByteArray &body) {
    const QByteArray head = Answer{.body = body}.head();
    sendRaw(path, head + body.first(body.size() / 2));
}

void FeedServer::trickle(const QString &path, const QByteArray &body,
                         std::chrono::milliseconds interval) {
    book_.set(path, {.body = body, .interval = interval});
}

void FeedServer::sendRaw(const QString &path, const QByteArray &bytes, const QByteArray &repeated) {
    book_.set(path, {.manner = Answer::Manner::Raw, .body = bytes, .repeated = repeated});
}

void FeedServer::endless(const QString &path) {
    const auto chunk = [](const QByteArray &text) -> QByteArray {
        return QByteArray::number(text.size(), 16) + "\r\n" + text + "\r\n";
    };
    const QByteArray item = "<item><title>Again</title><description>" + QByteArray(16'000, '.') +
                            "</description></item>\n";
    sendRaw(path,
            "HTTP/1.1 200 OK\r\nContent-Type: text/xml\r\nTransfer-Encoding: chunked\r\n\r\n" +
                chunk("<rss version=\"2.0\"><channel><title>Endless</title>\n"),
            chunk(item));
}

void FeedServer::setGreeting(const QByteArray &bytes) {
    const std::lock_guard lock(mutex_);
    greeting_ = bytes;
}

QList<FeedServer::Request> FeedServer::requests() const {
    // A shared list would be grown in place while its reader, who holds no lock, lets go of it.
    const std::lock_guard lock(mutex_);
    return {requests_.begin(), requests_.end()};
}

void FeedServer::clearRequests() {
    const std::lock_guard lock(mutex_);
    requests_.clear();
}

int FeedServer::peakRequests(const QByteArray &host) const {
    const std::lock_guard lock(mutex_);
    return peaks_.value(host);
}

void FeedServer::clearCounts() {
    bytesReceived_ = 0;
    bytesSent_ = 0;
    const std::lock_guard lock(mutex_);
    peaks_.clear();
}

} // namespace tidebrook
