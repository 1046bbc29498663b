#pragma once

#include <QByteArray>
#include <QHash>

#include <mutex>

namespace tidebrook {

class Connection;

/// How many requests are being answered at once, and were at most, for all hosts and for each.
/// Thread-safe.
class RequestCounts {
public:
    /// A connection has one request at a time. It must be ended before the connection's end.
    void begin(const Connection &connection, const QByteArray &host);

    /// To be called before the client can know the whole answer: else the request that it makes
    /// next would be taken for one at the same time. Does nothing if the request was ended already.
    void end(const Connection &connection);

    int peak() const;
    int peak(const QByteArray &host) const;

    /// Forgets the peaks, but not the requests that are being answered.
    void clear();

private:
    void raisePeaks();

    mutable std::mutex mutex_; // guards what follows
    QHash<const Connection *, QByteArray> hosts_;
    QHash<QByteArray, int> peaks_;
    int peak_ = 0;
};

} // namespace tidebrook
