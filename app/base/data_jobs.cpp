#include "app/base/data_jobs.h"

#include "platform/file_lock.h"
#include "platform/text.h"
#include "store/error_codes.h"
#include "store/escape_sql.h"
#include "update/auto_list.h"

namespace tidebrook {

namespace {

constexpr qsizetype categoryCapacity = 40;

bool fail(DeviceParts &device, quint32 code) {
    const quint32 storeCode = device.store->error();
    SetLastErrorCode(device.registry, storeCode != 0 ? storeCode : code);
    return false;
}

// In this order a program that ends in the middle leaves no channel without a category.
bool renameCategory(DeviceParts &device, const QString &newName, const QString &oldName) {
    const FileLock channelsLock(device.channelsLockPath());
    if (!device.categoryStore.AddCategory(newName))
        return fail(device, DatabaseFailed);
    if (!device.store->MoveCategory(oldName, newName)) {
        device.categoryStore.DeleteCategory(newName);
        return fail(device, DatabaseFailed);
    }
    return device.categoryStore.DeleteCategory(oldName) || fail(device, DatabaseFailed);
}

bool deleteCategory(DeviceParts &device, const QString &category) {
    const FileLock channelsLock(device.channelsLockPath());
    const auto guard = device.store->lock();
    QStringList channels;
    bool isDone = device.store->ListChannels(escapedCategory(category));
    if (isDone) {
        for (const ChannelRow &row : device.store->takeChannelRows())
            channels.append(row.nameText());
        isDone = device.store->DeleteCategoryChannels(category);
    }
    if (!isDone) {
        device.categoryStore.AddCategory(category);
        return fail(device, DatabaseFailed);
    }
    for (const QString &channel : channels) {
        if (isAutoUpdated(device.root, channel))
            setAutoUpdate(device.root, {QStringLiteral(""), channel, category}, false);
    }
    device.store->PublishTotalUnread();
    return true;
}

QString cut(const QString &category) { return cutText(category, categoryCapacity).toString(); }

} // namespace

bool startRenameCategory(AppState &state, QObject *receiver, const QString &newName,
                         const QString &oldName, JobEnd end) {
    return state.changes.ask(
        receiver,
        [&device = state.device, newName = cut(newName), oldName = cut(oldName)] {
            return renameCategory(device, newName, oldName);
        },
        std::move(end));
}

bool startDeleteCategory(AppState &state, QObject *receiver, const QString &category, JobEnd end) {
    return state.changes.ask(
        receiver,
        [&device = state.device, category = cut(category)] {
            return deleteCategory(device, category);
        },
        std::move(end));
}

} // namespace tidebrook
