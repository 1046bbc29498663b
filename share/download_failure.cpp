#include "share/download_failure.h"

#include "platform/sync/stop_signal.h"
#include "store/error_codes.h"

namespace tidebrook {

quint32 downloadFailure(HttpProgress progress, const HttpLimits &limits) {
    if (limits.stop && limits.stop->isRaised())
        return 0;
    switch (progress) {
    case HttpProgress::NotStarted:
        return HttpMissing;
    case HttpProgress::NotOpened:
        return FeedNotSent;
    default:
        return FeedNotDownloaded;
    }
}

} // namespace tidebrook
