#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <optional>

namespace tidebrook {

/// The bytes of a document as UTF-8, without a byte-order mark. The encoding is told by, in this
/// order, the byte-order mark, the XML declaration, `charset` (the charset of the document's
/// Content-Type, or empty) and, for want of these, UTF-8. A charset that is not known counts as
/// none; nothing comes back for a declared encoding that is not known, or for bytes that are not
/// text in theirs.
///
/// `bytes` that are UTF-8 already come back as a view of themselves, unchecked; anything else is
/// put into `storage`.
std::optional<QByteArrayView> xmlAsUtf8(QByteArrayView bytes, QByteArrayView charset,
                                        QByteArray &storage);

} // namespace tidebrook
