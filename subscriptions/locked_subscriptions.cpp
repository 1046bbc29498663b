#include "subscriptions/locked_subscriptions.h"

#include "platform/base/text.h"
#include "res/strings.h"
#include "store/error_codes.h"
#include "store/escape_sql.h"
#include "update/auto_list.h"

#include <algorithm>

namespace tidebrook {

namespace {

QString cutCategory(const QString &name) { return cutText(name, categoryCapacity).toString(); }
QString cutChannel(const QString &name) { return cutText(name, channelNameCapacity).toString(); }

} // namespace

QString categoryName(const QString &typed) {
    const QString text = withoutDropped(typed);
    const auto *first = std::find_if(text.begin(), text.end(), [](QChar c) { return c != u' '; });
    const QStringView name = TrimTrailingBlanks(QStringView(first, text.end()));
    return TrimTrailingBlanks(cutText(name, categoryNameLimit)).toString();
}

bool ChannelExistsJob(FeedStore &store, const QString &name, const QString &category) {
    QString owner;
    return store.FindCategory(name, owner) && owner == category;
}

LockedSubscriptions::LockedSubscriptions(Device &device,
                                         std::optional<std::chrono::milliseconds> timeout)
    : device_(device), lock_(device.channelsLockPath(), timeout), guard_(device.store.lock()) {}

bool LockedSubscriptions::begin() {
    device_.store.clearError();
    return isHeld() && device_.isStillThere();
}

// Not every operation that fails leaves a code.
ChangeEnd LockedSubscriptions::failStore() {
    if (device_.store.error() == 0)
        device_.store.recordError(DatabaseFailed);
    return ChangeEnd::StoreFailed;
}

ChangeEnd LockedSubscriptions::addCategory(const QString &category) {
    if (!begin())
        return ChangeEnd::NotReady;
    const QString name = cutCategory(category);
    if (device_.categoryStore.listedCategories().value_or(QStringList()).contains(name))
        return ChangeEnd::NameTaken;
    return device_.categoryStore.ensureListed(name) ? ChangeEnd::Done : ChangeEnd::CategoriesFailed;
}

std::optional<bool> LockedSubscriptions::holdsChannels(const QString &category) {
    QList<ChannelRow> channels;
    if (!device_.store.ListChannels(escapedCategory(category), channels))
        return std::nullopt;
    return !channels.isEmpty();
}

ChangeEnd LockedSubscriptions::RenameCategory(const QString &old, const QString &name) {
    if (!begin())
        return ChangeEnd::NotReady;
    const QString from = cutCategory(old);
    const QString to = cutCategory(name);
    CategoryListStore &categories = device_.categoryStore;
    const std::optional<QStringList> listed = categories.listedCategories();
    if (!listed || !listed->contains(from))
        return ChangeEnd::CategoriesFailed;
    if (from == to)
        return ChangeEnd::Done;
    const std::optional<bool> isOldUsed = holdsChannels(from);
    const std::optional<bool> isNewUsed = holdsChannels(to);
    if (!isOldUsed || !isNewUsed)
        return failStore();
    const bool wasListed = listed->contains(to);
    if (wasListed && *isOldUsed && *isNewUsed)
        return ChangeEnd::NameTaken;
    if (!categories.ensureListed(to))
        return ChangeEnd::CategoriesFailed;
    if (!device_.store.MoveCategory(from, to)) {
        if (!wasListed)
            categories.DeleteCategory(to); // an empty one that stays does no harm
        return failStore();
    }
    return categories.DeleteCategory(from) ? ChangeEnd::Done : ChangeEnd::CategoriesFailed;
}

// Tries the removal in a change of the registry that is not committed.
bool LockedSubscriptions::canUnlist(const QString &category) {
    const Registry::Batch trial(device_.registry);
    return trial.isOpen() && device_.categoryStore.DeleteCategory(category);
}

// The channels go before their category, so that they are in a listed one at every moment; but
// only if the list is going to let go of it.
ChangeEnd LockedSubscriptions::deleteCategory(const QString &category) {
    if (!begin())
        return ChangeEnd::NotReady;
    const QString name = cutCategory(category);
    if (!canUnlist(name))
        return ChangeEnd::CategoriesFailed;
    const ChangeEnd end = endDeletion(device_.store.DeleteCategoryChannels(name));
    if (end != ChangeEnd::StoreFailed && !device_.categoryStore.DeleteCategory(name))
        return ChangeEnd::CategoriesFailed;
    return end;
}

ChangeEnd LockedSubscriptions::addChannel(const ChannelRecord &channel, QString *storedName) {
    if (!isStorableLink(channel.channelLink))
        return ChangeEnd::LinkRefused;
    if (!begin())
        return ChangeEnd::NotReady;
    if (!device_.categoryStore.ensureListed(cutCategory(channel.category)))
        return ChangeEnd::CategoriesFailed;
    if (device_.store.InsertChannel(channel, storedName))
        return ChangeEnd::Done;
    QString owner;
    if (device_.store.error() == 0)
        device_.store.FindCategory(channel.channelName, owner);
    return owner.isNull() ? failStore() : ChangeEnd::NameTaken;
}

ChangeEnd LockedSubscriptions::addUnnamedChannel(const QString &category, const QString &link) {
    const QString base = resourceString(newChannelNameString);
    QString name = base;
    for (int counter = 0; ChannelExistsJob(device_.store, name, category); ++counter)
        name = base + QStringLiteral(" %1").arg(counter);
    return addChannel({category, name, link});
}

ChangeEnd LockedSubscriptions::renameChannel(const QString &old, const QString &name) {
    return begin() ? rename(old, name) : ChangeEnd::NotReady;
}

ChangeEnd LockedSubscriptions::rename(const QString &old, const QString &name) {
    const QString from = cutChannel(old);
    const QString to = cutChannel(name);
    if (from == to)
        return ChangeEnd::Done;
    // The articles would go to the channel that has the name.
    QString owner;
    if (!device_.store.FindCategory(to, owner))
        return failStore();
    if (!owner.isNull())
        return ChangeEnd::NameTaken;
    if (!prepareAutoRename(device_.root, device_.store, from, to))
        return ChangeEnd::AutoListFailed;
    const bool isRenamed = device_.store.RenameChannel(from, to);
    // A line that stays keeps no channel from its updates.
    pruneAutoUpdated(device_.root, device_.store);
    return isRenamed ? ChangeEnd::Done : failStore();
}

ChangeEnd LockedSubscriptions::moveChannel(const QString &channel, const QString &category) {
    return begin() ? move(channel, category) : ChangeEnd::NotReady;
}

ChangeEnd LockedSubscriptions::move(const QString &channel, const QString &category) {
    if (!device_.categoryStore.ensureListed(cutCategory(category)))
        return ChangeEnd::CategoriesFailed;
    return device_.store.MoveChannel(channel, category) ? ChangeEnd::Done : failStore();
}

ChangeEnd LockedSubscriptions::relinkChannel(const QString &channel, const QString &link) {
    return begin() ? relink(channel, link) : ChangeEnd::NotReady;
}

ChangeEnd LockedSubscriptions::relink(const QString &channel, const QString &link) {
    if (!isStorableLink(link))
        return ChangeEnd::LinkRefused;
    return device_.store.SetChannelLink(channel, link) ? ChangeEnd::Done : failStore();
}

ChangeEnd LockedSubscriptions::endDeletion(bool isDeleted) {
    if (!isDeleted)
        return failStore();
    device_.store.PublishTotalUnread(); // which the next change publishes too
    return pruneAutoUpdated(device_.root, device_.store) ? ChangeEnd::Done
                                                         : ChangeEnd::AutoListFailed;
}

ChangeEnd LockedSubscriptions::deleteChannel(const QString &channel) {
    return begin() ? endDeletion(device_.store.DeleteChannel(cutChannel(channel)))
                   : ChangeEnd::NotReady;
}

ChangeEnd LockedSubscriptions::setAutomatic(const RefreshJob &channel, bool isAutomatic) {
    return begin() ? automate(channel, isAutomatic) : ChangeEnd::NotReady;
}

ChangeEnd LockedSubscriptions::automate(const RefreshJob &channel, bool isAutomatic) {
    const std::optional<bool> isListed = isAutoUpdated(device_.root, channel.channelName);
    const bool isDone =
        isListed && (*isListed == isAutomatic ||
                     setAutoUpdate(device_.root, device_.store, channel, isAutomatic));
    return isDone ? ChangeEnd::Done : ChangeEnd::AutoListFailed;
}

ChangeEnd LockedSubscriptions::addAutomatic(const QList<RefreshJob> &channels, qsizetype &added) {
    if (!begin())
        return ChangeEnd::NotReady;
    const std::optional<qsizetype> count = addAutoUpdated(device_.root, device_.store, channels);
    added = count.value_or(0);
    return count ? ChangeEnd::Done : ChangeEnd::AutoListFailed;
}

// The name comes last, so that the channel is found under its old one until then.
ChangeEnd LockedSubscriptions::changeChannel(const ChannelProperties &from,
                                             const ChannelProperties &to) {
    if (!begin())
        return ChangeEnd::NotReady;
    ChangeEnd result = ChangeEnd::Done;
    const auto note = [&](ChangeEnd end) {
        if (result == ChangeEnd::Done || end == ChangeEnd::LinkRefused)
            result = end;
    };
    if (to.category != from.category)
        note(move(from.name, to.category));
    if (to.link != from.link)
        note(relink(from.name, to.link));
    const ChangeEnd renaming = rename(from.name, to.name);
    if (renaming != ChangeEnd::NameTaken)
        note(renaming);
    if (to.isAutoUpdated != from.isAutoUpdated) {
        const QString &name = renaming == ChangeEnd::Done ? to.name : from.name;
        note(automate({from.link, name, to.category}, to.isAutoUpdated));
    }
    return result;
}

} // namespace tidebrook
