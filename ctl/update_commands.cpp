#include "ctl/commands.h"
#include "ctl/output.h"
#include "platform/base/clock.h"
#include "res/strings.h"
#include "store/error_codes.h"
#include "update/channel_update.h"
#include "update/polite_refresh.h"
#include "update/update_history.h"

#include <functional>
#include <vector>

namespace tidebrook {

namespace {

constexpr int defaultJobs = 8;
constexpr int jobLimit = 64;

/// How the update of a channel ended.
struct ChannelEnd {
    RefreshResult result{HttpMissing, 0, {}, false}; // what it is where nothing can be sent
    QDateTime later;                                 // valid: it is not asked for before then
};

using Observer = std::function<void(std::size_t, const ChannelEnd &)>;

// The same work as a request of the screens is answered with, one channel after another.
void updateOneByOne(CommandDevice &device, const QList<RefreshJob> &jobs,
                    const Observer &observer) {
    UpdateStateStore states(device.root);
    for (qsizetype i = 0; i < jobs.size(); ++i) {
        RefreshResult result;
        const bool isOpen =
            updateChannel({device.root, device.registry, device.store}, jobs[i], &result);
        if (!isOpen && result.error == 0)
            result.error = DatabaseFailed;
        noteRequested(states, jobs[i], result);
        observer(static_cast<std::size_t>(i), {result, {}});
    }
}

/// What is asked for.
struct Wanted {
    QList<RefreshJob> jobs;
    bool isOneNamed = false; ///< a channel, by a user who wants it now
    bool isFull = false;     ///< whatever is known of the feeds
    int parallel = 0;
};

// As the downloader does: with what is known of the feeds, and not before their servers want it.
// Somebody who names a channel or wants everything does not wait because it has failed before.
void updatePolitely(CommandDevice &device, const Wanted &wanted, const Observer &observer) {
    UpdateStateStore states(device.root);
    const QHash<QString, UpdateState> known = states.readAll();
    const QDateTime now = utcNow();
    std::vector<FeedTurn> turns;
    std::vector<std::size_t> indices; // of the turns' jobs
    for (qsizetype i = 0; i < wanted.jobs.size(); ++i) {
        const RefreshJob &job = wanted.jobs[i];
        const auto index = static_cast<std::size_t>(i);
        const UpdateState state =
            stateAt(wanted.isFull ? UpdateState() : known.value(job.channelName), job.url);
        const QDateTime next =
            wanted.isOneNamed ? serverWish(state, now) : nextTry(state, false, now);
        if (next.isValid() && next > now) {
            observer(index, {{}, next});
            continue;
        }
        if (wanted.isOneNamed || wanted.isFull)
            forgetFailures(states, job);
        turns.push_back({job, state});
        indices.push_back(index);
    }
    const TurnObserver turnObserver{[&](std::size_t turn, const RefreshResult &result, bool) {
                                        observer(indices[turn], {result, {}});
                                    },
                                    [&](std::size_t turn, const QDateTime &until) {
                                        // A host that does not answer asks for nothing, and has
                                        // failed its other feeds, too.
                                        const quint32 error =
                                            until.isValid() ? 0U : quint32{FeedNotComplete};
                                        observer(indices[turn], {{error, 0, {}, false}, until});
                                    }};
    refreshPolitely({device.root, device.registry, device.store}, states, turns, wanted.parallel,
                    now, turnObserver);
}

void printLater(const RefreshJob &job, const QDateTime &later, bool isOneNamed) {
    QStringList fields{QStringLiteral("later"), displayedMoment(later), job.channelName};
    if (isOneNamed)
        fields.append(QStringLiteral("its server asks for this; --full asks it all the same"));
    printFields(fields);
}

void printResult(const RefreshJob &job, const RefreshResult &result) {
    if (result.error != 0) {
        QStringList fields{QStringLiteral("error"), QString::number(result.error),
                           errorMessage(result.error), job.channelName};
        if (!result.detail.isEmpty())
            fields.append(result.detail);
        printFault(fields);
        return;
    }
    printFields({QStringLiteral("ok"), QString::number(result.storedCount),
                 counts(result.counts.unread, result.counts.total), job.channelName});
}

int printEnds(const Wanted &wanted, const std::vector<ChannelEnd> &ends) {
    bool hasFailure = false;
    for (std::size_t i = 0; i < ends.size(); ++i) {
        const RefreshJob &job = wanted.jobs[static_cast<qsizetype>(i)];
        if (ends[i].later.isValid()) {
            printLater(job, ends[i].later, wanted.isOneNamed);
            continue;
        }
        hasFailure = hasFailure || ends[i].result.error != 0;
        printResult(job, ends[i].result);
    }
    return hasFailure ? ExitFailed : ExitDone;
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
    const bool isFull = arguments.options.contains(QStringLiteral("full"));
    if (isOneByOne && (isFull || !arguments.jobs.isEmpty()))
        return failUsage(QStringLiteral("--pauses goes without --jobs and --full"));
    const std::optional<QList<RefreshJob>> jobs = wantedJobs(device, category, channel);
    device.unlock(); // others must not wait for the servers that this waits for
    if (!jobs)
        return ExitFailed;
    const Wanted wanted{*jobs, !channel.isNull(), isFull, parallel};

    std::vector<ChannelEnd> ends(static_cast<std::size_t>(jobs->size()));
    {
        ConsoleProgress progress;
        int ended = 0;
        const Observer observer = [&](std::size_t index, const ChannelEnd &end) {
            ends[index] = end;
            progress.show(QStringLiteral("%1 of %2  %3")
                              .arg(++ended)
                              .arg(wanted.jobs.size())
                              .arg(wanted.jobs[static_cast<qsizetype>(index)].channelName));
        };
        progress.show(QStringLiteral("0 of %1").arg(wanted.jobs.size()));
        if (isOneByOne)
            updateOneByOne(device, wanted.jobs, observer);
        else
            updatePolitely(device, wanted, observer);
    }
    device.store.PublishTotalUnread();
    return printEnds(wanted, ends);
}

} // namespace tidebrook
