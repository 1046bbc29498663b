#include "platform/http.h"

#include <curl/curl.h>

#include <functional>
#include <memory>

namespace tidebrook {

namespace {

constexpr char webSchemes[] = "http,https";
constexpr long redirectLimit = 10;
constexpr long receiveBuffer = 128 * 1024; // bytes; fewer and larger pieces cost less
constexpr qsizetype directHostLimit = 99;  // characters; the platform's buffers hold no more
constexpr qsizetype directPathLimit = 509;

struct EasyCleanup {
    void operator()(CURL *easy) const { curl_easy_cleanup(easy); }
};
struct ListFree {
    void operator()(curl_slist *list) const { curl_slist_free_all(list); }
};
struct UrlCleanup {
    void operator()(CURLU *url) const { curl_url_cleanup(url); }
};
using Easy = std::unique_ptr<CURL, EasyCleanup>;
using List = std::unique_ptr<curl_slist, ListFree>;
using ParsedUrl = std::unique_ptr<CURLU, UrlCleanup>;

// The library wants to be set up once, before a second thread uses it.
bool isCurlReady() {
    static const bool isReady = curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK;
    return isReady;
}

ParsedUrl parseUrl(const QString &text) {
    ParsedUrl url(curl_url());
    const QByteArray utf8 = text.trimmed().toUtf8();
    const CURLUcode code =
        curl_url_set(url.get(), CURLUPART_URL, utf8.constData(), CURLU_URLENCODE);
    return code == CURLUE_OK ? std::move(url) : nullptr;
}

QByteArray partOf(const ParsedUrl &url, CURLUPart part) {
    char *value = nullptr;
    if (curl_url_get(url.get(), part, &value, 0) != CURLUE_OK)
        return {};
    QByteArray copy(value);
    curl_free(value);
    return copy;
}

List stringList(std::initializer_list<const char *> headers) {
    List list;
    for (const char *header : headers)
        list.reset(curl_slist_append(list.release(), header));
    return list;
}

/// One transfer: hands the body on piece by piece and keeps its size within the limit.
class Transfer {
public:
    using Sink = std::function<bool(const char *, qint64)>;

    Transfer(Sink sink, qint64 bodyLimit)
        : easy_(isCurlReady() ? curl_easy_init() : nullptr), sink_(std::move(sink)),
          bodyLeft_(bodyLimit) {
        if (!easy_)
            return;
        set(CURLOPT_NOSIGNAL, 1L);
        set(CURLOPT_QUICK_EXIT, 1L); // a time limit does not wait for a slow name server
        set(CURLOPT_FOLLOWLOCATION, 1L);
        set(CURLOPT_MAXREDIRS, redirectLimit);
        set(CURLOPT_PROTOCOLS_STR, webSchemes);
        set(CURLOPT_REDIR_PROTOCOLS_STR, webSchemes);
        set(CURLOPT_BUFFERSIZE, receiveBuffer);
        set(CURLOPT_WRITEDATA, this);
        set(CURLOPT_WRITEFUNCTION, &Transfer::receive);
    }

    template <typename Value> void set(CURLoption option, Value value) {
        curl_easy_setopt(easy_.get(), option, value);
    }

    void setTimeLimits(const HttpLimits &limits, std::chrono::milliseconds whole) {
        set(CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(limits.connect.count()));
        set(CURLOPT_TIMEOUT_MS, static_cast<long>(whole.count()));
    }

    CURLcode perform() { return easy_ ? curl_easy_perform(easy_.get()) : CURLE_FAILED_INIT; }

    QByteArray contentType() const {
        const char *type = nullptr;
        curl_easy_getinfo(easy_.get(), CURLINFO_CONTENT_TYPE, &type);
        return QByteArray(type);
    }

    /// The length of the body as the server tells it; 0 when it does not, or less than 0.
    qint64 announcedSize() const {
        curl_off_t size = 0;
        curl_easy_getinfo(easy_.get(), CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &size);
        return qint64{size};
    }

    bool wasConnected() const {
        curl_off_t time = 0;
        curl_easy_getinfo(easy_.get(), CURLINFO_CONNECT_TIME_T, &time);
        return time > 0;
    }

    bool wasAnswered() const {
        long status = 0;
        curl_easy_getinfo(easy_.get(), CURLINFO_RESPONSE_CODE, &status);
        return status != 0;
    }

private:
    static size_t receive(char *data, size_t, size_t size, void *self) {
        auto *transfer = static_cast<Transfer *>(self);
        transfer->bodyLeft_ -= static_cast<qint64>(size);
        const bool isTaken =
            transfer->bodyLeft_ >= 0 && transfer->sink_(data, static_cast<qint64>(size));
        return isTaken ? size : 0;
    }

