#pragma once

#include "platform/base/device_root.h"
#include "platform/http/http.h"
#include "platform/sql/registry.h"
#include "platform/sql/sql.h"
#include "platform/xml/xml_document.h"
#include "store/error_codes.h"

#include <QString>

#include <optional>

namespace tidebrook {

/// How a refresh goes about it, for whom it is.
struct FetchOptions {
    bool keepsPauses = true;   ///< the fixed ones between its steps, as for the screens
    bool recordsErrors = true; ///< in the registry, for a program that waits for the result
};

/// Refreshes one channel: gets its document over the network and hands it to the parser. Made for
/// one channel and one thread, and used once.
///
/// A failure leaves its code in `error()` and, for the program that tells the user, in the
/// registry. It leaves the database untouched, except that articles stored before a faulty item
/// stay.
class FeedFetcher {
public:
    FeedFetcher(const DeviceRoot &device, Registry &registry, const HttpLimits &limits = {},
                const FetchOptions &options = {});

    /// 0 while nothing has failed.
    quint32 error() const { return error_; }

    /// The code that the user is told, which for an empty answer is another.
    quint32 toldError() const { return toldError_; }

    /// Gets the document and sees that it is an RSS document. Waits for the network, for 50
    /// seconds at most; the store is not touched.
    bool fetch(const QString &url, const QString &channelName);

    /// What has become of an answer.
    enum class Taken {
        Document,  ///< it is an RSS document, or nothing to tell of
        Unchanged, ///< the document that was stored last is still the newest
        Unclear,   ///< a text that is no document: `download` is left to try
        Failed,
    };

    /// The first half of `fetch`, for a caller that has made the request itself.
    Taken takeAnswer(const HttpAnswer &answer);

    /// The second half: gets the document once more by the direct transport.
    bool download(const QString &url);

    /// Stores what `fetch` got, once it has succeeded, inside a change of the database that the
    /// caller has begun. `category` has been through EscapeSql. Where nothing has changed it only
    /// prunes.
    bool parse(SqlCommand &command, const QString &channelName, const QString &category);

    /// Records a failure that is none of the fetch's own. Always false.
    bool fail(quint32 code);

    /// How many articles `parse` stored.
    int storedCount() const { return storedCount_; }

private:
    bool isRoaming() const;
    Taken endQuietlyOrFail(quint32 code);
    bool checkRoot();

    const DeviceRoot device_;
    Registry &registry_;
    const HttpLimits limits_;
    const FetchOptions options_;
    quint32 error_ = 0;
    quint32 toldError_ = 0;
    std::optional<XmlDocument> document_;
    bool isUnchanged_ = false;
    int storedCount_ = 0;
};

} // namespace tidebrook
