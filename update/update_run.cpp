#include "update/update_run.h"

#include "platform/base/text.h"
#include "platform/desktop/service.h"
#include "platform/sync/pause.h"
#include "store/error_codes.h"
#include "store/escape_sql.h"

namespace tidebrook {

namespace {

constexpr int channelPause = 2000; // ms, before each channel of a category

QString cutCategory(const QString &text) { return cutText(text, categoryCapacity).toString(); }

bool isFailure(DownloadAnswer answer) {
    return answer == DownloadAnswer::Failed || answer == DownloadAnswer::TimedOut;
}

} // namespace

UpdateRun::UpdateRun(const UpdateParts &parts, const UpdateObserver &observer)
    : parts_(parts), observer_(observer), answers_(parts.device) {}

bool UpdateRun::updateChannel(const QString &category, const QString &channel) {
    const QString name = cutText(channel, channelNameCapacity).toString();
    const QString owner = cutCategory(category);
    const std::optional<RefreshJob> job = findJob(owner, name);
    if (!job)
        return endAt(owner, name);
    if (job->url.isEmpty())
        return true;
    const DownloadAnswer answer = request(*job);
    if (parts_.interrupt.isStopped())
        return true;
    if (isFailure(answer))
        return endAt(owner, name);
    parts_.store.PublishTotalUnread();
    observer_.updated(owner, name);
    return true;
}

// Without an address where there is no such channel; nothing when it cannot be read.
std::optional<RefreshJob> UpdateRun::findJob(const QString &category, const QString &channel) {
    RefreshJob job{{}, channel, category};
    const auto guard = parts_.store.lock();
    if (parts_.store.GetChannelLink(category, channel, job.url))
        return job;
    fail(parts_.store.error());
    return std::nullopt;
}

bool UpdateRun::updateCategory(const QString &category) {
    const QString name = cutCategory(category);
    QStringList channels;
    if (!listChannels(name, channels))
        return endAt(name, {});
    const int count = static_cast<int>(channels.size());
    for (int i = 0; i < count; ++i) {
        observer_.stepped(i, count);
        const bool isUpdated = updateListed(name, channels.at(i));
        if (parts_.interrupt.isStopped())
            return true;
        if (!isUpdated)
            return endAt(name, channels.at(i));
    }
    return true;
}

bool UpdateRun::listChannels(const QString &category, QStringList &names) {
    const auto guard = parts_.store.lock();
    QList<ChannelRow> channels;
    if (!parts_.store.ListChannelsByName(category, channels))
        return fail(parts_.store.error());
    for (const ChannelRow &channel : channels)
        names.append(channel.name);
    return true;
}

bool UpdateRun::updateListed(const QString &category, const QString &channel) {
    const std::optional<RefreshJob> job = findJob(category, channel);
    if (!job)
        return false;
    if (job->url.isEmpty() || !Pause(channelPause, &parts_.interrupt.stopSignal()))
        return true;
    const DownloadAnswer answer = request(*job);
    if (isFailure(answer))
        return false;
    // A user who ends the wait wants the next channel at once, not this one's counts.
    if (answer == DownloadAnswer::Done) {
        ReadFlagCounts counts;
        parts_.store.PublishTotalUnread();
        if (parts_.store.CountReadFlags(category, channel, counts))
            observer_.counted(category, channel, counts.unread, counts.total);
    }
    return true;
}

DownloadAnswer UpdateRun::request(const RefreshJob &job) {
    if (parts_.interrupt.isStopped())
        return DownloadAnswer::Input;
    // Where it cannot be started, the request times out.
    activateService(parts_.device);
    requestDownload(parts_.device, job, answers_);
    parts_.interrupt.clear();
    const DownloadAnswer answer =
        answers_.wait(parts_.answerTimeout, parts_.interrupt.descriptor());
    if (answer == DownloadAnswer::TimedOut)
        SetLastErrorCode(parts_.registry, NothingKnown);
    return answer;
}

bool UpdateRun::endAt(const QString &category, const QString &channel) {
    observer_.failed(category, channel);
    return false;
}

bool UpdateRun::fail(quint32 code) {
    SetLastErrorCode(parts_.registry, code != 0 ? code : DatabaseFailed);
    return false;
}

} // namespace tidebrook
