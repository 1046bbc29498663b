#pragma once

#include <httplib.h>

#include <QByteArray>

#include <array>
#include <atomic>
#include <chrono>

namespace tidebrook {

/// What passed the sockets. Bytes sent are counted before they can be read at the other end.
struct ByteCounts {
    std::atomic<qint64> received{0};
    std::atomic<qint64> sent{0};
};

/// A client's connection. The library's own stream waits for seconds on a silent client and cannot
/// be woken. This one ends as soon as its socket is shut down from another thread.
///
/// isLeft() and drop() can be called from any thread, the rest from the one that serves it.
class Connection final : public httplib::Stream {
public:
    /// The socket stays the caller's, who closes it after this object's end.
    Connection(int socket, ByteCounts &counts) : socket_(socket), counts_(counts) {}

    bool is_readable() const override;
    bool is_writable() const override;
    ssize_t read(char *data, size_t size) override;
    ssize_t write(const char *data, size_t size) override;
    void get_remote_ip_and_port(std::string &ip, int &port) const override;
    void get_local_ip_and_port(std::string &ip, int &port) const override;
    int socket() const override { return socket_; }

    /// Waits for the first byte of a request; false if none comes for too long.
    bool awaitRequest();

    /// When that byte was there.
    std::chrono::steady_clock::time_point arrived() const { return arrived_; }

    /// What has been read of the request so far, byte for byte.
    const QByteArray &readSoFar() const { return readSoFar_; }

    /// Returns when the client has closed its side, or when this side was shut down.
    void waitUntilLeft() const;
    bool isLeft() const;

    void drop() const;

private:
    bool waitFor(short event, std::chrono::milliseconds limit) const;
    bool fill();

    int socket_;
    ByteCounts &counts_;
    std::array<char, 4096> buffer_;
    size_t begin_ = 0;
    size_t end_ = 0;
    QByteArray readSoFar_;
    std::chrono::steady_clock::time_point arrived_;
};

} // namespace tidebrook
