#pragma once

#include "feed_server/answer_book.h"
#include "feed_server/connection.h"
#include "feed_server/feed_server.h"
#include "feed_server/request_counts.h"

#include <httplib.h>

#include <condition_variable>
#include <set>
#include <thread>

namespace tidebrook {

/// Listens, records the requests, and answers them as its book says.
class AnsweringServer final : public httplib::Server {
public:
    explicit AnsweringServer(int port);
    ~AnsweringServer() override;
    AnsweringServer(const AnsweringServer &) = delete;
    AnsweringServer &operator=(const AnsweringServer &) = delete;

    int port() const { return port_; }

    AnswerBook book;
    ByteCounts bytes;
    RequestCounts requestCounts;
    std::atomic<int> connectionCount{0};
    std::atomic<std::chrono::milliseconds> delay{std::chrono::milliseconds(0)};

    QList<FeedServer::Request> requests() const;
    void clearRequests();

private:
    void bind(int port);
    void start();
    void dropConnections();

    bool process_and_close_socket(int socket) override;
    bool add(const Connection &connection);
    void remove(const Connection &connection);
    void converse(Connection &connection);
    void prepare(const Connection &connection, httplib::Request &request);
    bool waitUnlessStopped(std::chrono::milliseconds time);

    void respond(const httplib::Request &request, httplib::Response &response);
    void sendBody(const Answer &answer, httplib::Response &response);
    void sendWhole(const Answer &answer, httplib::Response &response);
    void sendTrickled(const Answer &answer, httplib::Response &response);

    int port_ = 0;
    int listeningSocket_ = -1;

    mutable std::mutex requestsMutex_; // guards what follows
    QList<FeedServer::Request> requests_;

    std::mutex connectionsMutex_; // guards what follows
    std::condition_variable stopping_;
    bool isStopping_ = false;
    std::set<const Connection *> connections_;

    std::thread thread_;
};

} // namespace tidebrook
