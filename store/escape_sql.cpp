#include "store/escape_sql.h"

#include "platform/base/text.h"

namespace tidebrook {

namespace {

qsizetype capacityOf(TextKind kind) {
    switch (kind) {
    case TextKind::Category:
        return categoryCapacity;
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

QByteArray withoutDropped(const QByteArray &utf8) {
    constexpr char firstOfMarks = '\xEF';
    if (!utf8.contains('\r') && !utf8.contains(firstOfMarks))
        return utf8;
    return QByteArray(utf8).replace("\r", "").replace("\uFEFF", "").replace("\uFFFE", "");
}

QString escapedWithinCapacity(const QString &text, TextKind kind) {
    QString escaped = QStringLiteral("");
    EscapeSql(cutText(text, capacityOf(kind)), escaped, kind);
    return escaped;
}

} // namespace

QString withoutDropped(QStringView text) {
    QString kept = text.toString();
    kept.removeIf(isDropped);
    return kept;
}

bool EscapeSql(QStringView source, QString &destination, TextKind kind) {
    if (source.isNull())
        return false;
    const QStringView scanned = cutText(source, capacityOf(kind) + 1);
    destination = withoutDropped(scanned).replace(u'\'', QLatin1String("''"));
    return true;
}

QString storableName(const QString &name) {
    const QString oneLine = withoutDropped(withoutControls(name)).trimmed();
    return cutText(oneLine, channelNameCapacity).toString().trimmed();
}

bool isStorableLink(const QString &link) {
    return link.size() <= linkCapacity && !link.contains(u'\'') && withoutControls(link) == link;
}

QString escapedCategory(const QString &category) {
    return escapedWithinCapacity(category, TextKind::Category);
}

QString escapedChannelName(const QString &name) {
    return escapedWithinCapacity(name, TextKind::ChannelName);
}

QString escapedTitle(const QString &title) { return escapedWithinCapacity(title, TextKind::Title); }

QByteArray storedFeedText(const QByteArray &source, qsizetype capacity, HalvedQuote halved) {
    const QByteArray text = withoutDropped(source);
    const qsizetype smallestForQuote = halved == HalvedQuote::Kept ? 1 : 2;
    qsizetype end = 0;
    for (qsizetype quote = 0; end < text.size(); end = quote + 1, capacity -= 2) {
        quote = text.indexOf('\'', end);
        const QByteArrayView plain = QByteArrayView(text).first(quote < 0 ? text.size() : quote);
        const QByteArrayView fitting =
            cutUtf8ToUnits(plain.sliced(end), qMax(capacity, qsizetype{0}));
        end += fitting.size();
        capacity -= unitsOfUtf8(fitting);
        if (end != quote || capacity < smallestForQuote)
            break;
    }
    return end == text.size() ? text : text.first(end);
}

} // namespace tidebrook
