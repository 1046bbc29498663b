#include "update/auto_list.h"

#include "platform/file_lock.h"
#include "platform/text.h"
#include "store/escape_sql.h"
#include "update/channel_file.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QSet>

namespace tidebrook {

namespace {

constexpr QStringView listFile = u"\\windows\\UpdateChannel.list";
constexpr qint64 listLimit = 16 * 1024 * 1024; // bytes; room for more channels than any device has
constexpr QStringView listLock = u"\\run\\list.lock";

// Names on the list are told apart by as much of them as a channel's name can have.
QStringView comparable(QStringView name) { return cutText(name, channelNameCapacity); }

// The list read as it is by those who keep it: text between tabs and line feeds alike, taken three
// at a time. What is left over at the end is no channel.
QList<RefreshJob> readTriples(const QString &text) {
    QString lines = text;
    lines.replace(u'\t', u'\n');
    const QStringList tokens = lines.split(u'\n', Qt::SkipEmptyParts);
    QList<RefreshJob> channels;
    for (qsizetype i = 0; i + 2 < tokens.size(); i += 3)
        channels.append({tokens[i + 1], tokens[i], tokens[i + 2]});
    return channels;
}

std::optional<QString> readList(const QString &path) { return readChannelFile(path, listLimit); }

bool replaceList(const QString &path, const QString &text) {
    QSaveFile file(path);
    const QByteArray bytes = encodeChannelFile(text);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit();
}

QString withLine(const QString &text, const RefreshJob &job) {
    // A list that somebody's editor left without its last line feed must not run into the line.
    const bool isWhole = text.isEmpty() || text.endsWith(u'\n');
    return text + (isWhole ? u"" : u"\n") + channelLine(job);
}

QString withoutName(const QString &text, const QString &channelName) {
    QString kept;
    for (const RefreshJob &channel : readTriples(text)) {
        if (comparable(channel.channelName) != comparable(channelName))
            kept += channelLine(channel);
    }
    return kept;
}

} // namespace

bool isAutoUpdated(const DeviceRoot &device, const QString &channelName) {
    const QString path = device.filePath(listFile);
    if (!QFileInfo::exists(path))
        QFile(path).open(QIODevice::WriteOnly | QIODevice::Append); // which makes it
    for (const RefreshJob &channel : readTriples(readList(path).value_or(QString()))) {
        if (comparable(channel.channelName) == comparable(channelName))
            return true;
    }
    return false;
}

bool setAutoUpdate(const DeviceRoot &device, const RefreshJob &job, bool add) {
    if (job.url.isNull() || job.channelName.isNull() || job.category.isNull())
        return true;
    // A line that would not be read as these three texts again would spoil those behind it.
    if (add && !parseChannelLine(QStringView(channelLine(job)).chopped(1)))
        return false;
    const FileLock lock(device.filePath(listLock));
    const QString path = device.filePath(listFile);
    if (!QFileInfo::exists(path))
        return true;
    const std::optional<QString> text = readList(path);
    return lock.isHeld() && text &&
           replaceList(path, add ? withLine(*text, job) : withoutName(*text, job.channelName));
}

QList<RefreshJob> autoUpdatedChannels(const DeviceRoot &device) {
    const QString text = readList(device.filePath(listFile)).value_or(QString());
    QList<RefreshJob> channels;
    QSet<QString> names;
    for (QStringView line : QStringView(text).split(u'\n')) {
        if (line.endsWith(u'\r'))
            line.chop(1);
        const std::optional<RefreshJob> channel = parseChannelLine(line);
        if (channel && !names.contains(channel->channelName)) {
            names.insert(channel->channelName);
            channels.append(*channel);
        }
    }
    return channels;
}

} // namespace tidebrook
