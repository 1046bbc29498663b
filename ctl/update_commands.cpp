#include "ctl/commands.h"
#include "ctl/output.h"
#include "res/strings.h"
#include "store/error_codes.h"
#include "update/channel_update.h"
#include "update/refresh.h"
#include "update/update_history.h"

#include <functional>

namespace tidebrook {

namespace {

constexpr int defaultJobs = 8;
constexpr int jobLimit = 64;

using Observer = std::function<void(qsizetype, const RefreshResult &)>;

// The same work as a request of the screens is answered with, one channel after another.
QList<RefreshResult> updateOneByOne(CommandDevice &device, const QList<RefreshJob> &jobs,
                                    const Observer &observer) {
    QList<RefreshResult> results;
    for (const RefreshJob &job : jobs) {
        RefreshResult result;
        const bool isOpen =
            updateChannel({device.root, device.registry, device.store}, job, &result);
        if (!isOpen && result.error == 0)
            result.error = DatabaseFailed;
        observer(results.size(), result);
        results.append(result);
    }
    return results;
}

void printResult(const RefreshJob &job, const RefreshResult &result) {
    if (result.error != 0) {
        printFault({QStringLiteral("error"), QString::number(result.error),
                    errorMessage(result.error), job.channelName});
        return;
    }
    printFields({QStringLiteral("ok"), QString::number(result.storedCount),
                 counts(result.counts.unread, result.counts.total), job.channelName});
}

// The channels that the operands name; nothing, and the failure is reported, when there are none
// such.
std::optional<QList<RefreshJob>> wantedJobs(CommandDevice &device, const QString &category,
                                            const QString &channel) {
    if (!device.lock())
        return std::nullopt;
    if (!category.isNull() && !device.hasCategory(category))
        return std::nullopt;
    if (!channel.isNull()) {
        const std::optional<RefreshJob> job = jobOf(device, category, channel);
        return job ? std::optional(QList<RefreshJob>{*job}) : std::nullopt;
    }
    const auto channels = device.channels(category);
    if (!channels)
        return std::nullopt;
    QList<RefreshJob> jobs;
    for (const ListedChannel &listed : *channels)
        jobs.append({listed.link, listed.name, listed.category});
    return jobs;
}

} // namespace

std::optional<RefreshJob> jobOf(CommandDevice &device, const QString &category,
                                const QString &channel) {
    QString actual;
    QString link;
    if (!device.hasChannel(channel))
        return std::nullopt;
    if (!device.store.FindCategory(channel, actual) ||
        !device.store.GetChannelLink(actual, channel, link)) {
        failStore(device);
        return std::nullopt;
    }
    if (actual != category) {
        fail(QStringLiteral("\"%1\" is not in \"%2\"").arg(channel, category));
        return std::nullopt;
    }
    return RefreshJob{link, channel, category};
}

int runUpdate(CommandDevice &device, const Arguments &arguments) {
    const QString category = arguments.operands.value(0);
    const QString channel = arguments.operands.value(1);
    bool isNumber = true;
    const int parallel = arguments.jobs.isEmpty() ? defaultJobs : arguments.jobs.toInt(&isNumber);
    if (!isNumber || parallel < 1 || parallel > jobLimit)
        return failUsage(QStringLiteral("--jobs takes a number from 1 to %1").arg(jobLimit));
    const bool isOneByOne = arguments.options.contains(QStringLiteral("pauses"));
    if (isOneByOne && !arguments.jobs.isEmpty())
        return failUsage(QStringLiteral("--pauses goes without --jobs"));
    const std::optional<QList<RefreshJob>> wanted = wantedJobs(device, category, channel);
    device.unlock(); // others must not wait for the servers that this waits for
    if (!wanted)
        return ExitFailed;
    const QList<RefreshJob> &jobs = *wanted;

    bool hasFailure = false;
    QList<RefreshResult> results;
    {
        ConsoleProgress progress;
        UpdateStateStore states(device.root);
        int ended = 0;
        const Observer observer = [&](qsizetype index, const RefreshResult &result) {
            hasFailure = hasFailure || result.error != 0;
            noteRequested(states, jobs[index], result);
            progress.show(QStringLiteral("%1 of %2  %3")
                              .arg(++ended)
                              .arg(jobs.size())
                              .arg(jobs[index].channelName));
        };
        progress.show(QStringLiteral("0 of %1").arg(jobs.size()));
        results = isOneByOne ? updateOneByOne(device, jobs, observer)
                             : refreshChannels({device.root, device.registry, device.store}, jobs,
                                               parallel, observer);
    }
    device.store.PublishTotalUnread();
    for (qsizetype i = 0; i < jobs.size(); ++i)
        printResult(jobs[i], results[i]);
    return hasFailure ? ExitFailed : ExitDone;
}

} // namespace tidebrook
