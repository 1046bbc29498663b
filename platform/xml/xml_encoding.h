#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <iconv.h>

#include <memory>
#include <optional>

namespace tidebrook {

/// Reads the bytes of a document as UTF-8, without a byte-order mark, piece by piece. The encoding
/// is that of the byte-order mark, or else of the XML declaration, or else `charset` (that of the
/// document's Content-Type, unless it is unknown), or else UTF-8. The bytes must outlive it.
class XmlUtf8Reader {
public:
    /// Bytes of a piece, at most.
    static constexpr qsizetype pieceSize = 256 * 1024;

    XmlUtf8Reader(QByteArrayView bytes, QByteArrayView charset);

    /// The next piece, valid until the next call; empty at the end. Nothing when the declared
    /// encoding is unknown, or when the bytes are not valid in theirs; UTF-8 is not checked. A
    /// piece may end in the middle of a character.
    std::optional<QByteArrayView> next();

private:
    struct Close {
        void operator()(iconv_t converter) const { iconv_close(converter); }
    };

    QByteArrayView left_;
    bool isKnown_ = true;
    std::unique_ptr<void, Close> converter_; // null for UTF-8
    QByteArray piece_;
};

/// Whether the bytes are no text: none at all, or a byte-order mark alone.
bool isEmptyText(QByteArrayView bytes);

} // namespace tidebrook
