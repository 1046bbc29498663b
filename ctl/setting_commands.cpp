#include "ctl/commands.h"
#include "ctl/known_settings.h"
#include "ctl/output.h"
#include "ctl/shared_feeds.h"
#include "store/store_check.h"

namespace tidebrook {

namespace {

int listSettings(CommandDevice &device, bool isTodayAlone) {
    for (const KnownSetting &setting : knownSettings(isTodayAlone))
        printFields({setting.name.toString(),
                     storedValue(device, setting).value_or(QStringLiteral("not set")),
                     setting.meaning.toString()});
    return ExitDone;
}

int failUnknown(const QString &name, bool isTodayAlone) {
    QStringList names;
    for (const KnownSetting &setting : knownSettings(isTodayAlone))
        names.append(setting.name.toString());
    return failUsage(QStringLiteral("there is no setting \"%1\" among %2")
                         .arg(name, names.join(QStringLiteral(", "))));
}

int printSetting(CommandDevice &device, const KnownSetting &setting) {
    const std::optional<QString> value = storedValue(device, setting);
    if (!value)
        return fail(QStringLiteral("\"%1\" is not set").arg(setting.name));
    printLine(*value);
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
    const bool isTodayAlone = arguments.options.contains(QStringLiteral("today"));
    if (arguments.operands.isEmpty())
        return listSettings(device, isTodayAlone);
    const QString name = arguments.operands[0];
    const std::optional<KnownSetting> setting = knownSetting(name, isTodayAlone);
    if (!setting)
        return failUnknown(name, isTodayAlone);
    if (arguments.operands.size() == 1)
        return printSetting(device, *setting);
    const std::optional<RegistryValue> value = valueOf(*setting, arguments.operands[1]);
    if (!value)
        return failUsage(QStringLiteral("\"%1\" takes %2 (%3)")
                             .arg(setting->name, rangeInWords(*setting), setting->meaning));
    return storeValue(device, *setting, *value)
               ? ExitDone
               : fail(QStringLiteral("the setting could not be stored"));
}

int runCheck(CommandDevice &device, const Arguments &) {
    const QStringList faults = checkStore(device.root, device.registry);
    for (const QString &fault : faults)
        printFault({fault});
    return faults.isEmpty() ? reportSharedFeeds(device) : ExitFailed;
}

} // namespace tidebrook
