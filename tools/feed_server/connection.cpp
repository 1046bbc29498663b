#include "feed_server/connection.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>

namespace tidebrook {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds idleTime{5000};
constexpr milliseconds forEver{-1};

void describeEndpoint(const sockaddr_in &address, std::string &ip, int &port) {
    char text[INET_ADDRSTRLEN] = {};
    inet_ntop(AF_INET, &address.sin_addr, text, sizeof text);
    ip = text;
    port = ntohs(address.sin_port);
}

} // namespace

bool Connection::is_readable() const { return begin_ < end_ || waitFor(POLLIN, milliseconds(0)); }

bool Connection::is_writable() const { return waitFor(POLLOUT, forEver); }

ssize_t Connection::read(char *data, size_t size) {
    if (begin_ == end_ && !fill())
        return -1;
    const size_t taken = std::min(size, end_ - begin_);
    std::copy_n(buffer_.begin() + static_cast<std::ptrdiff_t>(begin_), taken, data);
    begin_ += taken;
    readSoFar_.append(data, static_cast<qsizetype>(taken));
    return static_cast<ssize_t>(taken);
}

// Never blocks between counting and sending, so that the counts hold while a client is slow.
ssize_t Connection::write(const char *data, size_t size) {
    ssize_t taken = -1;
    do {
        waitFor(POLLOUT, forEver);
        counts_.sent += static_cast<qint64>(size);
        taken = send(socket_, data, size, MSG_NOSIGNAL | MSG_DONTWAIT);
        counts_.sent -= static_cast<qint64>(size) - std::max<ssize_t>(taken, 0);
    } while (taken < 0 && (errno == EAGAIN || errno == EINTR));
    return taken;
}

void Connection::get_remote_ip_and_port(std::string &ip, int &port) const {
    sockaddr_in address{};
    socklen_t size = sizeof address;
    getpeername(socket_, reinterpret_cast<sockaddr *>(&address), &size);
    describeEndpoint(address, ip, port);
}

void Connection::get_local_ip_and_port(std::string &ip, int &port) const {
    sockaddr_in address{};
    socklen_t size = sizeof address;
    getsockname(socket_, reinterpret_cast<sockaddr *>(&address), &size);
    describeEndpoint(address, ip, port);
}

bool Connection::awaitRequest() {
    readSoFar_.clear();
    const bool hasCome = begin_ < end_ || waitFor(POLLIN, idleTime);
    arrived_ = std::chrono::steady_clock::now();
    return hasCome;
}

void Connection::waitUntilLeft() const { waitFor(POLLRDHUP, forEver); }

bool Connection::isLeft() const { return waitFor(POLLRDHUP, milliseconds(0)); }

void Connection::drop() const { shutdown(socket_, SHUT_RDWR); }

bool Connection::waitFor(short event, milliseconds limit) const {
    pollfd watched{socket_, event, 0};
    int ready = 0;
    do {
        ready = poll(&watched, 1, static_cast<int>(limit.count()));
    } while (ready < 0 && errno == EINTR);
    return ready > 0 && (watched.revents & event) != 0;
}

bool Connection::fill() {
    if (!waitFor(POLLIN, idleTime))
        return false;
    const ssize_t size = recv(socket_, buffer_.data(), buffer_.size(), 0);
    begin_ = 0;
    end_ = size > 0 ? static_cast<size_t>(size) : 0;
    counts_.received += static_cast<qint64>(end_);
    return size > 0;
}

} // namespace tidebrook
