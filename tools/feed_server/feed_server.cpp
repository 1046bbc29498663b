#include "feed_server/feed_server.h"

#include "feed_server/answering_server.h"

namespace tidebrook {

QByteArray FeedServer::Request::header(QByteArrayView name) const {
    for (const auto &[itsName, value] : headers) {
        if (name.compare(itsName, Qt::CaseInsensitive) == 0)
            return value;
    }
    return {};
}

FeedServer::FeedServer(int port) : d_(std::make_unique<AnsweringServer>(port)) {}

FeedServer::~FeedServer() = default;

int FeedServer::port() const { return d_->port(); }

QString FeedServer::url(QStringView path) const {
    return QStringLiteral("http://127.0.0.1:%1%2").arg(port()).arg(path);
}

void FeedServer::serve(const QString &path, const QByteArray &body, const QByteArray &contentType) {
    d_->book.set(path, {.body = body, .contentType = contentType});
}

void FeedServer::serveWithValidators(const QString &path, const QByteArray &body,
                                     const QByteArray &etag, const QByteArray &lastModified) {
    d_->book.set(path, {.body = body, .etag = etag, .lastModified = lastModified});
}

void FeedServer::serveGzip(const QString &path, const QByteArray &body) {
    d_->book.set(path, {.body = compressed(body), .headers = {{"Content-Encoding", "gzip"}}});
}

void FeedServer::serveDirectory(const QString &prefix, const QString &directory) {
    d_->book.addDirectory(prefix, directory);
}

void FeedServer::setValidators(bool areSent) { d_->book.setValidators(areSent); }

void FeedServer::setDelay(std::chrono::milliseconds delay) { d_->delay = delay; }

void FeedServer::answerStatus(const QString &path, int status, const QByteArray &body,
                              const Headers &headers) {
    d_->book.set(path, {.body = body, .status = status, .headers = headers});
}

void FeedServer::redirect(const QString &path, const QByteArray &location, int status) {
    answerStatus(path, status, {}, {{"Location", location}});
}

void FeedServer::hang(const QString &path) {
    d_->book.set(path, {.manner = Answer::Manner::Never});
}

void FeedServer::resetHalfWay(const QString &path, const QByteArray &body) {
    const QByteArray head = Answer{.body = body}.head();
    sendRaw(path, head + body.first(body.size() / 2));
}

void FeedServer::trickle(const QString &path, const QByteArray &body,
                         std::chrono::milliseconds interval) {
    d_->book.set(path, {.manner = Answer::Manner::Trickled, .body = body, .interval = interval});
}

void FeedServer::sendRaw(const QString &path, const QByteArray &bytes, const QByteArray &repeated) {
    d_->book.set(path, {.manner = Answer::Manner::Raw, .body = bytes, .repeated = repeated});
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

QList<FeedServer::Request> FeedServer::requests() const { return d_->requests(); }

void FeedServer::clearRequests() { d_->clearRequests(); }

qint64 FeedServer::bytesReceived() const { return d_->bytesReceived; }

qint64 FeedServer::bytesSent() const { return d_->bytesSent; }

int FeedServer::peakRequests() const { return d_->peak(); }

int FeedServer::peakRequests(const QByteArray &host) const { return d_->peak(host); }

void FeedServer::clearCounts() {
    d_->bytesReceived = 0;
    d_->bytesSent = 0;
    d_->clearPeaks();
}

} // namespace tidebrook
