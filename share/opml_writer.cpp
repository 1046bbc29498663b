#include "share/opml_writer.h"

#include "platform/base/replace_file.h"
#include "platform/base/text.h"

#include <QList>
#include <QXmlStreamWriter>

namespace tidebrook {

namespace {

bool isIn(FeedStore &store, const QString &category, const QString &channel) {
    QString actual;
    return store.FindCategory(channel, actual) &&
           actual == TrimTrailingBlanks(cutText(category, categoryCapacity));
}

// Nothing when a part of it cannot be read.
std::optional<QList<ListedChannel>> channelsOf(FeedStore &store, const QString &category,
                                               const QString &channel) {
    const auto guard = store.lock(); // not while the file is written
    QList<ListedChannel> channels{{channel, category, {}}};
    const bool isRead = channel.isNull()
                            ? store.ListWholeCategory(category, channels)
                            : isIn(store, category, channel) &&
                                  store.GetChannelLink(category, channel, channels[0].link);
    return isRead ? std::optional(channels) : std::nullopt;
}

void writeOutline(QXmlStreamWriter &writer, const ListedChannel &channel) {
    writer.writeEmptyElement(QStringLiteral("outline"));
    writer.writeAttribute(QStringLiteral("text"), xmlText(channel.name));
    writer.writeAttribute(QStringLiteral("type"), QStringLiteral("link"));
    writer.writeAttribute(QStringLiteral("url"), xmlText(channel.link));
}

QByteArray documentOf(const QString &category, const QList<ListedChannel> &channels) {
    QByteArray document;
    QXmlStreamWriter writer(&document);
    writer.setAutoFormatting(true);
    writer.writeStartDocument();
    writer.writeStartElement(QStringLiteral("opml"));
    writer.writeAttribute(QStringLiteral("version"), QStringLiteral("2.0"));
    writer.writeStartElement(QStringLiteral("head"));
    writer.writeTextElement(QStringLiteral("title"), xmlText(category));
    writer.writeEndElement();
    writer.writeStartElement(QStringLiteral("body"));
    writer.writeStartElement(QStringLiteral("outline"));
    writer.writeAttribute(QStringLiteral("text"), xmlText(category));
    for (const ListedChannel &channel : channels)
        writeOutline(writer, channel);
    writer.writeEndDocument();
    return document;
}

} // namespace

std::optional<QByteArray> opmlOf(FeedStore &store, const QString &category,
                                 const QString &channel) {
    const std::optional<QList<ListedChannel>> channels = channelsOf(store, category, channel);
    return channels ? std::optional(documentOf(category, *channels)) : std::nullopt;
}

bool exportOpml(FeedStore &store, const QString &category, const QString &channel,
                const QString &path) {
    if (category.isNull() || path.isNull())
        return false;
    const std::optional<QByteArray> document = opmlOf(store, category, channel);
    return document && replaceFile(path, *document, Readers::Usual);
}

} // namespace tidebrook
