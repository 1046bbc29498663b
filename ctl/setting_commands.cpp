#include "ctl/commands.h"
#include "ctl/output.h"
#include "ctl/shared_feeds.h"
#include "platform/sync/named_event.h"
#include "store/store_check.h"
#include "update/update_settings.h"

namespace tidebrook {

namespace {

// The two values that the platform keeps have keys of their own.
QString keyOf(const Device &device, const QString &name, bool isToday) {
    if (isToday)
        return device.todayItemKey;
    if (name == u"Cradled")
        return hardwareStateKey.toString();
    if (name == u"Status")
        return phoneStateKey.toString();
    return programKey.toString();
}

bool isText(const QString &name, bool isToday) {
    return isToday && (name == u"CATEGORY" || name == u"CHANNEL" || name == u"TITLE");
}

int printSetting(CommandDevice &device, const QString &key, const QString &name) {
    const std::optional<RegistryValue> value = device.registry.read(key, name);
    if (!value)
        return fail(QStringLiteral("\"%1\" is not set").arg(name));
    const quint32 *number = std::get_if<quint32>(&*value);
    printLine(number ? QString::number(*number) : std::get<QString>(*value));
    return ExitDone;
}

// No fault: each feed may be there as often as the user wants.
int reportSharedFeeds(CommandDevice &device) {
    QList<ChannelRecord> feeds;
    if (!device.openStore())
        return ExitFailed;
    if (!device.store.ListFeeds(feeds))
        return failStore(device);
    const QHash<QString, QString> shared =
        sharedFeeds(feeds, UpdateStateStore(device.root).readAll());
    for (const ChannelRecord &feed : std::as_const(feeds)) {
        if (shared.contains(feed.channelName))
            printLine(QStringLiteral("note: channel \"%1\": %2")
                          .arg(feed.channelName, shared.value(feed.channelName)));
    }
    return ExitDone;
}

} // namespace

int runSetting(CommandDevice &device, const Arguments &arguments) {
    if (!device.openRegistry())
        return ExitFailed;
    const QString name = arguments.operands[0];
    const bool isToday = arguments.options.contains(QStringLiteral("today"));
    const QString key = keyOf(device, name, isToday);
    if (arguments.operands.size() == 1)
        return printSetting(device, key, name);
    const QString text = arguments.operands[1];
    RegistryValue value = text;
    if (!isText(name, isToday)) {
        bool isNumber = false;
        value = quint32{text.toUInt(&isNumber)};
        if (!isNumber)
            return failUsage(
                QStringLiteral("\"%1\" takes a number from 0 to 4294967295").arg(name));
    }
    if (!device.registry.write(key, name, value) || !device.registry.flush())
        return fail(QStringLiteral("the setting could not be stored"));
    if (isToday)
        NamedEvent(device.root, todayItemsEvent, NamedEvent::Reset::Auto).set();
    return ExitDone;
}

int runCheck(CommandDevice &device, const Arguments &) {
    const QStringList faults = checkStore(device.root, device.registry);
    for (const QString &fault : faults)
        printLine(fault);
    return faults.isEmpty() ? reportSharedFeeds(device) : ExitFailed;
}

} // namespace tidebrook
