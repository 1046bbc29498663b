#pragma once

#include "platform/base/device_root.h"
#include "platform/http/http.h"
#include "platform/sql/registry.h"
#include "platform/sql/sql.h"
#include "platform/xml/xml_document.h"
#include "store/error_codes.h"
#include "store/records.h"

#include <QString>

#include <optional>

namespace tidebrook {

struct FetchOptions {
    bool keepsPauses = true;   ///< the fixed ones between its steps, as for the screens
    bool recordsErrors = true; ///< in the registry, for a program that waits for the result
};

/// Refreshes one channel: gets its document over the network and has it parsed. For one thread, and
/// used once.
///
/// A failure leaves its code in `error()` and, if so wanted, in the registry's "ERRORNO". It leaves
/// the database unchanged, except that articles stored before a faulty item stay.
class FeedFetcher {
public:
    FeedFetcher(const DeviceRoot &device, Registry &registry, const HttpLimits &limits = {},
                const FetchOptions &options = {});

    /// 0 while nothing has failed.
    quint32 error() const { return error_; }

    /// The code that the user sees, which for an empty answer is another.
    quint32 toldError() const { return toldError_; }

    /// For the log: why a request was not complete; empty when each was.
    const QString &detail() const { return detail_; }

    /// Gets the document and checks that it is RSS, or a feed that is read as RSS (`parseFeed`).
    /// Waits for the network, for 50 seconds at most; does not use the store.
    bool fetch(const QString &url, const QString &channelName);

    /// What an answer is.
    enum class Taken {
        Document,  ///< an RSS document, or a failure that is not reported
        Unchanged, ///< the document that was stored last is still the newest
        Unclear,   ///< a text that is no document: `download` is to be tried
        Failed,
    };

    /// The first half of `fetch`, for a caller that has made the request itself.
    Taken takeAnswer(HttpAnswer &answer);

    /// The second half: gets the document once more by the direct transport.
    bool download(const QString &url);

    /// Stores what a `fetch` that succeeded got, within a change of the database that the caller
    /// has begun. `category` has been through EscapeSql. An unchanged channel is only pruned.
    bool parse(SqlCommand &command, const QString &channelName, const QString &category);

    /// Records a failure. Always false.
    bool fail(quint32 code);

    /// How many articles `parse` stored.
    int storedCount() const { return storedCount_; }

    /// What other channels have of the document; nothing unless `parse` has read one to its end.
    const std::optional<SharedArticles> &sharedArticles() const { return shared_; }

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
    QString detail_;
    QString address_; // of the answer
    std::optional<XmlDocument> document_;
    bool isUnchanged_ = false;
    int storedCount_ = 0;
    std::optional<SharedArticles> shared_;
};

} // namespace tidebrook
