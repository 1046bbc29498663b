#include "app/base/data_jobs.h"

#include "platform/file_lock.h"
#include "platform/text.h"
#include "res/strings.h"
#include "store/error_codes.h"
#include "store/escape_sql.h"
#include "update/auto_list.h"

#include <mutex>

namespace tidebrook {

namespace {

constexpr int done = 0;

QString cut(const QString &name, qsizetype capacity) { return cutText(name, capacity).toString(); }

// One job's hold on the channels; somebody who never lets go of them does not keep it from its
// work, each step of which is whole. The codes of earlier failures are not those of this one.
class Change {
public:
    explicit Change(DeviceParts &device)
        : channelsLock_(device.channelsLockPath(), DeviceParts::channelsPatience),
          guard_(device.store->lock()), device_(device) {
        device.store->clearError();
    }

    /// The string that tells what failed: the database, or else the registry.
    int fail() {
        const quint32 code = device_.store->error();
        SetLastErrorCode(device_.registry, code != 0 ? code : quint32{DatabaseFailed});
        return code != 0 ? databaseProblemString : fileProblemString;
    }

private:
    const FileLock channelsLock_;
    const std::unique_lock<std::recursive_mutex> guard_;
    DeviceParts &device_;
};

// In this order a program that ends in the middle leaves no channel without a category.
int renameCategory(DeviceParts &device, const QString &newName, const QString &oldName) {
    Change change(device);
    if (!device.isStillThere() || !device.categoryStore.AddCategory(newName))
        return change.fail();
    if (!device.store->MoveCategory(oldName, newName)) {
        device.categoryStore.DeleteCategory(newName);
        return change.fail();
    }
    return device.categoryStore.DeleteCategory(oldName) ? done : change.fail();
}

void dropAutomatic(DeviceParts &device, const QString &channel) {
    const QString any = QStringLiteral("");
    if (isAutoUpdated(device.root, channel))
        setAutoUpdate(device.root, {any, channel, any}, false);
}

int deleteCategory(DeviceParts &device, const QString &category) {
    Change change(device);
    bool isDone = device.isStillThere() && device.store->ListChannels(escapedCategory(category));
    const QList<ChannelRow> channels = device.store->takeChannelRows();
    isDone = isDone && device.store->DeleteCategoryChannels(category);
    if (!isDone) {
        device.categoryStore.AddCategory(category);
        return change.fail();
    }
    for (const ChannelRow &channel : channels)
        dropAutomatic(device, channel.nameText());
    device.store->PublishTotalUnread();
    return done;
}

// A category that somebody else has deleted meanwhile is listed again: nobody would see its
// channels any more.
void listCategory(DeviceParts &device, const QString &category) {
    device.categoryStore.AddCategory(cut(category, categoryCapacity));
}

int insertChannel(DeviceParts &device, Change &change, const ChannelRecord &record) {
    if (!isStorableLink(record.channelLink))
        return wrongUrlString;
    if (!device.isStillThere())
        return change.fail();
    if (device.store->InsertChannel(record)) {
        listCategory(device, record.category);
        return done;
    }
    QString category;
    if (device.store->error() == 0)
        device.store->FindCategory(record.channelName, category);
    return category.isNull() ? change.fail() : nameExistsString;
}

int addChannel(DeviceParts &device, const ChannelRecord &record) {
    Change change(device);
    return insertChannel(device, change, record);
}

int addUnnamedChannel(DeviceParts &device, ChannelRecord record) {
    Change change(device); // so that nobody takes the name meanwhile
    const QString base = resourceString(newChannelNameString);
    record.channelName = base;
    for (int counter = 0; ChannelExistsJob(device, record.channelName, record.category); ++counter)
        record.channelName = base + QStringLiteral(" %1").arg(counter);
    return insertChannel(device, change, record);
}

// A name that is taken stays what it is: the articles would go to the channel that has it.
bool renameChannel(DeviceParts &device, const QString &from, const QString &to, QString *name) {
    QString owner;
    if (!device.store->FindCategory(to, owner))
        return false;
    if (!owner.isNull())
        return true;
    if (!device.store->RenameChannel(from, to))
        return false;
    *name = to;
    return renameAutoUpdated(device.root, from, to);
}

// The name comes last, so that the channel is found under its old one until then.
int changeChannel(DeviceParts &device, const ChannelProperties &from, const ChannelProperties &to) {
    Change change(device);
    if (!device.isStillThere())
        return change.fail();
    FeedStore &store = *device.store;
    bool isDone = true;
    if (to.category != from.category) {
        isDone = store.MoveChannel(from.name, to.category);
        if (isDone)
            listCategory(device, to.category);
    }
    const bool isRelinked = to.link != from.link;
    if (isRelinked)
        isDone = store.SetChannelLink(from.name, to.link) && isDone;
    QString name = from.name;
    if (to.name != from.name)
        isDone = renameChannel(device, from.name, to.name, &name) && isDone;
    if (to.isAutoUpdated != from.isAutoUpdated)
        isDone =
            setAutoUpdate(device.root, {from.link, name, to.category}, to.isAutoUpdated) && isDone;
    if (isRelinked && !isStorableLink(to.link))
        return wrongUrlString;
    return isDone ? done : change.fail();
}

int deleteChannel(DeviceParts &device, const QString &channel) {
    Change change(device);
    if (!device.isStillThere() || !device.store->DeleteChannel(channel))
        return change.fail();
    dropAutomatic(device, channel);
    device.store->PublishTotalUnread();
    return done;
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

} // namespace tidebrook
