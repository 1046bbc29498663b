#include "ctl/commands.h"
#include "ctl/output.h"
#include "res/strings.h"
#include "store/error_codes.h"

namespace tidebrook {

namespace {

const QString listedFailure = QStringLiteral("the list of categories could not be stored");
const QString nameNeeded = QStringLiteral("a category needs a name");

} // namespace

// Not every operation that fails leaves a code.
QString storeFailure(const Device &device) {
    const quint32 code = device.store.error();
    return messageWithCode(code != 0 ? code : quint32{DatabaseFailed});
}

int failStore(const Device &device) { return fail(storeFailure(device)); }

QString failureOf(const Device &device, ChangeEnd end) {
    switch (end) {
    case ChangeEnd::NameTaken:
        return resourceString(nameExistsString);
    case ChangeEnd::LinkRefused:
        return resourceString(wrongUrlString);
    case ChangeEnd::NotReady:
        return QStringLiteral("the device is gone");
    case ChangeEnd::CategoriesFailed:
        return listedFailure;
    case ChangeEnd::AutoListFailed:
        return QStringLiteral("the list of automatic updates could not be read or stored");
    case ChangeEnd::StoreFailed:
    case ChangeEnd::Done:
        break;
    }
    return storeFailure(device);
}

int exitCodeOf(const Device &device, ChangeEnd end) {
    return end == ChangeEnd::Done ? ExitDone : fail(failureOf(device, end));
}

int runInit(const DeviceRoot &root) {
    if (!provisionDevice(root))
        return fail(QStringLiteral("%1: no device can be made there").arg(root.path()));
    if (!root.makeFolders())
        return fail(foldersFailure(root));
    CommandDevice device(root);
    if (!device.lock() || !device.openRegistry())
        return ExitFailed;
    device.unlock(); // `open` locks them itself
    const DeviceFault fault = device.open(std::nullopt);
    if (fault == DeviceFault::CategoriesNotListed)
        return fail(listedFailure);
    if (fault != DeviceFault::None)
        return failStore(device);
    const auto channels = device.channels();
    if (!channels)
        return ExitFailed;
    printLine(QStringLiteral("%1 categories, %2 channels")
                  .arg(device.categories().size())
                  .arg(channels->size()));
    return ExitDone;
}

int runCategories(CommandDevice &device, const Arguments &) {
    for (const QString &name : device.categories())
        printLine(name);
    return ExitDone;
}

QString wantedCategory(CommandDevice &device, const QString &name) {
    QString stored = device.categories().contains(name) ? name : categoryName(printable(name));
    if (stored.isEmpty())
        fail(nameNeeded);
    return stored;
}

int runAddCategory(CommandDevice &device, const Arguments &arguments) {
    const QString name = categoryName(printable(arguments.operands[0]));
    if (name.isEmpty())
        return fail(nameNeeded);
    return exitCodeOf(device, device.subscriptions().addCategory(name));
}

int runRenameCategory(CommandDevice &device, const Arguments &arguments) {
    const QString old = arguments.operands[0];
    const QString name = categoryName(printable(arguments.operands[1]));
    if (!device.hasCategory(old))
        return ExitFailed;
    if (name.isEmpty())
        return fail(nameNeeded);
    return exitCodeOf(device, device.subscriptions().RenameCategory(old, name));
}

int runDeleteCategory(CommandDevice &device, const Arguments &arguments) {
    const QString name = arguments.operands[0];
    return device.hasCategory(name)
               ? exitCodeOf(device, device.subscriptions().deleteCategory(name))
               : ExitFailed;
}

} // namespace tidebrook
