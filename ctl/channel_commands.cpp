#include "ctl/commands.h"
#include "ctl/output.h"
#include "platform/base/text.h"
#include "res/strings.h"

namespace tidebrook {

QString refusalOf(const QString &name, const QString &link) {
    if (name.isEmpty())
        return QStringLiteral("a channel needs a name");
    return isStorableLink(link) ? QString() : resourceString(wrongUrlString);
}

QString subscribe(Device &device, const ChannelRecord &channel, QString *reason) {
    QString storedName;
    device.store.clearError();
    if (device.store.InsertChannel(channel, &storedName))
        return storedName;
    QString other;
    if (device.store.error() == 0)
        device.store.FindCategory(channel.channelName, other);
    *reason = other.isNull() ? storeFailure(device) : resourceString(nameExistsString);
    return {};
}

int toldEnd(Device &device, ChannelChange end) {
    switch (end) {
    case ChannelChange::Done:
        return ExitDone;
    case ChannelChange::NameTaken:
        return fail(resourceString(nameExistsString));
    case ChannelChange::StoreFailed:
        return failStore(device);
    case ChannelChange::ListFailed:
        break;
    }
    return fail(QStringLiteral("the list of automatic updates could not be read or stored"));
}

int runChannels(Device &device, const Arguments &arguments) {
    const QString category = arguments.operands.value(0);
    if (!category.isNull() && !device.hasCategory(category))
        return ExitFailed;
    const auto channels = device.channels(category);
    if (!channels)
        return ExitFailed;
    for (const ListedChannel &channel : *channels)
        printFields(
            {counts(channel.unread, channel.total), channel.name, channel.link, channel.category});
    return ExitDone;
}

int runAdd(Device &device, const Arguments &arguments) {
    const QString category = arguments.operands[0].trimmed();
    const QString name = storableName(arguments.operands[1]);
    const QString link = arguments.operands[2].trimmed();
    QString reason = refusalOf(name, link);
    if (!reason.isNull())
        return fail(reason);
    const QString listed = ensureCategory(device, category);
    if (listed.isEmpty())
        return ExitFailed;
    const QString storedName = subscribe(device, {listed, name, link}, &reason);
    if (storedName.isNull())
        return fail(reason);
    printLine(storedName);
    return ExitDone;
}

int runRename(Device &device, const Arguments &arguments) {
    const QString old = arguments.operands[0];
    const QString name = storableName(arguments.operands[1]);
    if (!device.hasChannel(old))
        return ExitFailed;
    if (name.isEmpty())
        return fail(QStringLiteral("a channel needs a name"));
    return name == old ? ExitDone
                       : toldEnd(device, renameChannel(device.root, device.store, old, name));
}

int runMove(Device &device, const Arguments &arguments) {
    const QString name = arguments.operands[0];
    const QString category = arguments.operands[1];
    if (!device.hasChannel(name) || !device.hasCategory(category))
        return ExitFailed;
    return device.store.MoveChannel(name, category) ? ExitDone : failStore(device);
}

int runRelink(Device &device, const Arguments &arguments) {
    const QString name = arguments.operands[0];
    const QString link = arguments.operands[1].trimmed();
    if (!device.hasChannel(name))
        return ExitFailed;
    if (!isStorableLink(link))
        return fail(resourceString(wrongUrlString));
    return device.store.SetChannelLink(name, link) ? ExitDone : failStore(device);
}

int runDelete(Device &device, const Arguments &arguments) {
    const QString name = arguments.operands[0];
    if (!device.hasChannel(name))
        return ExitFailed;
    return toldEnd(device, deleteChannel(device.root, device.store, name));
}

} // namespace tidebrook
