#include "platform/xml/xml_encoding.h"

#include <QHash>

#include <algorithm>
#include <array>
#include <cerrno>
#include <string_view>
#include <utility>

namespace tidebrook {

namespace {

struct Encoding {
    QByteArray name;
    qsizetype markSize = 0;     // bytes of the byte-order mark
    bool isOnlyAssumed = false; // by the transport; the document itself says nothing
};

std::optional<Encoding> encodingOfMark(QByteArrayView bytes) {
    using namespace std::string_view_literals;
    struct Mark {
        std::string_view bytes;
        const char *encoding;
        qsizetype size;
    };
    // The marks of UTF-32 begin like those of UTF-16, so they come first. The last two are no
    // marks, but "<?" in UTF-16.
    static constexpr std::array<Mark, 7> marks{{{"\xFF\xFE\0\0"sv, "UTF-32LE", 4},
                                                {"\0\0\xFE\xFF"sv, "UTF-32BE", 4},
                                                {"\xEF\xBB\xBF"sv, "UTF-8", 3},
                                                {"\xFF\xFE"sv, "UTF-16LE", 2},
                                                {"\xFE\xFF"sv, "UTF-16BE", 2},
                                                {"<\0?\0"sv, "UTF-16LE", 0},
                                                {"\0<\0?"sv, "UTF-16BE", 0}}};
    for (const Mark &mark : marks) {
        if (bytes.startsWith(QByteArrayView(mark.bytes)))
            return Encoding{mark.encoding, mark.size};
    }
    return std::nullopt;
}

// The encoding that the XML declaration names, empty without one.
QByteArray declaredEncoding(QByteArrayView bytes) {
    if (!bytes.startsWith("<?xml"))
        return {};
    const qsizetype end = bytes.indexOf("?>");
    const QByteArray declaration = bytes.first(end < 0 ? 0 : end).toByteArray();
    qsizetype at = declaration.indexOf("encoding");
    if (at < 0)
        return {};
    at += qsizetype(sizeof "encoding") - 1;
    while (at < declaration.size() && QByteArrayView(" \t\r\n=").contains(declaration[at]))
        ++at;
    if (at >= declaration.size() || (declaration[at] != '"' && declaration[at] != '\''))
        return {};
    const qsizetype close = declaration.indexOf(declaration[at], at + 1);
    return close < 0 ? QByteArray() : declaration.mid(at + 1, close - at - 1);
}

bool isUtf8(const QByteArray &name) {
    const QByteArray lower = name.toLower();
    return lower == "utf-8" || lower == "utf8" || lower == "us-ascii" || lower == "ascii";
}

Encoding encodingOf(QByteArrayView bytes, QByteArrayView charset) {
    if (const std::optional<Encoding> marked = encodingOfMark(bytes))
        return *marked;
    const QByteArray declared = declaredEncoding(bytes);
    if (!declared.isEmpty())
        return {declared, 0};
    return {charset.isEmpty() ? QByteArray("UTF-8") : charset.toByteArray(), 0, true};
}

// Options follow slashes ("UTF-8//IGNORE"); a document must not choose them.
bool isPlainName(const QByteArray &name) { return !name.isEmpty() && !name.contains('/'); }

// Publishers name a standard and use its extension, as browsers read it.
QByteArray extensionOf(const QByteArray &encoding) {
    static const QHash<QByteArray, QByteArray> extensions{
        {"gb2312", "GB18030"},       {"gb_2312-80", "GB18030"}, {"gbk", "GB18030"},
        {"x-gbk", "GB18030"},        {"shift_jis", "CP932"},    {"sjis", "CP932"},
        {"x-sjis", "CP932"},         {"shift-jis", "CP932"},    {"euc-kr", "CP949"},
        {"ks_c_5601-1987", "CP949"}, {"windows-949", "CP949"},  {"x-euc-jp", "EUC-JP"},
        {"big5", "BIG5-HKSCS"},      {"iso-8859-1", "CP1252"},  {"iso8859-1", "CP1252"},
        {"latin1", "CP1252"},
    };
    return extensions.value(encoding.toLower(), encoding);
}

// Windows-1252, the extension of Latin 1, has no character for five bytes, and no document with
// one of them could be read.
bool isOutsideWindows1252(const QByteArray &bytes) {
    return std::string_view(bytes).find_first_of("\x81\x8D\x8F\x90\x9D") != std::string_view::npos;
}

iconv_t converterFrom(const QByteArray &encoding, const QByteArrayList &bytes) {
    QByteArray extension = extensionOf(encoding);
    if (extension == "CP1252" && std::ranges::any_of(bytes, isOutsideWindows1252))
        extension = encoding;
    const iconv_t converter =
        isPlainName(encoding) ? iconv_open("UTF-8", extension.constData()) : nullptr;
    // iconv_open returns the pointer -1 for an unknown name.
    return reinterpret_cast<qintptr>(converter) == -1 ? nullptr : converter;
}

} // namespace

XmlUtf8Reader::XmlUtf8Reader(QByteArrayList bytes, QByteArrayView charset)
    : bytes_(std::move(bytes)) {
    const Encoding encoding = encodingOf(bytes_.value(0), charset);
    if (!isUtf8(encoding.name)) {
        converter_.reset(converterFrom(encoding.name, bytes_));
        isKnown_ = converter_ || encoding.isOnlyAssumed;
    }
    if (converter_) {
        bytes_ = {bytes_.join()}; // a character may stand in two pieces
        piece_ = QByteArray(pieceSize, Qt::Uninitialized);
    }
    if (!bytes_.isEmpty())
        left_ = QByteArrayView(bytes_.at(0)).sliced(encoding.markSize);
}

std::optional<QByteArrayView> XmlUtf8Reader::next() {
    if (!isKnown_)
        return std::nullopt;
    if (!converter_) {
        if (left_.isEmpty() && !isAtEnd()) {
            bytes_[at_].clear();
            left_ = bytes_.at(++at_);
        }
        const QByteArrayView piece = left_.first(qMin(left_.size(), pieceSize));
        left_ = left_.sliced(piece.size());
        return piece;
    }
    auto *in = const_cast<char *>(left_.data()); // iconv only reads what it points to
    auto left = static_cast<size_t>(left_.size());
    char *out = piece_.data();
    auto room = static_cast<size_t>(pieceSize);
    if (iconv(converter_.get(), &in, &left, &out, &room) == static_cast<size_t>(-1) &&
        errno != E2BIG)
        return std::nullopt;
    left_ = left_.last(static_cast<qsizetype>(left));
    return QByteArrayView(piece_.constData(), out - piece_.constData());
}

bool isEmptyText(const QByteArrayList &bytes) {
    const QByteArray first = bytes.value(0);
    const std::optional<Encoding> marked = encodingOfMark(first);
    return bytes.size() <= 1 && first.size() == (marked ? marked->markSize : 0);
}

} // namespace tidebrook
