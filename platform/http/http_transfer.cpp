#include "platform/http/http_transfer.h"

#include "platform/http/revocation.h"
#include "platform/sync/stop_signal.h"

#include <algorithm>

namespace tidebrook {

namespace {

constexpr qint64 pieceBytes = 2 * 1024 * 1024; // of a body that is kept
constexpr char webSchemes[] = "http,https";
constexpr long receiveBuffer = 128 * 1024; // bytes; fewer and larger pieces cost less
constexpr qsizetype validatorLimit = 1024; // bytes; servers send far shorter ones
constexpr int notModified = 304;
constexpr int longestPoll = 60'000;         // ms; curl asks for less when it has to do something
constexpr qint64 headerLimit = 1024 * 1024; // bytes of all headers and trailers of a transfer

QByteArray charsetOf(const QByteArray &contentType) {
    const QList<QByteArray> parts = contentType.split(';');
    for (const QByteArray &part : parts) {
        const QByteArray parameter = part.trimmed();
        if (parameter.first(qMin(parameter.size(), qsizetype(8))).toLower() == "charset=")
            return parameter.sliced(8).replace('"', "").replace('\'', "").trimmed();
    }
    return {};
}

// A longer one is not worth sending back, and one with control characters no header can carry.
QByteArray keptValidator(const QByteArray &value) {
    const bool isText = std::ranges::all_of(value, [](uchar byte) { return byte >= ' '; });
    return isText && value.size() <= validatorLimit ? value : QByteArray();
}

} // namespace

CurlUrl parseUrl(const QString &text) {
    if (!isCurlReady())
        return nullptr;
    CurlUrl url(curl().curl_url());
    const QByteArray utf8 = text.trimmed().toUtf8();
    const CURLUcode code =
        curl().curl_url_set(url.get(), CURLUPART_URL, utf8.constData(), CURLU_URLENCODE);
    return code == CURLUE_OK ? std::move(url) : nullptr;
}

QByteArray partOf(const CurlUrl &url, CURLUPart part) {
    char *value = nullptr;
    if (!url || curl().curl_url_get(url.get(), part, &value, 0) != CURLUE_OK)
        return {};
    QByteArray copy(value);
    curl().curl_free(value);
    return copy;
}

bool hasWebScheme(const CurlUrl &url) {
    const QByteArray scheme = url ? partOf(url, CURLUPART_SCHEME).toLower() : QByteArray();
    return scheme == "http" || scheme == "https";
}

CurlList headerList(std::initializer_list<QByteArray> headers) {
    CurlList list;
    for (const QByteArray &header : headers) {
        if (!header.isEmpty())
            list.reset(curl().curl_slist_append(list.release(), header.constData()));
    }
    return list;
}

HttpTransfer::HttpTransfer(Sink sink, qint64 bodyLimit)
    : easy_(isCurlReady() ? curl().curl_easy_init() : nullptr), sink_(std::move(sink)),
      bodyLeft_(bodyLimit), headersLeft_(headerLimit), wireLeft_(2 * (headerLimit + bodyLimit)) {
    if (!easy_)
        return;
    set(CURLOPT_ERRORBUFFER, failure_.data());
    setAuthorities();
    set(CURLOPT_SSL_CTX_FUNCTION, &refuseRevoked);
    set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2)); // or later
    set(CURLOPT_NOSIGNAL, 1L);
    set(CURLOPT_QUICK_EXIT, 1L); // a time limit does not wait for a slow name server
    set(CURLOPT_FOLLOWLOCATION, 1L);
    set(CURLOPT_MAXREDIRS, redirectLimit);
    set(CURLOPT_PROTOCOLS_STR, webSchemes);
    set(CURLOPT_REDIR_PROTOCOLS_STR, webSchemes);
    set(CURLOPT_BUFFERSIZE, receiveBuffer);
    set(CURLOPT_WRITEDATA, this);
    set(CURLOPT_WRITEFUNCTION, &HttpTransfer::receive);
    set(CURLOPT_HEADERDATA, this);
    set(CURLOPT_HEADERFUNCTION, &HttpTransfer::receiveHeader);
    // The body of a redirect, the frames of chunks and what unpacks to nothing reach none of the
    // two above. The debug function gets all that comes and counts it, but cannot end the transfer.
    set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
    set(CURLOPT_DEBUGDATA, this);
    set(CURLOPT_DEBUGFUNCTION, &HttpTransfer::countWire);
    set(CURLOPT_VERBOSE, 1L);
    set(CURLOPT_XFERINFODATA, this);
    set(CURLOPT_XFERINFOFUNCTION, &HttpTransfer::checkWire);
    set(CURLOPT_NOPROGRESS, 0L);
}

// The variables of the system's TLS library, which libcurl sets aside for defaults of its own.
void HttpTransfer::setAuthorities() {
    const QByteArray file = qgetenv("SSL_CERT_FILE");
    const QByteArray folder = qgetenv("SSL_CERT_DIR");
    if (!file.isEmpty())
        set(CURLOPT_CAINFO, file.constData());
    if (!folder.isEmpty())
        set(CURLOPT_CAPATH, folder.constData());
}