    Easy easy_;
    Sink sink_;
    qint64 bodyLeft_;
};

HttpProgress progressOf(CURLcode code, const Transfer &transfer) {
    switch (code) {
    case CURLE_OK:
        return HttpProgress::Complete;
    case CURLE_URL_MALFORMAT:
        return HttpProgress::NotOpened;
    case CURLE_OPERATION_TIMEDOUT:
        return transfer.wasConnected() ? HttpProgress::Incomplete : HttpProgress::NotSent;
    // These may come behind a redirect, which is an answer, but not the one that was asked for.
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_RESOLVE_PROXY:
    case CURLE_COULDNT_CONNECT:
    case CURLE_TOO_MANY_REDIRECTS:
    case CURLE_UNSUPPORTED_PROTOCOL:
        return HttpProgress::NotSent;
    default:
        return transfer.wasAnswered() ? HttpProgress::Incomplete : HttpProgress::NotSent;
    }
}

QByteArray charsetOf(const QByteArray &contentType) {
    const QList<QByteArray> parts = contentType.split(';');
    for (const QByteArray &part : parts) {
        const QByteArray parameter = part.trimmed();
        if (parameter.first(qMin(parameter.size(), qsizetype(8))).toLower() == "charset=")
            return parameter.sliced(8).replace('"', "").replace('\'', "").trimmed();
    }
    return {};
}

// The path and query, decoded as this transport has always sent them.
QByteArray directTarget(const ParsedUrl &url) {
    QByteArray target = partOf(url, CURLUPART_PATH);
    const QByteArray query = partOf(url, CURLUPART_QUERY);
    if (!query.isEmpty())
        target += '?' + query;
    return QByteArray::fromPercentEncoding(target);
}

// Only what no request line can carry is encoded again.
QByteArray requestLineTarget(const QByteArray &decoded) {
    return decoded.toPercentEncoding("/?&=:@+$,;!*'()~[]-._");
}

} // namespace

HttpAnswer httpGet(const QString &url, const HttpLimits &limits) {
    HttpAnswer answer;
    const ParsedUrl parsed = parseUrl(url);
    const QByteArray scheme = parsed ? partOf(parsed, CURLUPART_SCHEME).toLower() : QByteArray();
    if (scheme != "http" && scheme != "https") {
        answer.detail = QStringLiteral("not an address of the web");
        return answer;
    }
    Transfer transfer(
        [&](const char *data, qint64 size) {
            if (answer.body.isEmpty())
                answer.body.reserve(qBound(0LL, transfer.announcedSize(), limits.bodyBytes));
            answer.body.append(data, size);
            return true;
        },
        limits.bodyBytes);
    const List headers = stringList({"Content-Type: text/xml"});
    const QByteArray address = partOf(parsed, CURLUPART_URL);
    transfer.set(CURLOPT_URL, address.constData());
    transfer.set(CURLOPT_HTTPHEADER, headers.get());
    transfer.set(CURLOPT_USERAGENT, "Tidebrook/" TIDEBROOK_VERSION);
    transfer.set(CURLOPT_ACCEPT_ENCODING, "");
    transfer.setTimeLimits(limits, limits.requestObject);

    const CURLcode code = transfer.perform();
    answer.progress = progressOf(code, transfer);
    if (answer.progress != HttpProgress::Complete)
        answer.detail = QString::fromUtf8(curl_easy_strerror(code));
    else
        answer.charset = charsetOf(transfer.contentType());
    return answer;
}

bool httpDownloadDirect(const QString &url, QIODevice &sink, const HttpLimits &limits) {
    const ParsedUrl parsed = parseUrl(url);
    if (!parsed)
        return false;
    const QByteArray host = partOf(parsed, CURLUPART_HOST);
    const QByteArray target = directTarget(parsed);
    if (host.isEmpty() || host.size() > directHostLimit ||
        QString::fromUtf8(target).size() > directPathLimit)
        return false;

    Transfer transfer(
        [&sink](const char *data, qint64 size) { return sink.write(data, size) == size; },
        limits.bodyBytes);
    const List headers =
        stringList({"Content-Type: text/xml", "Accept: text/xml", "Pragma: no-cache"});
    const QByteArray address = "http://" + host + requestLineTarget(target);
    const QByteArray port = qgetenv("TIDEBROOK_HTTP_PORT");
    const QByteArray portRule = ":80::" + port;
    const List otherPort = port.isEmpty() ? List() : stringList({portRule.constData()});
    transfer.set(CURLOPT_URL, address.constData());
    transfer.set(CURLOPT_CONNECT_TO, otherPort.get());
    transfer.set(CURLOPT_NOPROXY, "*");
    transfer.set(CURLOPT_HTTPHEADER, headers.get());
    transfer.set(CURLOPT_USERAGENT, "Feedlark");
    transfer.setTimeLimits(limits, limits.direct);
    return transfer.perform() == CURLE_OK;
}

} // namespace tidebrook
