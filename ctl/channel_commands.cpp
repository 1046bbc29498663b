#include "ctl/commands.h"
#include "ctl/feed_choice.h"
#include "ctl/output.h"
#include "ctl/table.h"

#include <QUrl>

namespace tidebrook {

namespace {

const QString channelNameNeeded = QStringLiteral("a channel needs a name");

// Where it is a whole address of the web; else the failure is reported.
bool isWebAddress(const QString &link) {
    const QUrl url(link);
    const bool isWeb = url.scheme() == u"http" || url.scheme() == u"https";
    if (isWeb && url.isValid() && !url.host().isEmpty())
        return true;
    fail(
        QStringLiteral("\"%1\" is no address: one begins with http:// or https:// and names a host")
            .arg(link));
    return false;
}

// The category of a new channel; empty, and the failure is reported, where it is not to be made.
QString categoryOfNew(CommandDevice &device, const Arguments &arguments) {
    QString category = wantedCategory(device, arguments.operands[0].trimmed());
    if (category.isEmpty() || arguments.options.contains(QStringLiteral("create")) ||
        device.categories().contains(category))
        return category;
    fail(QStringLiteral("there is no category \"%1\"; --create makes it").arg(category));
    return {};
}

} // namespace

int runChannels(CommandDevice &device, const Arguments &arguments) {
    const QString category = arguments.operands.value(0);
    if (!category.isNull() && !device.hasCategory(category))
        return ExitFailed;
    const auto channels = device.channels(category);
    if (!channels)
        return ExitFailed;
    Table table(arguments, {QStringLiteral("unread/total"), QStringLiteral("name"),
                            QStringLiteral("address"), QStringLiteral("category")});
    for (const ListedChannel &channel : *channels)
        table.add(
            {counts(channel.unread, channel.total), channel.name, channel.link, channel.category},
            {{QStringLiteral("unread"), channel.unread},
             {QStringLiteral("total"), channel.total},
             {QStringLiteral("name"), channel.name},
             {QStringLiteral("address"), jsonText(channel.link)},
             {QStringLiteral("category"), channel.category}});
    return table.end();
}

int runAdd(CommandDevice &device, const Arguments &arguments) {
    bool isNumber = !arguments.has(u"feed");
    const uint number = isNumber ? 0 : arguments.feed.toUInt(&isNumber);
    if (!isNumber)
        return failUsage(QStringLiteral("--feed takes the number of a feed, or 0"));
    const QString category = categoryOfNew(device, arguments);
    const QString name = storableName(arguments.operands[1]);
    const QString link = arguments.operands[2].trimmed();
    if (category.isEmpty() || !isWebAddress(link))
        return ExitFailed;
    if (name.isEmpty())
        return fail(channelNameNeeded);
    const QString feed =
        feedAddress(device, link, arguments.has(u"feed") ? number : std::optional<uint>());
    // The categories may have changed while the server was waited for.
    if (feed.isEmpty() || categoryOfNew(device, arguments).isEmpty())
        return ExitFailed;
    QString storedName;
    const ChangeEnd end = device.subscriptions().addChannel({category, name, feed}, &storedName);
    if (end == ChangeEnd::Done)
        printLine(storedName);
    return exitCodeOf(device, end);
}

int runRename(CommandDevice &device, const Arguments &arguments) {
    const QString old = arguments.operands[0];
    const QString name = storableName(arguments.operands[1]);
    if (!device.hasChannel(old))
        return ExitFailed;
    return name.isEmpty() ? fail(channelNameNeeded)
                          : exitCodeOf(device, device.subscriptions().renameChannel(old, name));
}

int runMove(CommandDevice &device, const Arguments &arguments) {
    const QString name = arguments.operands[0];
    const QString category = arguments.operands[1];
    if (!device.hasChannel(name) || !device.hasCategory(category))
        return ExitFailed;
    return exitCodeOf(device, device.subscriptions().moveChannel(name, category));
}

int runRelink(CommandDevice &device, const Arguments &arguments) {
    const QString name = arguments.operands[0];
    const QString link = arguments.operands[1].trimmed();
    return device.hasChannel(name) && isWebAddress(link)
               ? exitCodeOf(device, device.subscriptions().relinkChannel(name, link))
               : ExitFailed;
}

int runDelete(CommandDevice &device, const Arguments &arguments) {
    const QString name = arguments.operands[0];
    return device.hasChannel(name) ? exitCodeOf(device, device.subscriptions().deleteChannel(name))
                                   : ExitFailed;
}

} // namespace tidebrook
