#include "ctl/commands.h"
#include "ctl/output.h"
#include "platform/text.h"
#include "res/strings.h"

namespace tidebrook {

namespace {

constexpr int wrongUrlString = 27;
constexpr int nameExistsString = 34;
constexpr quint32 databaseError = 1001; // an insert that fails keeps no code of its own

QString channelName(const QString &text) {
    return cutText(text.trimmed(), channelNameCapacity).toString().trimmed();
}

bool isStorableLink(const QString &link) {
    return link.size() <= linkCapacity && !link.contains(u'\'') &&
           std::none_of(link.begin(), link.end(),
                        [](QChar c) { return c.category() == QChar::Other_Control; });
}

} // namespace

int runChannels(Device &device, const Arguments &arguments) {
    const QString category = arguments.operands.value(0);
    if (!category.isNull() && !device.categories().contains(category))
        return failUnknownCategory(category);
    for (const ListedChannel &channel : device.channels(category)) {
        QString link;
        device.store.GetChannelLink(channel.category, channel.name, link);
        printFields({counts(channel.unread, channel.total), channel.name, link, channel.category});
    }
    return ExitDone;
}

int runAdd(Device &device, const Arguments &arguments) {
    const QString category = arguments.operands[0].trimmed();
    const QString name = channelName(arguments.operands[1]);
    const QString link = arguments.operands[2].trimmed();
    if (name.isEmpty())
        return fail(QStringLiteral("a channel needs a name"));
    if (!isStorableLink(link))
        return fail(resourceString(wrongUrlString));
    const QString listed = ensureCategory(device, category);
    if (listed.isEmpty())
        return ExitFailed;
    QString storedName;
    if (device.store.InsertChannel({listed, name, link}, &storedName)) {
        printLine(storedName);
        return ExitDone;
    }
    return fail(device.findChannel(name) ? resourceString(nameExistsString)
                                         : messageWithCode(databaseError));
}

int runRename(Device &device, const Arguments &arguments) {
    const QString old = arguments.operands[0];
    const QString name = channelName(arguments.operands[1]);
    if (!device.findChannel(old))
        return failUnknownChannel(old);
    if (name.isEmpty())
        return fail(QStringLiteral("a channel needs a name"));
    if (name != old && device.findChannel(name))
        return fail(resourceString(nameExistsString));
    return device.store.RenameChannel(old, name) ? ExitDone : failStore(device);
}

int runMove(Device &device, const Arguments &arguments) {
    const QString name = arguments.operands[0];
    const QString category = arguments.operands[1];
    if (!device.findChannel(name))
        return failUnknownChannel(name);
    if (!device.categories().contains(category))
        return failUnknownCategory(category);
    return device.store.MoveChannel(name, category) ? ExitDone : failStore(device);
}

int runRelink(Device &device, const Arguments &arguments) {
    const QString name = arguments.operands[0];
    const QString link = arguments.operands[1].trimmed();
    if (!device.findChannel(name))
        return failUnknownChannel(name);
    if (!isStorableLink(link))
        return fail(resourceString(wrongUrlString));
    return device.store.SetChannelLink(name, link) ? ExitDone : failStore(device);
}

int runDelete(Device &device, const Arguments &arguments) {
    const QString name = arguments.operands[0];
    if (!device.findChannel(name))
        return failUnknownChannel(name);
    if (!device.store.DeleteChannel(name))
        return failStore(device);
    device.store.PublishTotalUnread();
    return ExitDone;
}

} // namespace tidebrook
