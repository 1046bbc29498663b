#include "feed_server/request_counts.h"

#include "feed_server/connection.h"

#include <algorithm>

namespace tidebrook {

void RequestCounts::begin(const Connection &connection, const QByteArray &host) {
    const std::lock_guard lock(mutex_);
    hosts_.insert(&connection, host);
    raisePeaks();
}

void RequestCounts::end(const Connection &connection) {
    const std::lock_guard lock(mutex_);
    hosts_.remove(&connection);
}

int RequestCounts::peak() const {
    const std::lock_guard lock(mutex_);
    return peak_;
}

int RequestCounts::peak(const QByteArray &host) const {
    const std::lock_guard lock(mutex_);
    return peaks_.value(host);
}

void RequestCounts::clear() {
    const std::lock_guard lock(mutex_);
    peaks_.clear();
    peak_ = 0;
    raisePeaks();
}

void RequestCounts::raisePeaks() {
    // The thread that answers a client which has given up may not have noticed yet.
    hosts_.removeIf([](const auto &answered) { return answered.key()->isLeft(); });
    QHash<QByteArray, int> counts;
    for (const QByteArray &host : std::as_const(hosts_)) {
        int &peak = peaks_[host];
        peak = std::max(peak, ++counts[host]);
    }
    peak_ = std::max(peak_, static_cast<int>(hosts_.size()));
}

} // namespace tidebrook
