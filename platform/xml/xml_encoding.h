#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <iconv.h>

#include <memory>
#include <optional>

namespace tidebrook {

/// Reads the bytes of a document as UTF-8, without a byte-order mark, piece by piece. The encoding
/// is told by, in this order, the byte-order mark, the XML declaration, `charset` (the charset of
/// the document's Content-Type, or empty) and, for want of these, UTF-8. A charset that is not
/// known counts as none. The bytes must outlive it.
class XmlUtf8Reader {
public:
    /// Bytes of a piece, at most.
    static constexpr qsizetype pieceSize = 256 * 1024;

    XmlUtf8Reader(QByteArrayView bytes, QByteArrayView charset);

    /// The next piece, good until the next call; empty at the end. Nothing for a declared encoding
    /// that is not known, or for bytes that are not text in theirs; bytes that are UTF-8 already
    /// come back unchecked. A piece may end in the middle of a character.
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

/// Whether the bytes are a text without a character: none, or a byte-order mark.
bool isEmptyText(QByteArrayView bytes);

} // namespace tidebrook
