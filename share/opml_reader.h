#pragma once

#include "platform/base/device_root.h"
#include "platform/http/http.h"
#include "platform/sql/registry.h"
#include "platform/xml/xml_document.h"
#include "share/add_mode.h"
#include "store/records.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>

namespace tidebrook {

/// Reads an OPML list of at most 223 channels, whatever folders they lie in. A list with a fault is
/// refused whole. An outline of a type that is no channel counts too, but is not offered.
///
/// Used by one thread at a time. Reading waits for the network where the list is downloaded, and
/// ends at once when `limits.stop` is raised, which is no failure to report.
class OpmlReader {
public:
    /// The registry outlives the reader, and what `limits.stop` points to every `open`.
    OpmlReader(const DeviceRoot &device, Registry &registry, const HttpLimits &limits = {});

    /// Reads the list from an address (ListFromUrl) or a file (ListFromFile). False when it is
    /// refused: then it offers no channels, and `error()` and the registry's "ERRORNO" have the
    /// code, if there is one.
    bool open(AddMode mode, const QString &source);
    /// The same for a document that is in memory. One of more than `limits.bodyBytes` is refused.
    bool openDocument(const QByteArray &document);

    /// Why the last `open` failed; 0 when it did not, or when no code says it.
    quint32 error() const { return error_; }

    /// What the list offers, without a category and in the list's order: names of 49 UTF-16 units
    /// at most, and addresses of 511. Each is handed out once.
    QList<ChannelRecord> takeChannels();

private:
    /// A slot of the list. Both texts are ended by a zero; without a name it is a hole.
    struct OpmlEntry {
        char16_t name[50];
        char16_t url[512];
    };

    std::optional<QByteArray> download(const QString &url);
    std::optional<QByteArray> readFile(const QString &path);
    bool parse(const QByteArray &document);
    bool walk(const XmlNode &parent);
    bool takeLeaf(const XmlNode &leaf);
    int entryCount() const { return count_ + 1; } // the last one is always a hole
    bool readEntry(OpmlEntry &out);
    void close();
    bool fail(quint32 code);

    const DeviceRoot device_;
    Registry &registry_;
    const HttpLimits limits_;
    quint32 error_ = 0;
    QList<OpmlEntry> entries_; // empty while closed
    int count_ = 0;            // slots taken
    int cursor_ = 0;           // index of the next entry to hand out
};

} // namespace tidebrook
