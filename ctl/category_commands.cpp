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

// What goes with a category.
struct Content {
    QStringList channels;
    int articles = 0;

    QString inWords() const {
        return QStringLiteral("%1 channels, %2 articles").arg(channels.size()).arg(articles);
    }
};

// Nothing, and the failure is reported, when there is none such.
std::optional<Content> contentOf(CommandDevice &device, const QString &category) {
    QList<ChannelRecord> feeds;
    if (!device.hasCategory(category))
        return std::nullopt;
    bool isRead = device.store.ListFeeds(feeds);
    Content content;
    for (const ChannelRecord &feed : std::as_const(feeds)) {
        ReadFlagCounts counts;
        if (feed.category != category)
            continue;
        isRead = isRead && device.store.CountReadFlags(category, feed.channelName, counts);
        content.channels.append(feed.channelName);
        content.articles += counts.total;
    }
    if (isRead)
        return content;
    failStore(device);
    return std::nullopt;
}

// Asks without the lock, so that others do not wait for the user. The content by then; nothing, and
// the reason is reported, where the category stays, as it does with channels that the user was not
// asked about.
std::optional<Content> confirmedContent(CommandDevice &device, const QString &category,
                                        const Content &asked) {
    device.unlock();
    if (!confirm(QStringLiteral("Delete \"%1\" with %2?").arg(category, asked.inWords()))) {
        fail(QStringLiteral("\"%1\" stays").arg(category));
        return std::nullopt;
    }
    if (!device.lock())
        return std::nullopt;
    auto content = contentOf(device, category);
    if (content && content->channels != asked.channels) {
        fail(QStringLiteral("\"%1\" stays: its channels have changed").arg(category));
        return std::nullopt;
    }
    return content;
}

} // namespace

int runDeleteCategory(CommandDevice &device, const Arguments &arguments) {
    const QString name = arguments.operands[0];
    const bool isTrial = arguments.has(u"dry-run");
    const bool isAsking = !isTrial && !arguments.has(u"yes");
    auto content = contentOf(device, name);
    if (content && isAsking)
        content = confirmedContent(device, name, *content);
    if (!content)
        return ExitFailed;
    const ChangeEnd end = isTrial ? ChangeEnd::Done : device.subscriptions().deleteCategory(name);
    if (end == ChangeEnd::Done)
        printLine(content->inWords());
    return exitCodeOf(device, end);
}

} // namespace tidebrook
