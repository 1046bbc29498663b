#pragma once

#include "platform/base/device_root.h"
#include "platform/http/http.h"
#include "platform/sql/registry.h"
#include "platform/xml/xml_document.h"
#include "share/add_mode.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace tidebrook {

/// A channel that a list offers. Both texts are ended by a zero; an entry whose name is empty is a
/// hole, which is not offered.
struct OpmlEntry {
    char16_t name[50];
    char16_t url[512];

    QString nameText() const { return QString::fromUtf16(name); }
    QString urlText() const { return QString::fromUtf16(url); }
};
static_assert(sizeof(OpmlEntry) == 1124);

/// Reads an OPML list into at most 223 channels, whatever folders they lie in. Every outline with
/// an address takes a slot, also one of a type that is no channel, whose slot stays a hole. A list
/// with a fault is refused whole.
///
/// Used by one thread at a time. Reading waits for the network where the list is downloaded, and
/// ends at once when `limits.stop` is raised, which is no failure to tell of.
class OpmlReader {
public:
    /// The registry outlives the reader, and what `limits.stop` points to every `open`.
    OpmlReader(const DeviceRoot &device, Registry &registry, const HttpLimits &limits = {});

    /// Reads the list from an address (ListFromUrl) or a file (ListFromFile). False when it is
    /// refused: then there are no entries, and the reason is in `error()` and in the registry's
    /// "ERRORNO".
    bool open(AddMode mode, const QString &source);

    /// Why the last `open` failed; 0 when it did not, or when no code tells it.
    quint32 error() const { return error_; }

    /// How many times to read: one more than there are slots taken. The last one is always a hole.
    int entryCount() const { return count_ + 1; }

    /// Copies an entry: the next one for index -1, else the one of that index. False when nothing
    /// is open, or behind the last one.
    bool readEntry(int index, OpmlEntry *out);

    /// Forgets the list. It can be opened anew.
    void close();

private:
    std::optional<QByteArray> download(const QString &url);
    std::optional<QByteArray> readFile(const QString &path);
    bool parse(const QByteArray &document);
    bool walk(const XmlNode &parent);
    bool takeLeaf(const XmlNode &leaf);
    void putEntry(const QString &name, const QString &url);
    bool fail(quint32 code);

    const DeviceRoot device_;
    Registry &registry_;
    const HttpLimits limits_;
    quint32 error_ = 0;
    qint32 count_ = 0;    // slots taken
    qint32 capacity_ = 0; // slots that may be taken
    qint32 cursor_ = 0;   // index of the next entry to hand out
    QByteArray entries_;  // one block of OpmlEntry; empty while closed
};

} // namespace tidebrook
