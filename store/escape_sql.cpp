#include "store/escape_sql.h"

#include "platform/text.h"

namespace tidebrook {

namespace {

qsizetype capacityOf(TextKind kind) {
    switch (kind) {
    case TextKind::Category:
        return 40;
    case TextKind::ChannelName:
        return channelNameCapacity;
    case TextKind::Description:
        return descriptionCapacity;
    case TextKind::Title:
        return titleCapacity;
    }
    return 0;
}

bool isDropped(QChar c) { return c == u'\r' || c == QChar(0xFEFF) || c == QChar(0xFFFE); }

void appendEscaped(QString &out, QChar c) {
    if (isDropped(c))
        return;
    out += c;
    if (c == u'\'')
        out += c;
}

QString escapedWithinCapacity(const QString &text, TextKind kind) {
    QString escaped;
    EscapeSql(cutText(text, capacityOf(kind)), escaped, kind);
    return escaped;
}

} // namespace

bool EscapeSql(QStringView source, QString &destination, TextKind kind) {
    if (source.isNull())
        return false;
    destination.clear();
    for (const QChar c : cutText(source, capacityOf(kind) + 1))
        appendEscaped(destination, c);
    return true;
}

QString escapedCategory(const QString &category) {
    return escapedWithinCapacity(category, TextKind::Category);
}

QString escapedChannelName(const QString &name) {
    return escapedWithinCapacity(name, TextKind::ChannelName);
}

QString escapedTitle(const QString &title) { return escapedWithinCapacity(title, TextKind::Title); }

QString escapeFeedText(QStringView source, qsizetype capacity) {
    QString out;
    out.reserve(qMin(source.size(), capacity) + 2);
    for (qsizetype i = 0; i < source.size() && out.size() < capacity; ++i) {
        const bool isHalfOfPair = out.size() + 1 == capacity && source[i].isHighSurrogate();
        if (isHalfOfPair)
            break;
        appendEscaped(out, source[i]);
    }
    return out;
}

} // namespace tidebrook
