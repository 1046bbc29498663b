#include "update/auto_list.h"

#include "platform/base/descriptor.h"
#include "platform/base/plain_file.h"
#include "platform/base/replace_file.h"
#include "platform/base/text.h"
#include "store/escape_sql.h"
#include "update/channel_file.h"

#include <QSet>

#include <fcntl.h>

#include <algorithm>
#include <functional>
#include <utility>

namespace tidebrook {

namespace {

constexpr QStringView listFile = u"\\windows\\UpdateChannel.list";
constexpr qint64 listLimit = 16 * 1024 * 1024; // bytes; room for more channels than any device has

QStringView comparable(QStringView name) {
    return TrimTrailingBlanks(cutText(name, channelNameCapacity));
}

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
// a channel whatever stands before it, so that a line spoilt by hand spoils no other.
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

// A list that is missing is an empty one.
std::optional<QString> readList(const QString &path) {
    return fileKindAt(path) == FileKind::Missing ? QString() : readChannelFile(path, listLimit);
}

bool makeList(const QString &path) {
    return Descriptor(openPlainFile(path, O_RDONLY | O_CREAT)).isOpen();
}

QString textOf(const QList<Entry> &entries) {
    QString text;
    for (const Entry &entry : entries)
        text += entry.text + u'\n';
    return text;
}

bool hasName(const Entry &entry, const QString &channelName) {
    return entry.channel && comparable(entry.channel->channelName) == comparable(channelName);
}

bool isGone(FeedStore &store, const Entry &entry) {
    QString category;
    return entry.channel && store.FindCategory(entry.channel->channelName, category) &&
           category.isNull();
}

// Where a line goes, texts around it that were no channel can become one, even of the same name.
void removeName(QList<Entry> &entries, const QString &channelName) {
    const auto isOfName = [&](const Entry &entry) { return hasName(entry, channelName); };
    for (QList<Entry> read = readEntries(textOf(entries));
         std::any_of(read.begin(), read.end(), isOfName); read = readEntries(textOf(entries))) {
        entries = read;
        entries.removeIf(isOfName);
    }
}

bool changeList(const DeviceRoot &device, FeedStore &store,
                const std::function<void(QList<Entry> &)> &work) {
    const QString path = device.filePath(listFile);
    if (fileKindAt(path) == FileKind::Missing)
        return true;
    const std::optional<QString> text = readList(path);
    if (!text)
        return false;
    QList<Entry> entries = readEntries(*text);
    entries.removeIf([&](const Entry &entry) { return isGone(store, entry); });
    work(entries);
    const QString changed = textOf(entries);
    return changed == *text || replaceFile(path, encodeChannelFile(changed));
}

} // namespace

std::optional<bool> isAutoUpdated(const DeviceRoot &device, const QString &channelName) {
    const QString path = device.filePath(listFile);
    const std::optional<QString> text = makeList(path) ? readList(path) : std::nullopt;
    if (!text)
        return std::nullopt;
    const QList<Entry> entries = readEntries(*text);
    return std::any_of(entries.begin(), entries.end(),
                       [&](const Entry &entry) { return hasName(entry, channelName); });
}

// A line that would not be read as these three texts again would spoil those behind it.
bool canBeAutoUpdated(const RefreshJob &job) {
    return !job.category.isEmpty() &&
           parseChannelLine(QStringView(channelLine(job)).chopped(1)).has_value();
}

bool setAutoUpdate(const DeviceRoot &device, FeedStore &store, const RefreshJob &job, bool add) {
    if (job.url.isNull() || job.channelName.isNull() || job.category.isNull())
        return true;
    if (add && !canBeAutoUpdated(job))
        return false;
    return changeList(device, store, [&](QList<Entry> &entries) {
        if (add)
            entries.append(entryOf({job.channelName, job.url, job.category}));
        else
            removeName(entries, job.channelName);
    });
}

std::optional<qsizetype> addAutoUpdated(const DeviceRoot &device, FeedStore &store,
                                        const QList<RefreshJob> &jobs) {
    qsizetype added = 0;
    const auto addMissing = [&](QList<Entry> &entries) {
        QSet<QString> names;
        for (const Entry &entry : std::as_const(entries)) {
            if (entry.channel)
                names.insert(comparable(entry.channel->channelName).toString());
        }
        const qsizetype before = entries.size();
        for (const RefreshJob &job : jobs) {
            if (!names.contains(comparable(job.channelName).toString()))
                entries.append(entryOf({job.channelName, job.url, job.category}));
        }
        added = entries.size() - before;
    };
    const bool isDone =
        makeList(device.filePath(listFile)) && changeList(device, store, addMissing);
    return isDone ? std::optional(added) : std::nullopt;
}

std::optional<qsizetype> countAutoUpdated(const DeviceRoot &device, FeedStore &store) {
    const std::optional<QList<RefreshJob>> listed = autoUpdatedChannels(device);
    QList<ChannelRecord> feeds;
    if (!listed || !store.ListFeeds(feeds))
        return std::nullopt;
    QSet<QString> names;
    for (const ChannelRecord &feed : std::as_const(feeds))
        names.insert(feed.channelName);
    return std::count_if(listed->begin(), listed->end(),
                         [&](const RefreshJob &job) { return names.contains(job.channelName); });
}

bool prepareAutoRename(const DeviceRoot &device, FeedStore &store, const QString &old,
                       const QString &name) {
    return changeList(device, store, [&](QList<Entry> &entries) {
        for (qsizetype i = entries.size() - 1; i >= 0; --i) {
            if (!hasName(entries[i], old))
                continue;
            const RefreshJob job{entries[i].channel->url, name, entries[i].channel->category};
            if (canBeAutoUpdated(job))
                entries.insert(i + 1, entryOf({job.channelName, job.url, job.category}));
        }
    });
}

bool pruneAutoUpdated(const DeviceRoot &device, FeedStore &store) {
    return changeList(device, store, [](QList<Entry> &) {});
}

std::optional<QList<RefreshJob>> autoUpdatedChannels(const DeviceRoot &device) {
    const std::optional<QString> text = readList(device.filePath(listFile));
    if (!text)
        return std::nullopt;
    QList<RefreshJob> channels;
    QSet<QString> names;
    for (const Entry &entry : readEntries(*text)) {
        const std::optional<RefreshJob> channel = parseChannelLine(entry.text);
        if (channel && !names.contains(channel->channelName)) {
            names.insert(channel->channelName);
            channels.append(*channel);
        }
    }
    return channels;
}

} // namespace tidebrook
