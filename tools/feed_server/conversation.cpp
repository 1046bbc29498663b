#include "feed_server/feed_server.h"

#include <QUrl>

#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <stdexcept>

namespace tidebrook {

namespace {

using std::chrono::milliseconds;

constexpr int waitingConnections = 128;

bool waitFor(int socket, short event) {
    pollfd watched{socket, event, 0};
    int ready = 0;
    do {
        ready = poll(&watched, 1, -1);
    } while (ready < 0 && errno == EINTR);
    return ready > 0 && (watched.revents & event) != 0;
}

} // namespace

FeedServer::FeedServer(const char *address) : address_(address) {
    if (address_.contains(':'))
        address_ = '[' + address_ + ']';
    addrinfo hints{};
    hints.ai_flags = AI_NUMERICHOST;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo *found = nullptr;
    if (getaddrinfo(address, "0", &hints, &found) != 0)
        throw std::runtime_error("not an address");
    listener_ = socket(found->ai_family, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in6 own{}; // the port of an IPv4 address has the same place
    socklen_t size = sizeof own;
    const bool isListening = bind(listener_, found->ai_addr, found->ai_addrlen) == 0 &&
                             listen(listener_, waitingConnections) == 0 &&
                             getsockname(listener_, reinterpret_cast<sockaddr *>(&own), &size) == 0;
    freeaddrinfo(found);
    if (!isListening) {
        close(listener_);
        throw std::runtime_error("cannot listen on the loopback device");
    }
    port_ = ntohs(own.sin6_port);
    acceptor_ = std::thread([this] { acceptAll(); });
}

FeedServer::~FeedServer() {
    {
        const std::lock_guard lock(mutex_);
        isStopping_ = true;
        changed_.notify_all();
        for (const int socket : std::as_const(sockets_))
            shutdown(socket, SHUT_RDWR);
    }
    shutdown(listener_, SHUT_RDWR);
    acceptor_.join();
    close(listener_);
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return sockets_.isEmpty(); });
}

void FeedServer::acceptAll() {
    while (true) {
        const int socket = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
        const std::lock_guard lock(mutex_);
        if (isStopping_) {
            if (socket >= 0)
                close(socket);
            return;
        }
        if (socket < 0)
            continue;
        const int yes = 1;
        setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
        sockets_.append(socket);
        std::thread([this, socket] { converse(socket); }).detach();
    }
}

void FeedServer::converse(int socket) {
    QByteArray rest;
    Request request;
    QByteArray greeting;
    {
        const std::lock_guard lock(mutex_);
        greeting = greeting_;
    }
    send(socket, greeting);
    while (readRequest(socket, rest, request)) {
        beginRequest(socket, request);
        const bool isOver = !waitUnlessStopped(delay_.load()) || !answer(socket, request);
        endRequest(socket);
        if (isOver)
            break;
    }
    // The socket's number is free for another connection once it is closed.
    const std::lock_guard lock(mutex_);
    sockets_.removeOne(socket);
    close(socket);
    changed_.notify_all();
}

bool FeedServer::readRequest(int socket, QByteArray &rest, Request &request) {
    request = {};
    request.arrived = std::chrono::steady_clock::now();
    std::array<char, 4096> buffer;
    while (!rest.contains("\r\n\r\n")) {
        const ssize_t size = recv(socket, buffer.data(), buffer.size(), 0);
        if (size <= 0)
            return false;
        if (rest.isEmpty())
            request.arrived = std::chrono::steady_clock::now();
        bytesReceived_ += size;
        rest.append(buffer.data(), size);
    }
    const qsizetype end = rest.indexOf("\r\n\r\n");
    const QList<QByteArray> lines = rest.first(end).split('\n');
    rest.remove(0, end + 4);
    request.path = lines.constFirst().split(' ').value(1);
    for (const QByteArray &line : lines.sliced(1)) {
        const qsizetype colon = line.indexOf(':');
        request.headers.append({line.first(qMax(colon, 0LL)), line.sliced(colon + 1).trimmed()});
    }
    return true;
}

bool FeedServer::answer(int socket, const Request &request) {
    Answer answer = book_.find(QUrl::fromEncoded(request.path).path(QUrl::FullyDecoded));
    if (!answer.etag.isEmpty() && request.header("If-None-Match") == answer.etag) {
        answer.status = 304;
        answer.body.clear();
    }
    if (answer.manner == Answer::Manner::Never) {
        waitFor(socket, POLLRDHUP);
        return false;
    }
    if (answer.manner == Answer::Manner::Raw) {
        sendAsIs(socket, answer);
        return false;
    }
    if (answer.body.isEmpty())
        endRequest(socket);
    return send(socket, answer.head()) && sendBody(socket, answer);
}

void FeedServer::sendAsIs(int socket, const Answer &answer) {
    const qsizetype step = answer.interval.count() > 0 ? 1 : answer.body.size();
    for (qsizetype i = 0; i < answer.body.size(); i += step) {
        if (!send(socket, answer.body.sliced(i, step)) || !waitUnlessStopped(answer.interval))
            return;
    }
    while (!answer.repeated.isEmpty()) {
        if (!send(socket, answer.repeated))
            return;
    }
    const linger none{1, 0};
    if (answer.ending == Answer::Ending::Hold)
        waitFor(socket, POLLRDHUP);
    else if (answer.ending == Answer::Ending::Reset)
        setsockopt(socket, SOL_SOCKET, SO_LINGER, &none, sizeof none);
}

bool FeedServer::sendBody(int socket, const Answer &answer) {
    if (answer.body.isEmpty())
        return true;
    const qsizetype last = answer.body.size() - 1;
    const qsizetype step = answer.interval.count() > 0 ? 1 : last;
    for (qsizetype i = 0; i < last; i += step) {
        if (!send(socket, answer.body.sliced(i, step)) || !waitUnlessStopped(answer.interval))
            return false;
    }
    // Its last byte makes the client's next request possible.
    endRequest(socket);
    return send(socket, answer.body.last(1));
}

// Never blocks between counting and sending, so that the count holds while a client is slow.
bool FeedServer::send(int socket, const QByteArray &bytes) {
    for (qsizetype begin = 0; begin < bytes.size();) {
        if (!waitFor(socket, POLLOUT))
            return false;
        const qsizetype size = bytes.size() - begin;
        bytesSent_ += size;
        const ssize_t taken = ::send(socket, bytes.constData() + begin, static_cast<size_t>(size),
                                     MSG_NOSIGNAL | MSG_DONTWAIT);
        bytesSent_ -= size - std::max<ssize_t>(taken, 0);
        if (taken < 0 && errno != EAGAIN && errno != EINTR)
            return false;
        begin += std::max<ssize_t>(taken, 0);
    }
    return true;
}

bool FeedServer::waitUnlessStopped(milliseconds time) {
    std::unique_lock lock(mutex_);
    return !changed_.wait_for(lock, time, [this] { return isStopping_; });
}

void FeedServer::beginRequest(int socket, const Request &request) {
    const std::lock_guard lock(mutex_);
    requests_.append(request);
    const QByteArray host = request.header("Host");
    answered_.insert(socket, host);
    peaks_[host] = std::max(peaks_[host], static_cast<int>(answered_.values().count(host)));
    peaks_[{}] = std::max(peaks_[{}], static_cast<int>(answered_.size()));
}

// Comes before the client can know the whole answer: else the request that it makes next would be
// taken for one at the same time.
void FeedServer::endRequest(int socket) {
    const std::lock_guard lock(mutex_);
    answered_.remove(socket);
}

} // namespace tidebrook
