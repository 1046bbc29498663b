#include "share/download_failure.h"

#include "platform/stop_signal.h"
#include "store/error_codes.h"

namespace tidebrook {

quint32 downloadFailure(HttpProgress progress, const HttpLimits &limits) {
    if (limits.stop && limits.stop->isRaised())
        return 0;
    return progress == HttpProgress::NotOpened ? FeedNotSent : FeedNotDownloaded;
}

} // namespace tidebrook
