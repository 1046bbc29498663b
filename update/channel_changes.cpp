#include "update/channel_changes.h"

#include "update/auto_list.h"

namespace tidebrook {

namespace {

ChannelChange endDeletion(const DeviceRoot &device, FeedStore &store, bool isDeleted) {
    if (!isDeleted)
        return ChannelChange::StoreFailed;
    store.PublishTotalUnread(); // which the next change publishes too
    return pruneAutoUpdated(device, store) ? ChannelChange::Done : ChannelChange::ListFailed;
}

} // namespace

ChannelChange renameChannel(const DeviceRoot &device, FeedStore &store, const QString &old,
                            const QString &name) {
    // The articles would go to the channel that has the name.
    QString owner;
    if (!store.FindCategory(name, owner))
        return ChannelChange::StoreFailed;
    if (!owner.isNull())
        return ChannelChange::NameTaken;
    if (!prepareAutoRename(device, store, old, name))
        return ChannelChange::ListFailed;
    const bool isRenamed = store.RenameChannel(old, name);
    pruneAutoUpdated(device, store); // what it cannot take out keeps no channel from its updates
    return isRenamed ? ChannelChange::Done : ChannelChange::StoreFailed;
}

ChannelChange deleteChannel(const DeviceRoot &device, FeedStore &store, const QString &name) {
    return endDeletion(device, store, store.DeleteChannel(name));
}

ChannelChange deleteChannelsOf(const DeviceRoot &device, FeedStore &store,
                               const QString &category) {
    return endDeletion(device, store, store.DeleteCategoryChannels(category));
}

ChannelChange makeAutomatic(const DeviceRoot &device, FeedStore &store, const RefreshJob &job,
                            bool isAutomatic) {
    const std::optional<bool> isListed = isAutoUpdated(device, job.channelName);
    const bool isDone =
        isListed && (*isListed == isAutomatic || setAutoUpdate(device, store, job, isAutomatic));
    return isDone ? ChannelChange::Done : ChannelChange::ListFailed;
}

} // namespace tidebrook
