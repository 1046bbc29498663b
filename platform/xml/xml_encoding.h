#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QByteArrayView>

#include <iconv.h>

#include <memory>
#include <optional>

namespace tidebrook {

/// Reads the bytes of a document as UTF-8, without a byte-order mark, piece by piece. The encoding
/// is that of the byte-order mark, or else of the XML declaration, or else `charset` (that of the
/// document's Content-Type, unless it is unknown), or else UTF-8.
class XmlUtf8Reader {
public:
    /// Bytes of a piece, at most.
    static constexpr qsizetype pieceSize = 2 * 1024 * 1024;

    /// The document in pieces, the first of which holds the XML declaration. Each is let go of when
    /// the one behind it is read.
    XmlUtf8Reader(QByteArrayList bytes, QByteArrayView charset);

    /// The next piece, valid until the next call; empty for a document without bytes. Nothing when
    /// the declared encoding is unknown, or when the bytes are not valid in theirs; UTF-8 is not
    /// checked. A piece may end in the middle of a character.
    std::optional<QByteArrayView> next();
    /// Whether the last piece has been read.
    bool isAtEnd() const { return left_.isEmpty() && at_ + 1 >= bytes_.size(); }
    /// The document, of which nothing has been let go of while its first piece is read.
    const QByteArrayList &bytes() const { return bytes_; }

private:
    struct Close {
        void operator()(iconv_t converter) const { iconv_close(converter); }
    };

    QByteArrayList bytes_;
    qsizetype at_ = 0;    // of bytes_, the piece being read
    QByteArrayView left_; // of that piece
    bool isKnown_ = true;
    std::unique_ptr<void, Close> converter_; // null for UTF-8
    QByteArray piece_;
};

/// Whether the bytes are no text: none at all, or a byte-order mark alone.
bool isEmptyText(const QByteArrayList &bytes);

} // namespace tidebrook
