#pragma once

#include "platform/base/device_root.h"
#include "platform/sql/registry.h"
#include "platform/sync/tasks.h"
#include "service/service_log.h"
#include "update/refresh.h"
#include "update/request_file.h"

#include <QString>

#include <mutex>
#include <optional>
#include <vector>

namespace tidebrook {

/// Serves requests for downloads on threads of its own, several at once, so that a server that
/// does not answer delays only the requests for its feeds. Of the requests that wait for a thread
/// the newest is served first, since only it is answered: a requester waits for its latest request
/// alone. Every request that was read is served all the same. One thread calls it.
class RequestServer {
public:
    /// The parts outlive it. When `stop` is raised, what is under way ends at once. The destructor
    /// waits for the threads, which answer the remaining requests; raise `stop` first.
    RequestServer(const DeviceRoot &device, Registry &registry, const QString &todayItemKey,
                  ServiceLog &log, const StopSignal &stop);

    /// Serves what the request file holds now. A file that is no request is answered with a
    /// failure.
    void serveLatest();

private:
    void work();
    std::optional<RequestFile> takeNewest();
    void note(const RequestFile &request, const RefreshResult &result);
    RefreshResult update(const RefreshJob &job);

    const DeviceRoot device_;
    Registry &registry_;
    const QString todayItemKey_;
    ServiceLog &log_;
    const StopSignal &stop_;

    std::mutex mutex_;                 // guards these
    std::vector<RequestFile> waiting_; // the newest last
    std::vector<RequestFile> underWay_;
    int workerCount_ = 0;

    Threads threads_; // the first to end
};

} // namespace tidebrook
