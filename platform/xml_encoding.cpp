#include "platform/xml_encoding.h"

#include <iconv.h>

#include <array>
#include <cerrno>
#include <string_view>

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
        if (bytes.startsWith(
                QByteArrayView(mark.bytes.data(), static_cast<qsizetype>(mark.bytes.size()))))
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

class Converter {
public:
    explicit Converter(const QByteArray &from) : handle_(iconv_open("UTF-8", from.constData())) {}
    ~Converter() {
        if (isKnown())
            iconv_close(handle_);
    }
    Converter(const Converter &) = delete;
    Converter &operator=(const Converter &) = delete;

    // iconv_open's answer for an unknown name is the pointer -1.
    bool isKnown() const { return reinterpret_cast<qintptr>(handle_) != -1; }

    bool convert(QByteArrayView bytes, QByteArray &utf8) {
        std::array<char, 16384> block;
        auto *in = const_cast<char *>(bytes.data()); // iconv only reads what it points to
        auto left = static_cast<size_t>(bytes.size());
        utf8.reserve(bytes.size());
        while (left > 0) {
            char *out = block.data();
            size_t room = block.size();
            const size_t answer = iconv(handle_, &in, &left, &out, &room);
            utf8.append(block.data(), out - block.data());
            if (answer == static_cast<size_t>(-1) && errno != E2BIG)
                return false;
        }
        return true;
    }

private:
    iconv_t handle_;
};

Encoding encodingOf(QByteArrayView bytes, QByteArrayView charset) {
    if (const std::optional<Encoding> marked = encodingOfMark(bytes))
        return *marked;
    const QByteArray declared = declaredEncoding(bytes);
    if (!declared.isEmpty())
        return {declared, 0};
    return {charset.isEmpty() ? QByteArray("UTF-8") : charset.toByteArray(), 0, true};
}

// iconv takes options behind slashes ("UTF-8//IGNORE"), which no document may choose.
bool isPlainName(const QByteArray &name) { return !name.isEmpty() && !name.contains('/'); }

} // namespace

std::optional<QByteArrayView> xmlAsUtf8(QByteArrayView bytes, QByteArrayView charset,
                                        QByteArray &storage) {
    const Encoding encoding = encodingOf(bytes, charset);
    bytes = bytes.sliced(encoding.markSize);
    if (isUtf8(encoding.name))
        return bytes;
    Converter converter(isPlainName(encoding.name) ? encoding.name : QByteArray("none"));
    if (!converter.isKnown())
        return encoding.isOnlyAssumed ? std::optional(bytes) : std::nullopt;
    if (!converter.convert(bytes, storage))
        return std::nullopt;
    return QByteArrayView(storage);
}

} // namespace tidebrook
