#include "app/data_jobs.h"

#include "app/messages.h"
#include "kit/screen_stack.h"
#include "platform/base/text.h"
#include "platform/sync/file_lock.h"
#include "res/strings.h"
#include "store/category_changes.h"
#include "store/error_codes.h"
#include "store/escape_sql.h"
#include "update/channel_changes.h"

#include <mutex>

namespace tidebrook {

namespace {

constexpr int done = 0;

QString cut(const QString &name, qsizetype capacity) { return cutText(name, capacity).toString(); }

// One job's hold on the channels. The codes of earlier failures are not those of this one.
class Change {
public:
    explicit Change(DeviceParts &device)
        : channelsLock_(device.channelsLockPath(), DeviceParts::channelsTimeout),
          guard_(device.store->lock()), device_(device) {
        device.store->clearError();
    }

    /// False when another process keeps the lock of the channels, or the device is gone.
    bool isReady() const { return channelsLock_.isHeld() && device_.isStillThere(); }

    /// The string that tells what failed: the database, or else a file.
    int fail() {
        const quint32 code = device_.store->error();
        SetLastErrorCode(device_.registry, code != 0 ? code : quint32{FileNotWritten});
        return code != 0 ? databaseProblemString : fileProblemString;
    }
    int failStore() {
        if (device_.store->error() == 0)
            device_.store->recordError(DatabaseFailed);
        return fail();
    }
    int end(bool isDone) { return isDone ? done : fail(); }

private:
    const FileLock channelsLock_;
    const std::unique_lock<std::recursive_mutex> guard_;
    DeviceParts &device_;
};

int renameCategory(DeviceParts &device, const QString &newName, const QString &oldName) {
    Change change(device);
    if (!change.isReady())
        return change.fail();
    switch (RenameCategory(device.categoryStore, *device.store, oldName, newName)) {
    case CategoryChange::Done:
        return done;
    case CategoryChange::NameTaken:
        return nameExistsString;
    case CategoryChange::NotMoved:
        return change.failStore();
    case CategoryChange::NotListed:
        break;
    }
    return change.fail();
}

int deleteCategory(DeviceParts &device, const QString &category) {
    Change change(device);
    if (!change.isReady() || !device.categoryStore.DeleteCategory(category))
        return change.fail();
    const ChannelChange end = deleteChannelsOf(device.root, *device.store, category);
    if (end == ChannelChange::StoreFailed)
        device.categoryStore.ensureListed(category); // if not now, then by the next start
    return change.end(end == ChannelChange::Done);
}

// A category that another program has deleted meanwhile is listed again, or else its channels
// would be out of sight.
bool listCategory(DeviceParts &device, const QString &category) {
    return device.categoryStore.ensureListed(cut(category, categoryCapacity));
}

int insertChannel(DeviceParts &device, Change &change, const ChannelRecord &record) {
    if (!isStorableLink(record.channelLink))
        return wrongUrlString;
    if (!change.isReady())
        return change.fail();
    if (device.store->InsertChannel(record))
        return change.end(listCategory(device, record.category));
    QString category;
    if (device.store->error() == 0)
        device.store->FindCategory(record.channelName, category);
    return category.isNull() ? change.failStore() : nameExistsString;
}

int addChannel(DeviceParts &device, const ChannelRecord &record) {
    Change change(device);
    return insertChannel(device, change, record);
}

int addUnnamedChannel(DeviceParts &device, ChannelRecord record) {
    Change change(device); // so that the name is not taken meanwhile
    const QString base = resourceString(newChannelNameString);
    record.channelName = base;
    for (int counter = 0; ChannelExistsJob(device, record.channelName, record.category); ++counter)
        record.channelName = base + QStringLiteral(" %1").arg(counter);
    return insertChannel(device, change, record);
}

// The name comes last, so that the channel is found under its old one until then.
int changeChannel(DeviceParts &device, const ChannelProperties &from, const ChannelProperties &to) {
    Change change(device);
    if (!change.isReady())
        return change.fail();
    FeedStore &store = *device.store;
    bool isDone = true;
    if (to.category != from.category)
        isDone = store.MoveChannel(from.name, to.category) && listCategory(device, to.category);
    const bool isRelinked = to.link != from.link;
    if (isRelinked)
        isDone = store.SetChannelLink(from.name, to.link) && isDone;
    QString name = from.name;
    if (to.name != from.name) {
        const ChannelChange end = renameChannel(device.root, store, from.name, to.name);
        name = end == ChannelChange::Done ? to.name : from.name;
        isDone = (end == ChannelChange::Done || end == ChannelChange::NameTaken) && isDone;
    }
    if (to.isAutoUpdated != from.isAutoUpdated)
        isDone = makeAutomatic(device.root, store, {from.link, name, to.category},
                               to.isAutoUpdated) == ChannelChange::Done &&
                 isDone;
    if (isRelinked && !isStorableLink(to.link))
        return wrongUrlString;
    return change.end(isDone);
}

int deleteChannel(DeviceParts &device, const QString &channel) {
    Change change(device);
    return change.end(change.isReady() && tidebrook::deleteChannel(device.root, *device.store,
                                                                   channel) == ChannelChange::Done);
}

} // namespace

bool startRenameCategory(AppState &state, QObject *receiver, const QString &newName,
                         const QString &oldName, JobEnd end) {
    return state.changes.ask(
        receiver,
        [&device = state.device, newName = cut(newName, categoryCapacity),
         oldName = cut(oldName, categoryCapacity)] {
            return renameCategory(device, newName, oldName);
        },
        std::move(end));
}

bool startDeleteCategory(AppState &state, QObject *receiver, const QString &category, JobEnd end) {
    return state.changes.ask(
        receiver,
        [&device = state.device, category = cut(category, categoryCapacity)] {
            return deleteCategory(device, category);
        },
        std::move(end));
}

bool AddChannelJob(AppState &state, QObject *receiver, const ChannelRecord &record, JobEnd end) {
    return state.changes.ask(
        receiver, [&device = state.device, record] { return addChannel(device, record); },
        std::move(end));
}

bool startAddUnnamedChannel(AppState &state, QObject *receiver, const ChannelRecord &record,
                            JobEnd end) {
    return state.changes.ask(
        receiver, [&device = state.device, record] { return addUnnamedChannel(device, record); },
        std::move(end));
}

bool startChangeChannel(AppState &state, QObject *receiver, const ChannelProperties &from,
                        const ChannelProperties &to, JobEnd end) {
    return state.changes.ask(
        receiver, [&device = state.device, from, to] { return changeChannel(device, from, to); },
        std::move(end));
}

bool startDeleteChannel(AppState &state, QObject *receiver, const QString &channel, JobEnd end) {
    return state.changes.ask(
        receiver,
        [&device = state.device, channel = cut(channel, channelNameCapacity)] {
            return deleteChannel(device, channel);
        },
        std::move(end));
}

bool ChannelExistsJob(DeviceParts &device, const QString &name, const QString &category) {
    QString owner;
    return device.store->FindCategory(name, owner) && owner == category;
}

std::optional<QStringList> listedCategories(DeviceParts &device) {
    auto names = device.categoryStore.listedCategories();
    if (!names)
        recordProblem(device, fileProblemString);
    return names;
}

void storeSetting(AppState &state, QStringView name, quint32 value) {
    state.settings.ask(
        &state.stack,
        [&device = state.device, name, value] {
            const bool isStored = device.settings.RegWriteDword(programKey, name, value) ||
                                  device.settings.dword(programKey, name) == value;
            return isStored ? done : recordProblem(device, fileProblemString);
        },
        [&state](int messageId) {
            if (messageId != done)
                ShowError(state, messageId);
        });
}

} // namespace tidebrook
