#include "ctl/commands.h"
#include "ctl/output.h"
#include "ctl/shared_feeds.h"
#include "ctl/table.h"
#include "platform/base/clock.h"
#include "platform/desktop/service.h"
#include "res/strings.h"
#include "store/error_codes.h"
#include "store/update_state.h"
#include "update/auto_list.h"
#include "update/auto_schedule.h"
#include "update/download_request.h"
#include "update/round_request.h"
#include "update/update_history.h"

#include <QSet>

namespace tidebrook {

namespace {

using namespace std::chrono_literals;

constexpr int longestTimeout = 3600; // seconds

QString resultInWords(const UpdateState &state) {
    if (!state.lastAttempt.isValid())
        return QStringLiteral("not updated yet");
    if (state.lastError != 0)
        return messageWithCode(state.lastError);
    if (state.wasUnchanged)
        return QStringLiteral("unchanged");
    if (state.storedCount == 0)
        return QStringLiteral("nothing new");
    return state.storedCount == 1 ? QStringLiteral("1 new article")
                                  : QStringLiteral("%1 new articles").arg(state.storedCount);
}

/// When channels are tried automatically.
class NextTries {
public:
    NextTries(CommandDevice &device, const QList<RefreshJob> &listed)
        : now_(utcNow()), settings_(AutoUpdateSettings::read(device.registry)),
          round_(nextRound(settings_, storedLastRound(device.registry), now_)) {
        for (const RefreshJob &job : listed)
            listed_.insert(job.channelName);
    }

    bool isAutomatic(const QString &channel) const { return listed_.contains(channel); }

    // Invalid where there is none.
    QDateTime of(const ListedChannel &channel, const UpdateState &state) const {
        if (!isAutomatic(channel.name) || !round_)
            return {};
        const bool isDaily = settings_.mode == AutoUpdateSettings::Daily;
        const QDateTime wish = nextTry(stateAt(state, channel.link), isDaily, now_);
        // The first round that is not too early.
        QDateTime next = qMax(*round_, now_);
        while (wish.isValid() && next < wish)
            next = nextRound(settings_, next, now_).value_or(wish);
        return next;
    }

