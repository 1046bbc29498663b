#include "update/auto_list.h"

#include "platform/file_lock.h"
#include "platform/replace_file.h"
#include "platform/text.h"
#include "store/escape_sql.h"
#include "update/channel_file.h"

#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <algorithm>

namespace tidebrook {

namespace {

constexpr QStringView listFile = u"\\windows\\UpdateChannel.list";
constexpr qint64 listLimit = 16 * 1024 * 1024; // bytes; room for more channels than any device has
constexpr QStringView listLock = u"\\run\\list.lock";

// Names on the list are told apart by as much of them as a channel's name can have.
QStringView comparable(QStringView name) { return cutText(name, channelNameCapacity); }

/// A piece of the list: a channel, or text that is none.
struct Entry {
    QString text; // as it stands, without its line feed
    std::optional<RefreshJob> channel;
};

Entry entryOf(const QStringList &tokens) {
    const RefreshJob job{tokens.value(1), tokens.value(0), tokens.value(2)};
    return {tokens.join(u'\t'), tokens.size() == 3 ? std::optional(job) : std::nullopt};
}

// Texts stand between tabs and line feeds alike, and are taken three at a time. A line of three is
// a channel whatever stands before it, so that what somebody has spoilt by hand spoils no more.
QList<Entry> readEntries(const QString &text) {
    QList<Entry> entries;
    QStringList tokens; // of lines that are not three texts
    const auto end = [&] {
        for (qsizetype i = 0; i < tokens.size(); i += 3)
            entries.append(entryOf(tokens.sliced(i, qMin(qsizetype{3}, tokens.size() - i))));
        tokens.clear();
    };
    for (QString line : text.split(u'\n', Qt::SkipEmptyParts)) {
        if (line.endsWith(u'\r'))
            line.chop(1);
        const QStringList parts = line.split(u'\t', Qt::SkipEmptyParts);
        if (parts.size() == 3) {
            end();
            entries.append(entryOf(parts));
        } else {
            tokens.append(parts);
        }
    }
    end();
    return entries;
}

std::optional<QString> readList(const QString &path) { return readChannelFile(path, listLimit); }

QString withLine(const QString &text, const RefreshJob &job) {
    // A list that somebody's editor left without its last line feed must not run into the line.
    const bool isWhole = text.isEmpty() || text.endsWith(u'\n');
    return text + (isWhole ? u"" : u"\n") + channelLine(job);
}

bool hasName(const Entry &entry, const QString &channelName) {
    return entry.channel && comparable(entry.channel->channelName) == comparable(channelName);
}

QString withoutName(const QString &text, const QString &channelName) {
    QString kept;
    for (const Entry &entry : readEntries(text)) {
        if (!hasName(entry, channelName))
            kept += entry.text + u'\n';
    }
    return kept;
}

// A line that would not be read as these three texts again would spoil those behind it.
bool canBeLine(const RefreshJob &job) {
    return parseChannelLine(QStringView(channelLine(job)).chopped(1)).has_value();
}

} // namespace

bool isAutoUpdated(const DeviceRoot &device, const QString &channelName) {
    const QString path = device.filePath(listFile);
    if (!QFileInfo::exists(path))
        QFile(path).open(QIODevice::WriteOnly | QIODevice::Append); // which makes it
    const QList<Entry> entries = readEntries(readList(path).value_or(QString()));
    return std::any_of(entries.begin(), entries.end(),
                       [&](const Entry &entry) { return hasName(entry, channelName); });
}

bool setAutoUpdate(const DeviceRoot &device, const RefreshJob &job, bool add) {
    if (job.url.isNull() || job.channelName.isNull() || job.category.isNull())
        return true;
    if (add && !canBeLine(job))
        return false;
    const FileLock lock(device.filePath(listLock));
    const QString path = device.filePath(listFile);
    if (!QFileInfo::exists(path))
        return true;
    const std::optional<QString> text = readList(path);
    if (!lock.isHeld() || !text)
        return false;
    const QString changed = add ? withLine(*text, job) : withoutName(*text, job.channelName);
    return replaceFile(path, encodeChannelFile(changed));
}

bool renameAutoUpdated(const DeviceRoot &device, const QString &old, const QString &name) {
    const FileLock lock(device.filePath(listLock));
    const QString path = device.filePath(listFile);
    if (!QFileInfo::exists(path))
        return true;
    const std::optional<QString> text = readList(path);
    if (!lock.isHeld() || !text)
        return false;
    QString changed;
    bool isListed = false;
    for (const Entry &entry : readEntries(*text)) {
        if (!hasName(entry, old)) {
            changed += entry.text + u'\n';
            continue;
        }
        isListed = true;
        const RefreshJob job{entry.channel->url, name, entry.channel->category};
        if (canBeLine(job))
            changed += channelLine(job);
    }
    return !isListed || replaceFile(path, encodeChannelFile(changed));
}

QList<RefreshJob> autoUpdatedChannels(const DeviceRoot &device) {
    const QString text = readList(device.filePath(listFile)).value_or(QString());
    QList<RefreshJob> channels;
    QSet<QString> names;
    for (const Entry &entry : readEntries(text)) {
        const std::optional<RefreshJob> channel = parseChannelLine(entry.text);
        if (channel && !names.contains(channel->channelName)) {
            names.insert(channel->channelName);
            channels.append(*channel);
        }
    }
    return channels;
}

} // namespace tidebrook
