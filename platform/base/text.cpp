#include "platform/base/text.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <numeric>
#include <utility>

namespace tidebrook {

namespace {

bool isHidden(QChar c) {
    // Not QChar::Other_Format, some of which are visible in Arabic and Syriac.
    static constexpr std::pair<char16_t, char16_t> ranges[] = {
        {0x00AD, 0x00AD}, {0x034F, 0x034F}, {0x061C, 0x061C}, {0x180E, 0x180E},
        {0x200B, 0x200F}, {0x2028, 0x202E}, {0x2060, 0x206F}, {0xFEFF, 0xFEFF}};
    return c.category() == QChar::Other_Control ||
           std::any_of(std::begin(ranges), std::end(ranges), [c](const auto &range) {
               return c.unicode() >= range.first && c.unicode() <= range.second;
           });
}

bool isJoinerInEmoji(QStringView text, qsizetype at) {
    constexpr char16_t joiner = 0x200D;
    constexpr char16_t emojiStyle = 0xFE0F;
    if (text[at] != joiner || at == 0 || at + 1 == text.size())
        return false;
    const QChar before = text[at - 1];
    const QChar after = text[at + 1];
    return (before.isLowSurrogate() || before == emojiStyle ||
            before.category() == QChar::Symbol_Other) &&
           (after.isHighSurrogate() || after.category() == QChar::Symbol_Other);
}

// Of a byte in UTF-8: what its character has in UTF-16 at the first byte, nothing at the others.
constexpr quint8 unitsOf(char byte) {
    const auto value = static_cast<unsigned char>(byte);
    return static_cast<quint8>(((value & 0xC0U) != 0x80) + (value >= 0xF0));
}

// Of so many bytes, which compilers count side by side.
constexpr qsizetype blockSize = 64;
quint8 unitsOfBlock(const char *bytes) {
    quint8 units = 0;
    for (qsizetype i = 0; i < blockSize; ++i)
        units += unitsOf(bytes[i]);
    return units;
}

// The pairs of U+E0000 to U+E03FF (tags, variation selectors) are all invisible.
bool isHiddenPair(QStringView text, qsizetype at) {
    constexpr char16_t firstOfPair = 0xDB40;
    return text[at] == firstOfPair || (at > 0 && text[at - 1] == firstOfPair);
}

} // namespace

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

qsizetype unitsOfUtf8(QByteArrayView text) {
    qsizetype units = 0;
    for (; text.size() >= blockSize; text = text.sliced(blockSize))
        units += unitsOfBlock(text.data());
    return std::transform_reduce(text.begin(), text.end(), units, std::plus(), unitsOf);
}

QByteArrayView cutUtf8ToUnits(QByteArrayView text, qsizetype capacity) {
    if (text.size() <= capacity)
        return text;
    qsizetype end = 0;
    // A block that ends within a character may have one unit more than bytes.
    for (; capacity > blockSize && text.size() - end >= blockSize; end += blockSize)
        capacity -= unitsOfBlock(text.data() + end);
    while (end < text.size() && unitsOf(text[end]) <= capacity)
        capacity -= unitsOf(text[end++]);
    return text.first(end);
}

QStringView TrimTrailingBlanks(QStringView text) {
    while (text.size() > 1 && (text.back() == u' ' || text.back() == u'\0'))
        text.chop(1);
    return text;
}

QByteArrayView TrimTrailingBlanks(QByteArrayView utf8) {
    while (utf8.size() > 1 && (utf8.back() == ' ' || utf8.back() == '\0'))
        utf8.chop(1);
    return utf8;
}

QString withoutControls(QString text) {
    for (QChar &c : text) {
        if (c.category() == QChar::Other_Control)
            c = u' ';
    }
    return text;
}

QString withoutHalves(QString text) {
    for (qsizetype i = text.size() - 1; i >= 0; --i) {
        if (text[i].isLowSurrogate() && i > 0 && text[i - 1].isHighSurrogate())
            --i;
        else if (text[i].isSurrogate())
            text.remove(i, 1);
    }
    return text;
}

QString withoutSoftBreaks(QString text) {
    return text.removeIf([](QChar c) {
        return c == QChar::SoftHyphen || c == QChar(0x200B) || c == QChar(0x2060) ||
               c == QChar::ByteOrderMark;
    });
}

QString withoutHidden(QString text, QStringView kept) {
    const QString whole = text;
    for (qsizetype i = 0; i < whole.size(); ++i) {
        if ((isHidden(whole[i]) || isHiddenPair(whole, i)) && !isJoinerInEmoji(whole, i) &&
            !kept.contains(whole[i]))
            text[i] = u' ';
    }
    return text;
}

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

} // namespace tidebrook
