#pragma once

#include "feed_server/answer_book.h"
#include "feed_server/feed_server.h"

#include <QHash>

#include <atomic>
#include <condition_variable>
#include <thread>

namespace tidebrook {

/// Listens, records the requests, and answers them as its book says, each connection in a thread of
/// its own.
class AnsweringServer {
public:
    explicit AnsweringServer(int port);
    /// Drops every connection and waits for the threads.
    ~AnsweringServer();
    AnsweringServer(const AnsweringServer &) = delete;
    AnsweringServer &operator=(const AnsweringServer &) = delete;

    int port() const { return port_; }

    AnswerBook book;
    std::atomic<qint64> bytesReceived{0};
    std::atomic<qint64> bytesSent{0}; // counted before they can be read at the other end
    std::atomic<std::chrono::milliseconds> delay{std::chrono::milliseconds(0)};

    QList<FeedServer::Request> requests() const;
    void clearRequests();
    int peak() const;
    int peak(const QByteArray &host) const;
    void clearPeaks();

private:
    void acceptAll();
    void converse(int socket);
    bool readRequest(int socket, QByteArray &rest, FeedServer::Request &request);
    bool answer(int socket, const FeedServer::Request &request);
    bool sendBody(int socket, const Answer &answer);
    bool send(int socket, const QByteArray &bytes);
    bool waitUnlessStopped(std::chrono::milliseconds time);

    void beginRequest(int socket, const FeedServer::Request &request);
    void endRequest(int socket);
    void raisePeaks();

    int listener_ = -1;
    int port_ = 0;

    mutable std::mutex mutex_; // guards what follows
    std::condition_variable changed_;
    bool isStopping_ = false;
    QList<int> sockets_; // of the connections, each of which has a thread
    QList<FeedServer::Request> requests_;
    QHash<int, QByteArray> answered_; // the hosts of the requests that are being answered
    QHash<QByteArray, int> peaks_;    // by host
    int peak_ = 0;

    std::thread acceptor_;
};

} // namespace tidebrook
