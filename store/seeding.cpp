#include "store/seeding.h"

#include "platform/base/plain_file.h"
#include "platform/base/text.h"
#include "store/escape_sql.h"

#include <QStringDecoder>

namespace tidebrook {

namespace {

constexpr qint64 seedLimit = 16 * 1024 * 1024; // bytes

std::optional<QString> readSeedFile(const DeviceRoot &device) {
    const std::optional<QByteArray> bytes =
        readPlainFile(device.filePath(u"\\windows\\RSSChannels.txt"), seedLimit);
    QStringDecoder decoder(QStringConverter::Utf16LE);
    return bytes ? std::optional<QString>(decoder.decode(*bytes)) : std::nullopt;
}

QString field(const QList<QStringView> &fields, qsizetype index, qsizetype capacity) {
    if (index >= fields.size())
        return QStringLiteral("");
    return TrimTrailingBlanks(cutText(fields[index], capacity)).toString();
}

} // namespace

std::optional<QList<ChannelRecord>> readSeedChannels(const DeviceRoot &device) {
    const std::optional<QString> text = readSeedFile(device);
    if (!text)
        return std::nullopt;
    QList<ChannelRecord> channels;
    for (QStringView line : QStringView(*text).split(u'\n')) {
        if (line.endsWith(u'\r'))
            line.chop(1);
        if (line.isEmpty())
            continue;
        const QList<QStringView> fields = line.split(u'\t');
        channels.append({.category = field(fields, 2, categoryCapacity),
                         .channelName = field(fields, 0, channelNameCapacity),
                         .channelLink = field(fields, 1, linkCapacity)});
    }
    return channels;
}

bool seedCategories(const DeviceRoot &device, Registry &registry) {
    const std::optional<QString> text = readSeedFile(device);
    if (!text)
        return true;
    CategoryListStore categories(registry);
    Registry::Batch batch(registry);
    bool isStored = batch.isOpen();
    // Fields count in threes regardless of lines, and empty ones do not count.
    QString delimited = *text;
    delimited.replace(u'\t', u'\n').replace(u'\r', u'\n');
    const QStringList tokens = delimited.split(u'\n', Qt::SkipEmptyParts);
    for (qsizetype category = 2; isStored && category < tokens.size(); category += 3) {
        const QString name =
            TrimTrailingBlanks(cutText(tokens[category], categoryCapacity)).toString();
        isStored = categories.AddCategory(name) || registry.read(categoriesKey, name).has_value();
    }
    return isStored && batch.commit() && registry.flush();
}

} // namespace tidebrook
