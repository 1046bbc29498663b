#include "ctl/commands.h"
#include "ctl/known_settings.h"
#include "ctl/output.h"
#include "ctl/shared_feeds.h"
#include "ctl/table.h"
#include "store/store_check.h"

namespace tidebrook {

namespace {

QJsonValue jsonValue(const std::optional<RegistryValue> &value) {
    if (!value)
        return {};
    const quint32 *number = std::get_if<quint32>(&*value);
    return number ? QJsonValue(qint64{*number}) : QJsonValue(std::get<QString>(*value));
}

int listSettings(CommandDevice &device, const Arguments &arguments) {
    const QStringList columns{QStringLiteral("name"), QStringLiteral("value"),
                              QStringLiteral("meaning")};
    Table table(arguments, columns);
    for (const KnownSetting &setting : knownSettings(arguments.has(u"today"))) {
        const QString name = setting.name.toString();
        const QString meaning = setting.meaning.toString();
        const std::optional<RegistryValue> value = storedValue(device, setting);
        table.add({name, value ? valueInWords(*value) : QStringLiteral("not set"), meaning},
                  {{columns[0], name}, {columns[1], jsonValue(value)}, {columns[2], meaning}});
    }
    return table.end();
}

int failUnknown(const QString &name, bool isTodayAlone) {
    QStringList names;
    for (const KnownSetting &setting : knownSettings(isTodayAlone))
        names.append(setting.name.toString());
    return failUsage(QStringLiteral("there is no setting \"%1\" among %2")
                         .arg(name, names.join(QStringLiteral(", "))));
}

int printSetting(CommandDevice &device, const KnownSetting &setting) {
    const std::optional<RegistryValue> value = storedValue(device, setting);
    if (!value)
        return fail(QStringLiteral("\"%1\" is not set").arg(setting.name));
    printLine(valueInWords(*value));
    return ExitDone;
}

QJsonObject findingObject(const QString &kind, const QString &text) {
    return {{QStringLiteral("kind"), kind}, {QStringLiteral("text"), text}};
}

// No fault: each feed may be there as often as the user wants.
int reportSharedFeeds(CommandDevice &device, Table &table) {
    QList<ChannelRecord> feeds;
    if (!device.openStore())
        return ExitFailed;
    if (!device.store.ListFeeds(feeds))
        return failStore(device);
    const QHash<QString, QString> shared =
        sharedFeeds(feeds, UpdateStateStore(device.root).readAll());
    for (const ChannelRecord &feed : std::as_const(feeds)) {
        if (!shared.contains(feed.channelName))
            continue;
        const QString text = QStringLiteral("channel \"%1\": %2")
                                 .arg(feed.channelName, shared.value(feed.channelName));
        table.add({u"note: " + text}, findingObject(QStringLiteral("note"), text));
    }
    return table.end();
}

} // namespace

int runSetting(CommandDevice &device, const Arguments &arguments) {
    if (!device.openRegistry())
        return ExitFailed;
    const bool isTodayAlone = arguments.has(u"today");
    if (arguments.operands.isEmpty())
        return listSettings(device, arguments);
    if (arguments.hasTableForm())
        return failUsage(QStringLiteral("--json and --header go with the list of settings"));
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

int runCheck(CommandDevice &device, const Arguments &arguments) {
    const QStringList faults = checkStore(device.root, device.registry);
    Table table(arguments, {QStringLiteral("finding")});
    for (const QString &fault : faults)
        table.addFault({fault}, findingObject(QStringLiteral("fault"), fault));
    if (faults.isEmpty())
        return reportSharedFeeds(device, table);
    table.end();
    return ExitFailed;
}

} // namespace tidebrook
