#include "feed_server/answering_server.h"

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

void setOption(int socket, int level, int option) {
    const int yes = 1;
    setsockopt(socket, level, option, &yes, sizeof yes);
}

bool waitFor(int socket, short event, int limit = -1) {
    pollfd watched{socket, event, 0};
    int ready = 0;
    do {
        ready = poll(&watched, 1, limit);
    } while (ready < 0 && errno == EINTR);
    return ready > 0 && (watched.revents & event) != 0;
}

bool isLeft(int socket) { return waitFor(socket, POLLRDHUP, 0); }

// A date counts only for a client that has no ETag, even if that is another.
bool hasAlready(const FeedServer::Request &request, const Answer &answer) {
    const QByteArray tag = request.header("If-None-Match");
    const QByteArray &current = tag.isNull() ? answer.lastModified : answer.etag;
    return !current.isEmpty() &&
           current == (tag.isNull() ? request.header("If-Modified-Since") : tag);
}

QString pathOf(const QByteArray &target) {
    return QString::fromUtf8(QByteArray::fromPercentEncoding(
        target.first(target.contains('?') ? target.indexOf('?') : target.size())));
}

} // namespace

AnsweringServer::AnsweringServer(int port) {
    listener_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    setOption(listener_, SOL_SOCKET, SO_REUSEADDR);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<quint16>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    auto *const plain = reinterpret_cast<sockaddr *>(&address);
    socklen_t size = sizeof address;
    if (bind(listener_, plain, size) != 0 || listen(listener_, waitingConnections) != 0 ||
        getsockname(listener_, plain, &size) != 0) {
        close(listener_);
        throw std::runtime_error("cannot listen on port " + std::to_string(port));
    }
    port_ = ntohs(address.sin_port);
    acceptor_ = std::thread([this] { acceptAll(); });
}

AnsweringServer::~AnsweringServer() {
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

void AnsweringServer::acceptAll() {
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
        setOption(socket, IPPROTO_TCP, TCP_NODELAY);
        sockets_.append(socket);
        std::thread([this, socket] { converse(socket); }).detach();
    }
}

void AnsweringServer::converse(int socket) {
    QByteArray rest;
    FeedServer::Request request;
    while (readRequest(socket, rest, request)) {
        beginRequest(socket, request);
        const bool isOver = !waitUnlessStopped(delay.load()) || !answer(socket, request);
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

bool AnsweringServer::readRequest(int socket, QByteArray &rest, FeedServer::Request &request) {
    request = {};
    std::array<char, 4096> buffer;
    const bool hasBegun = !rest.isEmpty() || waitFor(socket, POLLIN);
    request.arrived = std::chrono::steady_clock::now();
    while (hasBegun && !rest.contains("\r\n\r\n")) {
        const ssize_t size = recv(socket, buffer.data(), buffer.size(), 0);
        if (size <= 0)
            return false;
        bytesReceived += size;
        rest.append(buffer.data(), size);
    }
    const qsizetype end = rest.indexOf("\r\n\r\n");
    if (end < 0)
        return false;
    const QList<QByteArray> lines = rest.first(end).split('\n');
    rest.remove(0, end + 4);
    const QList<QByteArray> words = lines.constFirst().split(' ');
    request.path = words.value(1);
    for (const QByteArray &line : lines.sliced(1)) {
        const qsizetype colon = line.indexOf(':');
        request.headers.append({line.first(qMax(colon, 0LL)), line.sliced(colon + 1).trimmed()});
    }
    return true;
}

bool AnsweringServer::answer(int socket, const FeedServer::Request &request) {
    Answer answer = book.find(pathOf(request.path));
    if (hasAlready(request, answer)) {
        answer.status = 304;
        answer.body.clear();
    }
    switch (answer.manner) {
    case Answer::Manner::Never:
        waitFor(socket, POLLRDHUP);
        return false;
    case Answer::Manner::Raw:
        while (send(socket, answer.body) && !answer.repeated.isEmpty())
            answer.body = answer.repeated;
        return false;
    case Answer::Manner::Trickled:
    case Answer::Manner::Whole:
        break;
    }
    if (answer.body.isEmpty())
        endRequest(socket);
    return send(socket, answer.head()) && sendBody(socket, answer);
}

bool AnsweringServer::sendBody(int socket, const Answer &answer) {
    if (answer.body.isEmpty())
        return true;
    for (qsizetype i = 0; answer.manner == Answer::Manner::Trickled && i + 1 < answer.body.size();
         ++i) {
        if (!send(socket, answer.body.sliced(i, 1)) || !waitUnlessStopped(answer.interval))
            return false;
    }
    // Its last byte makes the client's next request possible.
    const bool isTrickled = answer.manner == Answer::Manner::Trickled;
    if (!isTrickled && !send(socket, answer.body.chopped(1)))
        return false;
    endRequest(socket);
    return send(socket, answer.body.last(1));
}

// Never blocks between counting and sending, so that the count holds while a client is slow.
bool AnsweringServer::send(int socket, const QByteArray &bytes) {
    for (qsizetype begin = 0; begin < bytes.size();) {
        if (!waitFor(socket, POLLOUT))
            return false;
        const qsizetype size = bytes.size() - begin;
        bytesSent += size;
        const ssize_t taken = ::send(socket, bytes.constData() + begin, static_cast<size_t>(size),
                                     MSG_NOSIGNAL | MSG_DONTWAIT);
        bytesSent -= size - std::max<ssize_t>(taken, 0);
        if (taken < 0 && errno != EAGAIN && errno != EINTR)
            return false;
        begin += std::max<ssize_t>(taken, 0);
    }
    return true;
}

bool AnsweringServer::waitUnlessStopped(milliseconds time) {
    std::unique_lock lock(mutex_);
    return !changed_.wait_for(lock, time, [this] { return isStopping_; });
}

QList<FeedServer::Request> AnsweringServer::requests() const {
    // A shared list would be grown in place while its reader, who holds no lock, lets go of it.
    const std::lock_guard lock(mutex_);
    return {requests_.begin(), requests_.end()};
}

void AnsweringServer::clearRequests() {
    const std::lock_guard lock(mutex_);
    requests_.clear();
}

int AnsweringServer::peak() const {
    const std::lock_guard lock(mutex_);
    return peak_;
}

int AnsweringServer::peak(const QByteArray &host) const {
    const std::lock_guard lock(mutex_);
    return peaks_.value(host);
}

void AnsweringServer::clearPeaks() {
    const std::lock_guard lock(mutex_);
    peaks_.clear();
    peak_ = 0;
    raisePeaks();
}

void AnsweringServer::beginRequest(int socket, const FeedServer::Request &request) {
    const std::lock_guard lock(mutex_);
    requests_.append(request);
    answered_.insert(socket, request.header("Host"));
    raisePeaks();
}

// Comes before the client can know the whole answer: else the request that it makes next would be
// taken for one at the same time.
void AnsweringServer::endRequest(int socket) {
    const std::lock_guard lock(mutex_);
    answered_.remove(socket);
}

void AnsweringServer::raisePeaks() {
    // The thread that answers a client which has given up may not have noticed yet.
    answered_.removeIf([](const auto &request) { return isLeft(request.key()); });
    QHash<QByteArray, int> counts;
    for (const QByteArray &host : std::as_const(answered_)) {
        int &peak = peaks_[host];
        peak = std::max(peak, ++counts[host]);
    }
    peak_ = std::max(peak_, static_cast<int>(answered_.size()));
}

} // namespace tidebrook
