#pragma once

#include "platform/sql/registry.h"
#include "platform/xml/xml_document.h"

#include <QByteArray>
#include <QByteArrayList>
#include <QString>

#include <optional>

namespace tidebrook {

/// Whether feeds of other formats than RSS are read: the DWORD "OtherFormats". It is read anew each
/// time.
bool readsOtherFormats(Registry &registry);

/// A document as `XmlDocument::parse` has it. Where other formats are read, a feed of one of them
/// (Atom, RSS 1.0 and 0.90, JSON Feed) becomes the RSS 2.0 document of the same content, within
/// the same limits; its relative links are those of a document at `address`. JSON that is no feed
/// becomes a document that is none either. Nothing for what is broken, or exceeds a limit.
///
/// The setting is not read for RSS, and nothing is done for it besides.
std::optional<XmlDocument> parseFeed(Registry &registry, QByteArrayList body,
                                     QByteArrayView charset, const QString &address);

} // namespace tidebrook
