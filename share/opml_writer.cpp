#include "share/opml_writer.h"

#include "platform/base/replace_file.h"
#include "platform/base/text.h"

#include <QList>
#include <QXmlStreamWriter>

#include <optional>

namespace tidebrook {

namespace {

struct Outline {
    QString name;
    QString link;
};

// A document with a character that XML does not have would be refused by every reader.
QString xmlText(QString text) {
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        const bool isPair =
            c.isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate();
        if (isPair)
            ++i;
        else if (c < u' ' && c != u'\t' && c != u'\n' && c != u'\r')
            text[i] = u' ';
        else if (c.isSurrogate() || c == u'\uFFFE' || c == u'\uFFFF')
            text[i] = QChar::ReplacementCharacter;
    }
    return text;
}

bool isIn(FeedStore &store, const QString &category, const QString &channel) {
    QString actual;
    return store.FindCategory(channel, actual) &&
           actual == TrimTrailingBlanks(cutText(category, categoryCapacity));
}

// Nothing when a part of it cannot be read.
std::optional<QList<Outline>> outlinesOf(FeedStore &store, const QString &category,
                                         const QString &channel) {
    const auto guard = store.lock(); // not while the file is written
    QList<Outline> outlines;
    if (!channel.isNull()) {
        if (!isIn(store, category, channel))
            return std::nullopt;
        outlines.append({channel, {}});
    } else {
        if (!store.ListChannels(escapedCategory(category)))
            return std::nullopt;
        for (const ChannelRow &row : store.takeChannelRows())
            outlines.append({row.nameText(), {}});
    }
    for (Outline &outline : outlines) {
        if (!store.GetChannelLink(category, outline.name, outline.link))
            return std::nullopt;
    }
    return outlines;
}

void writeOutline(QXmlStreamWriter &writer, const Outline &outline) {
    writer.writeEmptyElement(QStringLiteral("outline"));
    writer.writeAttribute(QStringLiteral("text"), xmlText(outline.name));
    writer.writeAttribute(QStringLiteral("type"), QStringLiteral("link"));
    writer.writeAttribute(QStringLiteral("url"), xmlText(outline.link));
}

QByteArray documentOf(const QString &category, const QList<Outline> &outlines) {
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
    for (const Outline &outline : outlines)
        writeOutline(writer, outline);
    writer.writeEndDocument();
    return document;
}

} // namespace

bool exportOpml(FeedStore &store, const QString &category, const QString &channel,
                const QString &path) {
    if (category.isNull() || path.isNull())
        return false;
    const std::optional<QList<Outline>> outlines = outlinesOf(store, category, channel);
    return outlines && replaceFile(path, documentOf(category, *outlines), Readers::Usual);
}

} // namespace tidebrook