    QString inWords(const QString &channel, const QDateTime &next) const {
        if (!isAutomatic(channel))
            return QStringLiteral("not automatic");
        if (!next.isValid())
            return QStringLiteral("automatic updates are off");
        if (next > now_)
            return displayedMoment(next);
        return settings_.isBarred() ? QStringLiteral("waiting: roaming, or a metered connection")
                                    : QStringLiteral("now");
    }

private:
    const QDateTime now_;
    const AutoUpdateSettings settings_;
    const std::optional<QDateTime> round_;
    QSet<QString> listed_;
};

int listAutomatic(CommandDevice &device, const Arguments &arguments) {
    const auto channels = autoUpdatedChannels(device.root);
    if (!channels)
        return exitCodeOf(device, ChangeEnd::AutoListFailed);
    const QStringList columns{QStringLiteral("name"), QStringLiteral("category"),
                              QStringLiteral("address")};
    Table table(arguments, columns);
    for (const RefreshJob &job : *channels)
        table.add(
            {job.channelName, job.category, job.url},
            {{columns[0], job.channelName}, {columns[1], job.category}, {columns[2], job.url}});
    return table.end();
}

int addAutomatic(CommandDevice &device, const QString &name) {
    RefreshJob job{{}, name, {}};
    if (!device.hasChannel(name))
        return ExitFailed;
    if (!device.store.FindCategory(name, job.category) ||
        !device.store.GetChannelLink(job.category, name, job.url))
        return failStore(device);
    return exitCodeOf(device, device.subscriptions().setAutomatic(job, true));
}

// Of one category, or of all.
int addManyAutomatic(CommandDevice &device, const std::optional<QString> &category) {
    if (category && !device.hasCategory(*category))
        return ExitFailed;
    QList<ChannelRecord> feeds;
    if (!device.store.ListFeeds(feeds))
        return failStore(device);
    bool isWhole = true;
    QList<RefreshJob> jobs;
    for (const ChannelRecord &feed : std::as_const(feeds)) {
        if (category && feed.category != *category)
            continue;
        const RefreshJob job{feed.channelLink, feed.channelName, feed.category};
        if (canBeAutoUpdated(job)) {
            jobs.append(job);
        } else {
            isWhole = false;
            fail(QStringLiteral("\"%1\": cannot be updated automatically").arg(feed.channelName));
        }
    }
    qsizetype added = 0;
    const ChangeEnd end = device.subscriptions().addAutomatic(jobs, added);
    if (end == ChangeEnd::Done)
        printLine(added == 1 ? QStringLiteral("1 channel added")
                             : QStringLiteral("%1 channels added").arg(added));
    const int code = exitCodeOf(device, end); // which reports a failure
    return isWhole ? code : ExitFailed;
}

int removeAutomatic(CommandDevice &device, const QString &name) {
    if (isAutoUpdated(device.root, name) == false)
        return fail(QStringLiteral("\"%1\" is not on the list").arg(name));
    const QString any = QStringLiteral("");
    return exitCodeOf(device, device.subscriptions().setAutomatic({any, name, any}, false));
}

int tellService(CommandDevice &device) {
    const std::optional<pid_t> process = runningService(device.root);
    printLine(process ? QStringLiteral("running, as process %1").arg(*process)
                      : QStringLiteral("not running"));
    return process ? ExitDone : ExitFailed;
}

int startService(CommandDevice &device) {
    QString error;
    return activateService(device.root, &error) == Activation::Failed ? fail(error) : ExitDone;
}

int runAutomatic(CommandDevice &device) {
    device.unlock(); // others must not wait for the start of the service
    if (startService(device) != ExitDone)
        return ExitFailed;
    return requestRound(device.root) ? ExitDone
                                     : fail(QStringLiteral("the downloader cannot be asked"));
}

} // namespace

int runRequest(CommandDevice &device, const Arguments &arguments) {
    bool isNumber = true;
    const int timeout = arguments.timeout.isEmpty() ? static_cast<int>(usualAnswerTimeout.count())
                                                    : arguments.timeout.toInt(&isNumber);
    if (!isNumber || timeout < 1 || timeout > longestTimeout)
        return failUsage(
            QStringLiteral("--timeout takes seconds from 1 to %1").arg(longestTimeout));
    const auto job = jobOf(device, arguments.operands[0], arguments.operands[1]);
    if (!job || startService(device) != ExitDone)
        return ExitFailed;
    DownloadAnswers answers(device.root);
    requestDownload(device.root, *job, answers);
    switch (answers.wait(std::chrono::seconds(timeout))) {
    case DownloadAnswer::Done:
        printLine(QStringLiteral("done"));
        return ExitDone;
    case DownloadAnswer::Failed:
        return fail(messageWithCode(SettingsStore(device.registry).dword(programKey, u"ERRORNO")));
    case DownloadAnswer::TimedOut:
    case DownloadAnswer::Input:
        break;
    }
    SetLastErrorCode(device.registry, NothingKnown);
    return fail(QStringLiteral("no answer came within %1 seconds, or a newer request of another "
                               "program has taken its place (%2)")
                    .arg(timeout)
                    .arg(NothingKnown));
}

int runAuto(CommandDevice &device, const Arguments &arguments) {
    const QString action = arguments.operands[0];
    const QString name = arguments.operands.value(1);
    const QStringList &options = arguments.options;
    const bool isOne = !name.isNull() && options.isEmpty();
    const bool isOfAll = arguments.has(u"all") || arguments.has(u"category");
    if (action == u"list" && name.isNull() && !isOfAll)
        return listAutomatic(device, arguments);
    if (action == u"add" && isOne)
        return addAutomatic(device, name);
    if (action == u"add" && name.isNull() && isOfAll && options.size() == 1)
        return addManyAutomatic(
            device, arguments.has(u"category") ? std::optional(arguments.category) : std::nullopt);
    if (action == u"remove" && isOne)
        return removeAutomatic(device, name);
    if (action == u"run" && name.isNull() && options.isEmpty())
        return runAutomatic(device);
    return failUse(arguments.command);
}

int runService(CommandDevice &device, const Arguments &arguments) {
    const QString action = arguments.operands[0];
    if (action == u"status")
        return tellService(device);
    if (action == u"start")
        return startService(device);
    if (action != u"stop" && action != u"restart")
        return failUsage(QStringLiteral("usage: tidebrookctl service status|start|stop|restart"));
    if (!stopService(device.root, 10s))
        return fail(QStringLiteral("the service does not end"));
    return action == u"restart" ? startService(device) : ExitDone;
}

namespace {

QJsonValue jsonMoment(const QDateTime &moment) {
    return moment.isValid() ? QJsonValue(moment.toUTC().toString(Qt::ISODate)) : QJsonValue();
}

QJsonObject updatesObject(const ListedChannel &channel, const UpdateState &state,
                          const QString &shared) {
    const bool isTried = state.lastAttempt.isValid();
    const bool isDone = isTried && state.lastError == 0;
    return {{QStringLiteral("name"), channel.name},
            {QStringLiteral("category"), channel.category},
            {QStringLiteral("lastAttempt"), jsonMoment(state.lastAttempt)},
            {QStringLiteral("lastSuccess"), jsonMoment(state.lastSuccess)},
            {QStringLiteral("lastResult"), resultInWords(state)},
            {QStringLiteral("errorCode"),
             isTried && !isDone ? QJsonValue(qint64{state.lastError}) : QJsonValue()},
            {QStringLiteral("newArticles"), isDone ? QJsonValue(state.storedCount) : QJsonValue()},
            {QStringLiteral("sharedFeed"), jsonText(shared)}};
}

} // namespace

int runUpdates(CommandDevice &device, const Arguments &arguments) {
    const auto channels = device.channels();
    if (!channels)
        return ExitFailed;
    const auto automatic = autoUpdatedChannels(device.root);
    if (!automatic)
        return exitCodeOf(device, ChangeEnd::AutoListFailed);
    const QHash<QString, UpdateState> states = UpdateStateStore(device.root).readAll();
    QList<ChannelRecord> feeds;
    if (!device.store.ListFeeds(feeds))
        return failStore(device);
    const QHash<QString, QString> shared = sharedFeeds(feeds, states);
    const NextTries nextTries(device, *automatic);
    Table table(arguments, {QStringLiteral("name"), QStringLiteral("lastSuccess"),
                            QStringLiteral("lastResult"), QStringLiteral("nextTry"),
                            QStringLiteral("sharedFeed")});
    for (const ListedChannel &channel : *channels) {
        const UpdateState state = states.value(channel.name);
        const QDateTime next = nextTries.of(channel, state);
        QJsonObject object = updatesObject(channel, state, shared.value(channel.name));
        object.insert(QStringLiteral("automatic"), nextTries.isAutomatic(channel.name));
        object.insert(QStringLiteral("nextTry"), jsonMoment(next));
        QStringList fields{channel.name, displayedMoment(state.lastSuccess), resultInWords(state),
                           nextTries.inWords(channel.name, next)};
        if (shared.contains(channel.name))
            fields.append(shared.value(channel.name));
        table.add(fields, object);
    }
    return table.end();
}

} // namespace tidebrook
