#include "share/download_failure.h"

#include "platform/sync/stop_signal.h"
#include "store/error_codes.h"
#include "store/settings_store.h"

namespace tidebrook {

quint32 recordDownloadFailure(Registry &registry, HttpProgress progress, const HttpLimits &limits) {
    if (limits.stop && limits.stop->isRaised())
        return 0;
    quint32 code = FeedNotDownloaded;
    if (progress == HttpProgress::NotStarted)
        code = HttpMissing;
    else if (progress == HttpProgress::NotOpened)
        code = FeedNotSent;
    SetLastErrorCode(registry, code);
    return code;
}

} // namespace tidebrook
