#pragma once

#include "platform/base/device_root.h"
#include "platform/sql/registry.h"
#include "platform/sync/stop_signal.h"
#include "service/service_log.h"
#include "update/refresh.h"
#include "update/request_file.h"

#include <QString>

#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace tidebrook {

/// Serves requests for downloads on threads of its own, several at once, so that a server that
/// does not answer keeps nobody waiting but those who ask for its feeds. Of those that wait for a
/// thread the newest is served first, since only it is answered: who asked for another has given
/// up. Every request that was read is served all the same. One thread calls it.
class RequestServer {
public:
    /// The parts outlive it. When `stop` is raised, what is under way ends at once.
    RequestServer(const DeviceRoot &device, Registry &registry, const QString &todayItemKey,
                  ServiceLog &log, const StopSignal &stop);
    /// Waits for its threads, which answer what is still to be answered; raise `stop` first.
    ~RequestServer();
    RequestServer(const RequestServer &) = delete;
    RequestServer &operator=(const RequestServer &) = delete;

    /// Serves what the request file holds now. What is no request is answered with a failure.
    void serveLatest();

private:
    using Queue = std::vector<RequestFile>;

    void work();
    std::optional<RequestFile> takeNewest();
    RefreshResult serve(const RequestFile &request);
    void note(const RequestFile &request, const RefreshResult &result);
    RefreshResult update(const RefreshJob &job);

    const DeviceRoot device_;
    Registry &registry_;
    const QString todayItemKey_;
    ServiceLog &log_;
    const StopSignal &stop_;

    std::mutex mutex_; // guards what follows
    Queue waiting_;    // the newest last
    Queue underWay_;
    std::vector<std::jthread> threads_;
    std::vector<std::thread::id> ended_;
};

} // namespace tidebrook