HttpTransfer::~HttpTransfer() {
    if (easy_)
        curl().curl_easy_cleanup(easy_);
}

void HttpTransfer::setTimeLimits(const HttpLimits &limits, std::chrono::milliseconds whole) {
    set(CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(limits.connect.count()));
    set(CURLOPT_TIMEOUT_MS, static_cast<long>(whole.count()));
}

void HttpTransfer::setHeaders(CurlList headers) {
    headers_ = std::move(headers);
    set(CURLOPT_HTTPHEADER, headers_.get());
}

QString HttpTransfer::failure(CURLcode code) const {
    if (code == CURLE_OK)
        return QStringLiteral("the answer ends within its headers");
    // These end by a callback, of which libcurl does not know the reason.
    if (isPackingRefused_)
        return QStringLiteral("the answer is packed by another method than gzip, or twice");
    if (bodyLeft_ < 0 || headersLeft_ < 0 || wireLeft_ < 0)
        return QStringLiteral("the answer is too large");
    return QString::fromUtf8(failure_[0] ? failure_.data() : curl().curl_easy_strerror(code));
}

CURLcode HttpTransfer::perform(const StopSignal *stop) {
    CurlLoop loop(stop, 1);
    if (!loop.add(*this))
        return CURLE_FAILED_INIT;
    const auto ended = loop.takeEnded();
    loop.remove(*this);
    return ended ? ended->code : CURLE_ABORTED_BY_CALLBACK;
}

QByteArray HttpTransfer::header(const char *name) const {
    curl_header *found = nullptr;
    if (!easy_ || curl().curl_easy_header(easy_, name, 0, CURLH_HEADER, -1, &found) != CURLHE_OK)
        return {};
    return QByteArray(found->value).trimmed(); // of an empty one the line's end is left
}

// libcurl resolves the address only of an answer that came whole.
QString HttpTransfer::redirect() const {
    if (status() == notModified)
        return {};
    QString known = QString::fromUtf8(info<const char *>(CURLINFO_REDIRECT_URL));
    const QByteArray location = status() / 100 == 3 ? header("Location") : QByteArray();
    if (!known.isEmpty() || location.isEmpty())
        return known;
    const CurlUrl url = parseUrl(address());
    curl().curl_url_set(url.get(), CURLUPART_URL, location.constData(), CURLU_URLENCODE);
    return QString::fromUtf8(partOf(url, CURLUPART_URL));
}

size_t HttpTransfer::receive(char *data, size_t, size_t size, void *self) {
    auto *transfer = static_cast<HttpTransfer *>(self);
    transfer->bodyLeft_ -= static_cast<qint64>(size);
    const bool isTaken =
        transfer->bodyLeft_ >= 0 && transfer->sink_(data, static_cast<qint64>(size));
    return isTaken ? size : 0;
}

size_t HttpTransfer::receiveHeader(char *line, size_t, size_t size, void *self) {
    auto *transfer = static_cast<HttpTransfer *>(self);
    transfer->headersLeft_ -= static_cast<qint64>(size);
    transfer->hasWholeHead_ = transfer->hasWholeHead_ || *line == '\r' || *line == '\n';
    transfer->isPackingRefused_ =
        !transfer->isTakenPacking(QByteArray(line, static_cast<qsizetype>(size)).toLower());
    return transfer->headersLeft_ >= 0 && !transfer->isPackingRefused_ ? size : 0;
}

// The library unpacks whatever it can, and up to five times over: into how much is only known at
// the end. The other methods it has use more memory by far.
bool HttpTransfer::isTakenPacking(const QByteArray &header) {
    if (header.startsWith("http/")) {
        hasWholeHead_ = false;
        packingCount_ = 0;
    }
    if (!header.startsWith("content-encoding:") && !header.startsWith("transfer-encoding:"))
        return true;
    for (const QByteArray &method : header.sliced(header.indexOf(':') + 1).split(',')) {
        const QByteArray name = method.trimmed();
        if (name == "br" || name == "zstd")
            return false;
        packingCount_ += name == "gzip" || name == "x-gzip" || name == "deflate" ? 1 : 0;
    }
    // Text becomes far smaller than that, and blocks that unpack to nothing take their time.
    if (packingCount_ > 0)
        wireLeft_ = qMin(wireLeft_, headerLimit + bodyLeft_ / 3);
    return packingCount_ <= 1;
}

int HttpTransfer::countWire(CURL *, curl_infotype type, char *, size_t size, void *self) {
    if (type == CURLINFO_DATA_IN)
        static_cast<HttpTransfer *>(self)->wireLeft_ -= static_cast<qint64>(size);
    return 0;
}

int HttpTransfer::checkWire(void *self, curl_off_t, curl_off_t, curl_off_t, curl_off_t) {
    return static_cast<HttpTransfer *>(self)->wireLeft_ < 0 ? 1 : 0;
}

CurlLoop::CurlLoop(const StopSignal *stop, int connections)
    : stop_(stop), multi_(isCurlReady() ? curl().curl_multi_init() : nullptr) {
    if (multi_)
        curl().curl_multi_setopt(multi_.get(), CURLMOPT_MAXCONNECTS, long{connections});
}

