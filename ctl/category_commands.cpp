#include "ctl/commands.h"
#include "ctl/output.h"
#include "ctl/table.h"
#include "res/strings.h"
#include "store/error_codes.h"

namespace tidebrook {

namespace {

const QString listedFailure = QStringLiteral("the list of categories could not be stored");
const QString categoryNameNeeded = QStringLiteral("a category needs a name");

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
    const bool wasThere = root.isDevice();
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
    printFields(
        {QStringLiteral("%1 categories, %2 channels")
             .arg(device.categories().size())
             .arg(channels->size()),
         (wasThere ? QStringLiteral("device found at ") : QStringLiteral("new device at ")) +
             root.path()});
    return ExitDone;
}

int runCategories(CommandDevice &device, const Arguments &arguments) {
    const QString column = QStringLiteral("name");
    Table table(arguments, {column});
    for (const QString &name : device.categories())
        table.add({name}, {{column, name}});
    return table.end();
}

QString wantedCategory(CommandDevice &device, const QString &name) {
    QString stored = device.categories().contains(name) ? name : categoryName(printable(name));
    if (stored.isEmpty())
        fail(categoryNameNeeded);
    return stored;
}

int runAddCategory(CommandDevice &device, const Arguments &arguments) {
    const QString name = categoryName(printable(arguments.operands[0]));
    if (name.isEmpty())
        return fail(categoryNameNeeded);
    return exitCodeOf(device, device.subscriptions().addCategory(name));
}

int runRenameCategory(CommandDevice &device, const Arguments &arguments) {
    const QString old = arguments.operands[0];
    const QString name = categoryName(printable(arguments.operands[1]));
    if (!device.hasCategory(old))
        return ExitFailed;
    if (name.isEmpty())
        return fail(categoryNameNeeded);
    return exitCodeOf(device, device.subscriptions().RenameCategory(old, name));
}

namespace {

// What would go with a category; nothing, and the failure is reported, when there is none such.
std::optional<QString> contentInWords(CommandDevice &device, const QString &category) {
    QList<ChannelRecord> feeds;
    if (!device.hasCategory(category))
        return std::nullopt;
    bool isRead = device.store.ListFeeds(feeds);
    int channels = 0;
    int articles = 0;
    for (const ChannelRecord &feed : std::as_const(feeds)) {
        ReadFlagCounts counts;
        if (feed.category != category)
            continue;
        isRead = isRead && device.store.CountReadFlags(category, feed.channelName, counts);
        ++channels;
        articles += counts.total;
    }
    if (isRead)
        return QStringLiteral("%1 channels, %2 articles").arg(channels).arg(articles);
    failStore(device);
    return std::nullopt;
}

// Without the lock: others must not wait for the user.
bool isDeletionWanted(CommandDevice &device, const QString &category, const QString &content) {
    device.unlock();
    if (confirm(QStringLiteral("Delete \"%1\" with %2?").arg(category, content)))
        return device.lock();
    fail(QStringLiteral("\"%1\" stays").arg(category));
    return false;
}

} // namespace

int runDeleteCategory(CommandDevice &device, const Arguments &arguments) {
    const QString name = arguments.operands[0];
    const bool isTrial = arguments.has(u"dry-run");
    const bool isAsking = !isTrial && !arguments.has(u"yes");
    auto content = contentInWords(device, name);
    if (content && isAsking)
        content =
            isDeletionWanted(device, name, *content) ? contentInWords(device, name) : std::nullopt;
    if (!content)
        return ExitFailed;
    const ChangeEnd end = isTrial ? ChangeEnd::Done : device.subscriptions().deleteCategory(name);
    if (end == ChangeEnd::Done)
        printLine(*content);
    return exitCodeOf(device, end);
}

} // namespace tidebrook
