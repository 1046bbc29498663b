#include "ctl/commands.h"
#include "ctl/output.h"
#include "platform/text.h"
#include "res/default_channels.h"
#include "res/strings.h"
#include "store/provisioning.h"
#include "store/seeding.h"

namespace tidebrook {

namespace {

constexpr qsizetype categoryLabelLimit = 39; // what the reader's label editor takes
constexpr int nameExistsString = 34;

// As the label editor stores a name.
QString categoryName(const QString &text) {
    return cutText(text.trimmed(), categoryLabelLimit).toString();
}

} // namespace

int failUnknownCategory(const QString &name) {
    return fail(QStringLiteral("there is no category \"%1\"").arg(name));
}

int failUnknownChannel(const QString &name) {
    return fail(QStringLiteral("there is no channel \"%1\"").arg(name));
}

int failStore(const Device &device) { return fail(messageWithCode(device.store.error())); }

int runInit(const DeviceRoot &root) {
    if (!provisionDevice(root, defaultChannelsFile(), todayItemKey()))
        return fail(QStringLiteral("%1: the device root cannot be made").arg(root.path()));
    if (!root.makeFolders())
        return fail(QStringLiteral("%1: the device's folders cannot be made").arg(root.path()));
    Device device(root);
    quint32 categoryCount = 0;
    SettingsStore(device.registry).RegReadDword(programKey, u"CategoryNumber", categoryCount);
    if (categoryCount == 0)
        seedCategories(root, device.registry);
    if (!device.open())
        return ExitFailed;
    printLine(QStringLiteral("%1 categories, %2 channels")
                  .arg(device.categories().size())
                  .arg(device.channels().size()));
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
    const QStringList categories = device.categories();
    if (!categories.contains(old))
        return failUnknownCategory(old);
    if (name.isEmpty())
        return fail(QStringLiteral("a category needs a name"));
    if (name == old)
        return ExitDone;
    if (categories.contains(name))
        return fail(resourceString(nameExistsString));
    if (!device.categoryStore.RenameCategory(old, name))
        return fail(QStringLiteral("the category could not be stored"));
    if (device.store.MoveCategory(old, name))
        return ExitDone;
    device.categoryStore.RenameCategory(name, old);
    return failStore(device);
}

int runDeleteCategory(Device &device, const Arguments &arguments) {
    const QString name = arguments.operands[0];
    if (!device.categories().contains(name))
        return failUnknownCategory(name);
    if (!device.store.DeleteCategoryChannels(name))
        return failStore(device);
    if (!device.categoryStore.DeleteCategory(name))
        return fail(QStringLiteral("the list of categories could not be stored"));
    device.store.PublishTotalUnread();
    return ExitDone;
}

} // namespace tidebrook
