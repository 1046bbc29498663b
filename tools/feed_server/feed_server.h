#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringView>

#include <chrono>
#include <memory>
#include <utility>

namespace tidebrook {

class AnsweringServer;

/// An HTTP server on the loopback device that answers what it is told to, faults included. It
/// listens on 127.0.0.1 and serves each connection in a thread of its own.
///
/// Paths are given percent-decoded and without a query; a query in a request does not change the
/// answer. What was said last about a path holds, also for requests that come while the server
/// is running; answers that have begun are ended as they began. Paths that nothing was said about
/// are looked for in the directories; /generated/ITEMS/SEED is generatedFeed(ITEMS, SEED) then; the
/// others are answered with 404.
///
/// Thread-safe.
class FeedServer {
public:
    using Headers = QList<std::pair<QByteArray, QByteArray>>;

    struct Request {
        QByteArray path;                               // as sent: percent-encoded, with the query
        Headers headers;                               // in their order
        std::chrono::steady_clock::time_point arrived; // when its first byte was there

        /// The value of the first header of that name, whatever its case; null if there is none.
        QByteArray header(QByteArrayView name) const;
    };

    /// Listens on `port`, or on a free one if it is 0. Requests can be made as soon as it returns.
    /// Throws std::runtime_error if it cannot listen there.
    explicit FeedServer(int port = 0);

    /// Drops every connection, whatever it is doing, and joins all threads.
    ~FeedServer();

    FeedServer(const FeedServer &) = delete;
    FeedServer &operator=(const FeedServer &) = delete;

    int port() const;

    /// The address of `path`, which begins with a slash and is already percent-encoded.
    QString url(QStringView path) const;

    /// Bodies are sent as they are, never compressed, with their length announced.
    void serve(const QString &path, const QByteArray &body,
               const QByteArray &contentType = "text/xml");

    /// Sends ETag and Last-Modified as they are given; an empty one is not sent. Answers 304,
    /// with both and without a body, if the request's If-None-Match is the ETag byte for byte, or,
    /// in a request without If-None-Match, if If-Modified-Since is the Last-Modified so.
    void serveWithValidators(const QString &path, const QByteArray &body, const QByteArray &etag,
                             const QByteArray &lastModified = {});

    /// Sends the body compressed, whether the client asked for that or not.
    void serveGzip(const QString &path, const QByteArray &body);

    /// Serves the files below `directory` below `prefix`, as they are when they are asked for.
    void serveDirectory(const QString &prefix, const QString &directory);

    /// Whether files of directories and generated feeds are sent with an ETag, which differs
    /// whenever their content does, and are answered with 304 to whom has it. Not unless told.
    void setValidators(bool areSent);

    /// How long every request, from now on, waits for its answer.
    void setDelay(std::chrono::milliseconds delay);

    /// Any status, as 503 with a Retry-After among the headers.
    void answerStatus(const QString &path, int status, const QByteArray &body = {},
                      const Headers &headers = {});

    /// `location` is sent as it is, so that it can be relative, of any scheme, or wrong.
    void redirect(const QString &path, const QByteArray &location, int status = 302);

    /// Takes the request and answers nothing until the client leaves or the server stops.
    void hang(const QString &path);

    /// Announces the whole length, sends the first half, and closes the connection.
    void resetHalfWay(const QString &path, const QByteArray &body);

    /// Sends the body a byte at a time.
    void trickle(const QString &path, const QByteArray &body,
                 std::chrono::milliseconds interval = std::chrono::milliseconds(100));

    /// Sends these bytes for the whole answer, headers included, and then `repeated` for as long as
    /// the client takes it, or without it closes the connection.
    void sendRaw(const QString &path, const QByteArray &bytes, const QByteArray &repeated = {});

    /// Sends the beginning of a feed and then items without end, in chunks, as fast as they are
    /// taken.
    void endless(const QString &path);

    /// The requests so far, in the order in which they arrived.
    QList<Request> requests() const;
    void clearRequests();

    /// What has passed the sockets of all connections, headers included. All that a client has
    /// got of an answer, and has sent for it, is counted by then.
    qint64 bytesReceived() const;
    qint64 bytesSent() const;

    /// The most requests that were being answered at once, in all or with that Host header
    /// ("127.0.0.1:" and the port, for url()). A request is being answered from when its headers
    /// were read, while it waits for the delay too, until its client can get the answer's last
    /// byte or has closed the connection: one that makes its next request then counts as one.
    int peakRequests() const;
    int peakRequests(const QByteArray &host) const;

    /// Sets the counts above to 0, and the peaks to the requests that are being answered now.
    void clearCounts();

private:
    std::unique_ptr<AnsweringServer> d_;
};

} // namespace tidebrook
