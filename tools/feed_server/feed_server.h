#pragma once

#include "feed_server/answer_book.h"

#include <QStringView>

#include <atomic>
#include <condition_variable>
#include <thread>

namespace tidebrook {

/// An HTTP server on the loopback device that gives the answers that it was set to, faults
/// included. It listens on a free port and serves each connection in a thread of its own.
///
/// Paths are given percent-decoded and without a query; a query in a request does not change the
/// answer. What was said last about a path holds, also for requests that come while the server
/// is running; answers that have begun are ended as they began. Paths that nothing was said about
/// are looked for in the directory; the others are answered with 404.
///
/// Thread-safe.
class FeedServer {
public:
    using Headers = Answer::Headers;

    struct Request {
        QByteArray path;                               // as sent: percent-encoded, with the query
        Headers headers;                               // in their order
        std::chrono::steady_clock::time_point arrived; // when its first byte was there

        /// The value of the first header of that name, whatever its case; null if there is none.
        QByteArray header(QByteArrayView name) const;
    };

    /// Requests can be made as soon as it returns. Throws std::runtime_error if it cannot listen.
    /// `address`: 127.0.0.1 or ::1.
    explicit FeedServer(const char *address = "127.0.0.1");

    /// Drops every connection, whatever it is doing, and waits for all threads.
    ~FeedServer();

    FeedServer(const FeedServer &) = delete;
    FeedServer &operator=(const FeedServer &) = delete;

    int port() const { return port_; }

    /// The address of `path`, which begins with a slash and is already percent-encoded.
    QString url(QStringView path) const;

    /// Bodies are sent as they are, never compressed, with their length announced.
    void serve(const QString &path, const QByteArray &body,
               const QByteArray &contentType = "text/xml");

    /// Sends ETag and Last-Modified as they are given; an empty one is not sent. Answers 304,
    /// with both and without a body, if the request's If-None-Match is the ETag byte for byte.
    void serveWithValidators(const QString &path, const QByteArray &body, const QByteArray &etag,
                             const QByteArray &lastModified = {});

    /// Sends the body compressed, whether the client asked for that or not.
    void serveGzip(const QString &path, const QByteArray &body);

    /// Serves the files below `directory`, as they are when they are asked for, each with an ETag,
    /// which differs whenever its content does.
    void serveDirectory(const QString &directory) { book_.setDirectory(directory); }

    /// How long every request, from now on, waits for its answer.
    void setDelay(std::chrono::milliseconds delay) { delay_ = delay; }

    /// Any status, as 503 with a Retry-After among the headers.
    void answerStatus(const QString &path, int status, const QByteArray &body = {},
                      const Headers &headers = {});

    /// `location` is sent as it is, so that it can be relative, of any scheme, or wrong.
    void redirect(const QString &path, const QByteArray &location);

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

    void setAnswer(const QString &path, const Answer &answer) { book_.set(path, answer); }

    /// Sends these bytes on every new connection before it reads a request.
    void setGreeting(const QByteArray &bytes);

    /// Sends the beginning of a feed and then items without end, in chunks, as fast as they are
    /// taken.
    void endless(const QString &path);

    /// The requests so far, in the order in which they arrived.
    QList<Request> requests() const;
    void clearRequests();

    /// What has passed the sockets of all connections, headers included. All that a client has
    /// got of an answer, and has sent for it, is counted by then.
    qint64 bytesReceived() const { return bytesReceived_; }
    qint64 bytesSent() const { return bytesSent_; }

    /// The most requests that were being answered at once, in all or with that Host header
    /// ("127.0.0.1:" and the port, for url()). A request is being answered from when its headers
    /// were read, while it waits for the delay too, until its client can get the answer's last
    /// byte: one that makes its next request then counts as one.
    int peakRequests(const QByteArray &host = {}) const;

    /// Sets the counts of bytes and the peaks to 0, when nothing is being answered.
    void clearCounts();

private:
    void acceptAll();
    void converse(int socket);
    bool readRequest(int socket, QByteArray &rest, Request &request);
    bool answer(int socket, const Request &request);
    bool sendBody(int socket, const Answer &answer);
    void sendAsIs(int socket, const Answer &answer);
    bool send(int socket, const QByteArray &bytes);
    bool waitUnlessStopped(std::chrono::milliseconds time);
    void beginRequest(int socket, const Request &request);
    void endRequest(int socket);

    AnswerBook book_;
    std::atomic<qint64> bytesReceived_{0};
    std::atomic<qint64> bytesSent_{0}; // counted before they can be read at the other end
    std::atomic<std::chrono::milliseconds> delay_{std::chrono::milliseconds(0)};
    int listener_ = -1;
    int port_ = 0;
    QByteArray address_; // as a URL has it

    mutable std::mutex mutex_; // guards what follows
    std::condition_variable changed_;
    bool isStopping_ = false;
    QList<int> sockets_; // of the connections, each of which has a thread
    QList<Request> requests_;
    QByteArray greeting_;
    QHash<int, QByteArray> answered_; // the hosts of the requests that are being answered
    QHash<QByteArray, int> peaks_;    // by host; of all under an empty one

    std::thread acceptor_;
};

} // namespace tidebrook
