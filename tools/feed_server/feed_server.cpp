#include "feed_server/feed_server.h"

#include "feed_server/answering_server.h"

#include <csignal>

namespace tidebrook {

namespace {

// The library ignores SIGPIPE for the whole process. The code under test must not be shielded by
// that: where it runs without this server, nobody ignores the signal for it.
class SigPipeKeeper {
public:
    SigPipeKeeper() { sigaction(SIGPIPE, nullptr, &kept_); }
    ~SigPipeKeeper() { sigaction(SIGPIPE, &kept_, nullptr); }
    SigPipeKeeper(const SigPipeKeeper &) = delete;
    SigPipeKeeper &operator=(const SigPipeKeeper &) = delete;

private:
    struct sigaction kept_ {};
};

} // namespace

QByteArray FeedServer::Request::header(QByteArrayView name) const {
    for (const auto &[itsName, value] : headers) {
        if (name.compare(itsName, Qt::CaseInsensitive) == 0)
            return value;
    }
    return {};
}

FeedServer::FeedServer(int port) {
    const SigPipeKeeper keeper;
    d_ = std::make_unique<AnsweringServer>(port);
}

FeedServer::~FeedServer() = default;

int FeedServer::port() const { return d_->port(); }

QString FeedServer::url(QStringView path) const {
    return QStringLiteral("http://127.0.0.1:%1%2").arg(port()).arg(path);
}

void FeedServer::serve(const QString &path, const QByteArray &body, const QByteArray &contentType) {
    Answer answer;
    answer.body = body;
    answer.contentType = contentType;
    d_->book.set(path, answer);
}

void FeedServer::serveWithValidators(const QString &path, const QByteArray &body,
                                     const QByteArray &etag, const QByteArray &lastModified) {
    Answer answer;
    answer.body = body;
    answer.etag = etag;
    answer.lastModified = lastModified;
    d_->book.set(path, answer);
}

void FeedServer::serveGzip(const QString &path, const QByteArray &body,
                           const QByteArray &contentType) {
    Answer answer;
    answer.body = compressed(body);
    answer.contentType = contentType;
    answer.headers = {{"Content-Encoding", "gzip"}};
    d_->book.set(path, answer);
}

void FeedServer::serveDirectory(const QString &prefix, const QString &directory) {
    d_->book.addDirectory(prefix, directory);
}

void FeedServer::setDirectoryValidators(bool areSent) { d_->book.setDirectoryValidators(areSent); }

void FeedServer::serveGenerated(const QString &prefix) { d_->book.addGenerated(prefix); }

void FeedServer::setGeneratedValidators(bool areSent) { d_->book.setGeneratedValidators(areSent); }

void FeedServer::setDelay(std::chrono::milliseconds delay) { d_->delay = delay; }

void FeedServer::answerStatus(const QString &path, int status, const QByteArray &body,
                              const Headers &headers) {
    Answer answer;
    answer.status = status;
    answer.body = body;
    answer.contentType = "text/plain";
    for (const auto &header : headers) {
        if (header.first.compare("Content-Type", Qt::CaseInsensitive) == 0)
            answer.contentType = header.second;
        else
            answer.headers.append(header);
    }
    d_->book.set(path, answer);
}

void FeedServer::redirect(const QString &path, const QByteArray &location, int status) {
    answerStatus(path, status, {}, {{"Location", location}});
}

void FeedServer::hang(const QString &path) {
    Answer answer;
    answer.manner = Answer::Manner::Never;
    d_->book.set(path, answer);
}

void FeedServer::resetHalfWay(const QString &path, const QByteArray &body) {
    Answer answer;
    answer.manner = Answer::Manner::Half;
    answer.body = body;
    d_->book.set(path, answer);
}

void FeedServer::trickle(const QString &path, const QByteArray &body,
                         std::chrono::milliseconds interval) {
    Answer answer;
    answer.manner = Answer::Manner::Trickled;
    answer.body = body;
    answer.interval = interval;
    d_->book.set(path, answer);
}

void FeedServer::endless(const QString &path) {
    Answer answer;
    answer.manner = Answer::Manner::Endless;
    d_->book.set(path, answer);
}

QList<FeedServer::Request> FeedServer::requests() const { return d_->requests(); }

void FeedServer::clearRequests() { d_->clearRequests(); }

qint64 FeedServer::bytesReceived() const { return d_->bytes.received; }

qint64 FeedServer::bytesSent() const { return d_->bytes.sent; }

int FeedServer::connections() const { return d_->connectionCount; }

int FeedServer::peakRequests() const { return d_->requestCounts.peak(); }

int FeedServer::peakRequests(const QByteArray &host) const { return d_->requestCounts.peak(host); }

void FeedServer::clearCounts() {
    d_->bytes.received = 0;
    d_->bytes.sent = 0;
    d_->connectionCount = 0;
    d_->requestCounts.clear();
}

} // namespace tidebrook
