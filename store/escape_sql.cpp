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

// Whether a text has characters that the rule changes. Without a branch for each character, which
// is fast; there is hardly ever one to find.
bool isTouched(QStringView text) {
    quint16 found = 0;
    for (const QChar c : text)
        found |= static_cast<quint16>(c == u'\'' || isDropped(c));
    return found != 0;
}

// Appends the text with its quotes doubled until it ends or `out` has `capacity` characters or
// more. For speed, what is between quotes is copied whole.
void appendQuoted(QStringView text, QString &out, qsizetype capacity) {
    while (!text.isEmpty() && out.size() < capacity) {
        const qsizetype quote = text.indexOf(u'\'');
        const QStringView plain = quote < 0 ? text : text.first(quote);
        const QStringView fitting = cutText(plain, capacity - out.size());
        out += fitting;
        if (fitting.size() < plain.size() || quote < 0 || out.size() >= capacity)
            return;
        out += u"''";
        text = text.sliced(quote + 1);
    }
}

QString escaped(QStringView text, qsizetype capacity) {
    QString out;
    out.reserve(qMin(text.size(), capacity) + 2);
    appendQuoted(withoutDropped(text), out, capacity);
    return out;
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
    destination = escaped(scanned, 2 * scanned.size());
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

QString escapeFeedText(const QString &source, qsizetype capacity) {
    return source.size() <= capacity && !isTouched(source) ? source : escaped(source, capacity);
}

} // namespace tidebrook
