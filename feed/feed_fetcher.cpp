#include "feed/feed_fetcher.h"

#include "feed/formats/parse_feed.h"
#include "feed/rss_parser.h"
#include "platform/base/replace_file.h"
#include "platform/sync/pause.h"
#include "platform/xml/xml_encoding.h"
#include "store/settings_store.h"

#include <utility>

namespace tidebrook {

namespace {

constexpr QStringView tempFile = u"\\Temp\\TmpXml.xml";
constexpr int loadPause = 1000; // ms

} // namespace

FeedFetcher::FeedFetcher(const DeviceRoot &device, Registry &registry, const HttpLimits &limits,
                         const FetchOptions &options)
    : device_(device), registry_(registry), limits_(limits), options_(options) {}

bool FeedFetcher::fail(quint32 code) {
    error_ = code;
    toldError_ = code;
    if (options_.recordsErrors)
        SetLastErrorCode(registry_, code);
    return false;
}

// While roaming, a request that fails is not reported to the user.
FeedFetcher::Taken FeedFetcher::endQuietlyOrFail(quint32 code) {
    if (isRoaming())
        return Taken::Document;
    fail(code);
    return Taken::Failed;
}

bool FeedFetcher::isRoaming() const {
    // Never true, since the mask lacks bit 0: a request while roaming must fail like any other.
    const quint32 status = SettingsStore(registry_).dword(phoneStateKey, u"Status") & 0x2003C000;
    return status == 1;
}

bool FeedFetcher::fetch(const QString &url, const QString &channelName) {
    if (url.isEmpty() || channelName.isEmpty())
        return fail(NothingKnown);
    HttpAnswer answer = httpGet({url}, limits_);
    const Taken taken = takeAnswer(answer);
    return taken == Taken::Unclear ? download(url) : taken != Taken::Failed;
}

FeedFetcher::Taken FeedFetcher::takeAnswer(HttpAnswer &answer) {
    detail_ = answer.detail;
    switch (answer.progress) {
    case HttpProgress::NotStarted:
        fail(HttpMissing);
        return Taken::Failed;
    case HttpProgress::NotOpened:
    case HttpProgress::NotSent:
        return endQuietlyOrFail(FeedNotSent);
    case HttpProgress::Incomplete:
        return endQuietlyOrFail(FeedNotComplete);
    case HttpProgress::Complete:
        break;
    }
    isUnchanged_ = answer.isUnchanged;
    if (isUnchanged_)
        return Taken::Unchanged;
    const bool isEmpty = isEmptyText(answer.body);
    address_ = answer.address;
    document_ = parseFeed(registry_, std::exchange(answer.body, {}), answer.charset, address_);
    if (document_)
        return checkRoot() ? Taken::Document : Taken::Failed;
    if (!isEmpty)
        return Taken::Unclear;
    // The user sees that the feed says nothing; the run itself ends as a failed download.
    fail(FeedNotRss);
    error_ = FeedNotDownloaded;
    return Taken::Failed;
}

bool FeedFetcher::checkRoot() { return document_->root().name() == "rss" || fail(FeedNotRss); }

bool FeedFetcher::download(const QString &url) {
    // The file has one fixed place, and several channels may be refreshed at once: each downloads
    // into its own file, moves it to the fixed place, and reads its own.
    FileReplacement temp(device_.filePath(tempFile));
    QFile &file = temp.file();
    detail_ = QStringLiteral("%1 cannot be written").arg(device_.filePath(tempFile));
    if (!file.isOpen() ||
        httpDownloadDirect(url, file, limits_, &detail_) != HttpProgress::Complete ||
        !temp.commit())
        return fail(FeedNotDownloaded);
    detail_.clear();
    if (options_.keepsPauses)
        Pause(loadPause, limits_.stop);
    file.seek(0);
    document_ = parseFeed(registry_, {file.readAll()}, {}, address_.isEmpty() ? url : address_);
    return document_.has_value() ? checkRoot() : fail(FeedNotXml);
}

bool FeedFetcher::parse(SqlCommand &command, const QString &channelName, const QString &category) {
    if (isUnchanged_)
        return ArticleIngestion(command, channelName, category).pruneChannel() ||
               fail(DatabaseFailed);
    if (!document_) // the request ended quietly
        return true;
    RssParser parser(command, channelName, category);
    const bool isParsed = parser.parse(document_->root());
    storedCount_ = parser.storedCount();
    if (isParsed)
        shared_ = parser.sharedArticles();
    return isParsed || fail(DatabaseFailed);
}

} // namespace tidebrook
