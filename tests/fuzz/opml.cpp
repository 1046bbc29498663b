// A list of channels: read, stored as a category, written, and read again.

#include "fuzz/fuzz.h"
#include "platform/base/text.h"
#include "share/opml_reader.h"
#include "share/opml_writer.h"
#include "test_device/test_device.h"

namespace tidebrook {

using namespace Qt::StringLiterals;

static const QString category = u"C & <\"D'"_s;

static TestDevice &device() {
    static TestDevice device;
    static const bool isOpen = device.store->Open();
    require(isOpen, "the device is there");
    return device;
}

// As much of a channel as a list holds.
static QString lineOf(const QString &name, const QString &link) {
    const auto cut = [](const QString &text, qsizetype capacity) {
        return TrimTrailingBlanks(cutText(text, capacity)).toString();
    };
    return cut(name, 49) + u'\n' + cut(link, 511);
}

static QStringList linesOf(const QList<ChannelRecord> &channels) {
    QStringList lines;
    for (const ChannelRecord &channel : channels) {
        lines.append(channel.channelName + u'\n' + channel.channelLink);
        require(lines.last().isValidUtf16() &&
                    lines.last() == lineOf(channel.channelName, channel.channelLink),
                "a channel is cut to its capacities", lines.last());
    }
    return lines;
}

void fuzz(const QByteArray &input) {
    FeedStore &store = *device().store;
    OpmlReader reader(device().root, *device().registry);
    const bool isRead = reader.openDocument(input);
    const QList<ChannelRecord> channels = reader.takeChannels();
    require(isRead || channels.isEmpty(), "a list that is refused offers nothing");
    linesOf(channels);
    store.changeAtOnce([&](auto &) {
        for (const ChannelRecord &channel : channels)
            store.InsertChannel({category, channel.channelName, channel.channelLink});
    });
    QList<ListedChannel> stored;
    require(store.ListWholeCategory(category, stored), "the channels can be listed");
    QStringList expected;
    for (const ListedChannel &channel : std::as_const(stored)) {
        if (!channel.name.isEmpty())
            expected.append(lineOf(channel.name, channel.link));
    }
    const std::optional<QByteArray> written = opmlOf(store, category, {});
    require(written && reader.openDocument(*written), "what is written can be read");
    const QStringList read = linesOf(reader.takeChannels());
    require(read == expected, "what is read is what is stored",
            expected.join(u'|') + u" -> " + read.join(u'|'));
    require(store.DeleteCategoryChannels(category), "the category can be deleted");
}

} // namespace tidebrook
