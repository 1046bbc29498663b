#include "ctl/commands.h"
#include "ctl/output.h"
#include "platform/text.h"
#include "res/default_channels.h"
#include "res/strings.h"
#include "store/error_codes.h"
#include "store/provisioning.h"
#include "store/seeding.h"

namespace tidebrook {

namespace {

constexpr qsizetype categoryLabelLimit = 39; // what the reader's label editor takes

// As the label editor stores a name.
QString categoryName(const QString &text) {
    const QString name = withoutDropped(printable(text)).trimmed();
    return cutText(name, categoryLabelLimit).toString().trimmed();
}

} // namespace

// Not every operation that fails leaves a code.
QString storeFailure(const Device &device) {
    const quint32 code = device.store.error();
    return messageWithCode(code != 0 ? code : quint32{DatabaseFailed});
}

int failStore(const Device &device) { return fail(storeFailure(device)); }

int runInit(const DeviceRoot &root) {
    if (!provisionDevice(root, defaultChannelsFile(), todayItemKey()))
        return fail(QStringLiteral("%1: the device root cannot be made").arg(root.path()));
    if (!root.makeFolders())
        return fail(QStringLiteral("%1: the device's folders cannot be made").arg(root.path()));
    Device device(root);
    const FileLock channelsLock(device.channelsLockPath());
    if (!device.openRegistry())
        return ExitFailed;
    quint32 categoryCount = 0;
    SettingsStore(device.registry).RegReadDword(programKey, u"CategoryNumber", categoryCount);
    if (categoryCount == 0)
        seedCategories(root, device.registry);
    if (!device.openStore())
        return ExitFailed;
    const auto channels = device.channels();
    if (!channels)
        return ExitFailed;
    printLine(QStringLiteral("%1 categories, %2 channels")
                  .arg(device.categories().size())
                  .arg(channels->size()));
    return ExitDone;
}

int runCategories(Device &device, const Arguments &) {
    for (const QString &name : device.categories())
        printLine(name);
    return ExitDone;
}

QString ensureCategory(Device &device, const QString &name) {
    if (device.categories().contains(name))
        return name;
    const QString stored = categoryName(name);
    if (stored.isEmpty()) {
        fail(QStringLiteral("a category needs a name"));
        return {};
    }
    // On a device without a count the first call makes the count.
    const bool isListed = device.categories().contains(stored) ||
                          device.categoryStore.AddCategory(stored) ||
                          device.categoryStore.AddCategory(stored);
    if (!isListed)
        fail(QStringLiteral("the category could not be stored"));
    return isListed ? stored : QString();
}

int runAddCategory(Device &device, const Arguments &arguments) {
    if (device.categories().contains(categoryName(arguments.operands[0])))
        return fail(resourceString(nameExistsString));
    return ensureCategory(device, arguments.operands[0]).isEmpty() ? ExitFailed : ExitDone;
}

int runRenameCategory(Device &device, const Arguments &arguments) {
    const QString old = arguments.operands[0];
    const QString name = categoryName(arguments.operands[1]);
    if (!device.hasCategory(old))
        return ExitFailed;
    if (name == old)
        return ExitDone;
    if (device.categories().contains(name))
        return fail(resourceString(nameExistsString));
    // In this order the channels are in a listed category at every moment.
    if (ensureCategory(device, name).isEmpty())
        return ExitFailed;
    if (!device.store.MoveCategory(old, name)) {
        device.categoryStore.DeleteCategory(name);
        return failStore(device);
    }
    return device.categoryStore.DeleteCategory(old)
               ? ExitDone
               : fail(QStringLiteral("\"%1\" is empty now, but could not be deleted").arg(old));
}

int runDeleteCategory(Device &device, const Arguments &arguments) {
    const QString name = arguments.operands[0];
    if (!device.hasCategory(name))
        return ExitFailed;
    const auto channels = device.channels(name);
    if (!channels)
        return ExitFailed;
    if (!device.store.DeleteCategoryChannels(name))
        return failStore(device);
    for (const ListedChannel &channel : *channels)
        dropAutomatic(device, channel.name);
    if (!device.categoryStore.DeleteCategory(name))
        return fail(QStringLiteral("the list of categories could not be stored"));
    device.store.PublishTotalUnread();
    return ExitDone;
}

} // namespace tidebrook
