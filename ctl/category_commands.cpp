#include "ctl/commands.h"
#include "ctl/output.h"
#include "platform/base/text.h"
#include "res/default_channels.h"
#include "res/strings.h"
#include "store/category_changes.h"
#include "store/error_codes.h"
#include "store/provisioning.h"
#include "store/seeding.h"

namespace tidebrook {

namespace {

const QString listedFailure = QStringLiteral("the list of categories could not be stored");
const QString nameNeeded = QStringLiteral("a category needs a name");
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
        return fail(QStringLiteral("%1: no device can be made there").arg(root.path()));
    if (!root.makeFolders())
        return fail(foldersFailure(root));
    Device device(root);
    if (!device.lockChannels() || !device.openRegistry())
        return ExitFailed;
    quint32 categoryCount = 0;
    SettingsStore(device.registry).RegReadDword(programKey, u"CategoryNumber", categoryCount);
    if (categoryCount == 0 && seedCategories(root, device.registry) == Seeding::NotStored)
        return fail(listedFailure);
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
    QString stored = categoryName(name);
    if (stored.isEmpty()) {
        fail(nameNeeded);
        return {};
    }
    if (device.categoryStore.ensureListed(stored))
        return stored;
    fail(listedFailure);
    return {};
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
    if (name.isEmpty())
        return fail(nameNeeded);
    switch (RenameCategory(device.categoryStore, device.store, old, name)) {
    case CategoryChange::Done:
        return ExitDone;
    case CategoryChange::NameTaken:
        return fail(resourceString(nameExistsString));
    case CategoryChange::NotMoved:
        return failStore(device);
    case CategoryChange::NotListed:
        break;
    }
    return fail(listedFailure);
}

int runDeleteCategory(Device &device, const Arguments &arguments) {
    const QString name = arguments.operands[0];
    if (!device.hasCategory(name))
        return ExitFailed;
    const ChannelChange end = deleteChannelsOf(device.root, device.store, name);
    if (end != ChannelChange::StoreFailed && !device.categoryStore.DeleteCategory(name))
        return fail(listedFailure);
    return toldEnd(device, end);
}

} // namespace tidebrook
