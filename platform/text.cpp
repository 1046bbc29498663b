#include "platform/text.h"

namespace tidebrook {

QStringView cutText(QStringView text, qsizetype capacity) {
    if (text.size() <= capacity)
        return text;
    if (capacity > 0 && text[capacity - 1].isHighSurrogate() && text[capacity].isLowSurrogate())
        --capacity;
    return text.first(capacity);
}

QByteArrayView cutUtf8(QByteArrayView text, qsizetype capacity) {
    if (text.size() <= capacity)
        return text;
    constexpr int longestRest = 3; // bytes of a character behind its first; more is no UTF-8
    const auto isRest = [&](qsizetype at) { return (text[at] & 0xC0) == 0x80; };
    qsizetype end = capacity;
    while (end > 0 && capacity - end < longestRest && isRest(end))
        --end;
    return text.first(isRest(end) ? capacity : end);
}

QStringView TrimTrailingBlanks(QStringView text) {
    while (text.size() > 1 && (text.back() == u' ' || text.back() == u'\0'))
        text.chop(1);
    return text;
}

QString withoutControls(QString text) {
    for (QChar &c : text) {
        if (c.category() == QChar::Other_Control)
            c = u' ';
    }
    return text;
}

} // namespace tidebrook