bool CurlLoop::add(const HttpTransfer &transfer) {
    return multi_ && transfer.handle() &&
           curl().curl_multi_add_handle(multi_.get(), transfer.handle()) == CURLM_OK;
}

void CurlLoop::remove(const HttpTransfer &transfer) {
    curl().curl_multi_remove_handle(multi_.get(), transfer.handle());
}

std::optional<CurlLoop::Ended> CurlLoop::takeEnded() {
    curl_waitfd stopped{stop_ ? stop_->descriptor() : -1, CURL_WAIT_POLLIN, 0};
    int count = 0;
    while (multi_ && !(stop_ && stop_->isRaised()) &&
           curl().curl_multi_perform(multi_.get(), &count) == CURLM_OK) {
        if (const CURLMsg *message = curl().curl_multi_info_read(multi_.get(), &count))
            return Ended{message->easy_handle, message->data.result};
        curl().curl_multi_poll(multi_.get(), &stopped, stop_ ? 1 : 0, longestPoll, nullptr);
    }
    return std::nullopt;
}

HttpProgress progressOf(CURLcode code, const HttpTransfer &transfer) {
    if (!isCurlReady())
        return HttpProgress::NotStarted;
    switch (code) {
    case CURLE_OK:
        return transfer.hasWholeHead() ? HttpProgress::Complete : HttpProgress::Incomplete;
    case CURLE_URL_MALFORMAT:
        return HttpProgress::NotOpened;
    case CURLE_OPERATION_TIMEDOUT:
        return transfer.number(CURLINFO_CONNECT_TIME_T) > 0 ? HttpProgress::Incomplete
                                                            : HttpProgress::NotSent;
    case CURLE_ABORTED_BY_CALLBACK:
        return HttpProgress::Incomplete;
    // These may come behind a redirect, which is an answer, but not the one that was asked for.
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_RESOLVE_PROXY:
    case CURLE_COULDNT_CONNECT:
    case CURLE_GOT_NOTHING:
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_TOO_MANY_REDIRECTS:
    case CURLE_UNSUPPORTED_PROTOCOL:
        return HttpProgress::NotSent;
    default:
        return transfer.status() != 0 ? HttpProgress::Incomplete : HttpProgress::NotSent;
    }
}

HttpGet::HttpGet(const HttpRequest &request, const HttpLimits &limits)
    : transfer_([this](const char *data, qint64 size) { return keep(data, size); },
                limits.bodyBytes),
      isConditional_(!request.validators.isEmpty()) {
    const CurlUrl parsed = parseUrl(request.url);
    isOpened_ = transfer_.handle() && hasWebScheme(parsed);
    if (!isOpened_) {
        if (transfer_.handle())
            answer_.detail = QStringLiteral("not an address of the web");
        return;
    }
    const auto headerOf = [](const QByteArray &name, const QByteArray &value) {
        return value.isEmpty() ? QByteArray() : QByteArray(name + ": " + value);
    };
    transfer_.setHeaders(
        headerList({"Content-Type: text/xml", headerOf("If-None-Match", request.validators.etag),
                    headerOf("If-Modified-Since", request.validators.lastModified)}));
    transfer_.set(CURLOPT_URL, partOf(parsed, CURLUPART_URL).constData());
    transfer_.set(CURLOPT_USERAGENT, "Tidebrook/" TIDEBROOK_VERSION);
    transfer_.set(CURLOPT_ACCEPT_ENCODING, "gzip");
    transfer_.setTimeLimits(limits, limits.requestObject);
}

bool HttpGet::keep(const char *data, qint64 size) {
    QByteArrayList &body = answer_.body;
    if (body.isEmpty() || body.last().size() + size > pieceBytes) {
        const qint64 announced = transfer_.number(CURLINFO_CONTENT_LENGTH_DOWNLOAD_T);
        const qint64 left = announced - body.size() * pieceBytes;
        body.append(QByteArray());
        body.last().reserve(qBound(size, left, pieceBytes));
    }
    body.last().append(data, size);
    return true;
}

HttpAnswer HttpGet::takeAnswer(CURLcode code) {
    answer_.progress = progressOf(code, transfer_);
    answer_.isTimedOut = code == CURLE_OPERATION_TIMEDOUT;
    answer_.status = static_cast<int>(transfer_.status());
    answer_.retryAfter =
        std::chrono::seconds(std::max(qint64{0}, transfer_.number(CURLINFO_RETRY_AFTER)));
    if (answer_.progress != HttpProgress::Complete) {
        if (answer_.detail.isEmpty())
            answer_.detail =
                isCurlReady() ? transfer_.failure(code) : QStringLiteral("libcurl is missing");
        return std::move(answer_);
    }
    answer_.isUnchanged = isConditional_ && answer_.status == notModified;
    answer_.charset = charsetOf(transfer_.header("Content-Type"));
    answer_.address = transfer_.address();
    answer_.validators = {keptValidator(transfer_.header("ETag")),
                          keptValidator(transfer_.header("Last-Modified"))};
    return std::move(answer_);
}

} // namespace tidebrook
