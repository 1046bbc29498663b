#pragma once

#include "platform/device_root.h"
#include "platform/http.h"
#include "platform/registry.h"
#include "platform/sql.h"
#include "platform/xml_document.h"
#include "store/error_codes.h"

#include <QString>

#include <optional>

class QTemporaryFile;

namespace tidebrook {

/// Refreshes one channel: gets its document over the network and hands it to the parser. Made for
/// one channel and one thread, and used once.
///
/// A failure leaves its code in `error()` and, for whoever tells the user, in the registry. It
/// leaves the database untouched, except that articles stored before a faulty item stay.
class FeedFetcher {
public:
    FeedFetcher(const DeviceRoot &device, Registry &registry, const HttpLimits &limits = {});

    /// 0 while nothing has failed.
    quint32 error() const { return error_; }

    /// Gets the document and sees that it is an RSS document. Waits for the network, for 50
    /// seconds at most; the store is not touched.
    bool fetch(const QString &url, const QString &channelName);

    /// Stores what `fetch` got, once it has succeeded, inside a change of the database that the
    /// caller has begun.
    bool parse(SqlCommand &command, const QString &channelName, const QString &category);

    /// Records a failure that is none of the fetch's own. Always false.
    bool fail(quint32 code);

    /// How many articles `parse` stored.
    int storedCount() const { return storedCount_; }

private:
    bool fetchFromRequestObject(const QString &url);
    bool fetchThroughFile(const QString &url);
    bool downloadToTempFile(const QString &url, QTemporaryFile &file);
    bool isRoaming() const;
    bool endQuietlyOrFail(quint32 code);
    void recordError(quint32 code);

    const DeviceRoot device_;
    Registry &registry_;
    const HttpLimits limits_;
    quint32 error_ = 0;
    std::optional<XmlDocument> document_;
    int storedCount_ = 0;
};

} // namespace tidebrook
