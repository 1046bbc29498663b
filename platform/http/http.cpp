#include "platform/http/http.h"

#include "platform/http/http_transfer.h"

namespace tidebrook {

namespace {

constexpr qsizetype directHostLimit = 99; // characters; the platform's buffers hold no more
constexpr qsizetype directPathLimit = 509;

// The path and query, decoded as this transport sends them.
QByteArray directTarget(const CurlUrl &url) {
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

HttpAnswer httpGet(const HttpRequest &request, const HttpLimits &limits) {
    HttpGet get(request, limits);
    const CURLcode code =
        get.isOpened() ? get.transfer().perform(limits.stop) : CURLE_URL_MALFORMAT;
    return get.takeAnswer(code);
}

HttpProgress httpDownloadDirect(const QString &url, QIODevice &sink, const HttpLimits &limits,
                                QString *failure) {
    if (!isCurlReady())
        return HttpProgress::NotStarted;
    const CurlUrl parsed = parseUrl(url);
    const QByteArray host = partOf(parsed, CURLUPART_HOST);
    const QByteArray target = directTarget(parsed);
    if (host.isEmpty() || host.size() > directHostLimit ||
        QString::fromUtf8(target).size() > directPathLimit) {
        if (failure)
            *failure = QStringLiteral("not an address for a direct download");
        return HttpProgress::NotOpened;
    }

    HttpTransfer transfer(
        [&sink](const char *data, qint64 size) { return sink.write(data, size) == size; },
        limits.bodyBytes);
    const QByteArray address = "http://" + host + requestLineTarget(target);
    const QByteArray port = qgetenv("TIDEBROOK_HTTP_PORT");
    const QByteArray portRule = ":80::" + port;
    const CurlList otherPort = port.isEmpty() ? CurlList() : headerList({portRule});
    transfer.set(CURLOPT_URL, address.constData());
    transfer.set(CURLOPT_CONNECT_TO, otherPort.get());
    transfer.set(CURLOPT_NOPROXY, "*");
    transfer.setHeaders(
        headerList({"Content-Type: text/xml", "Accept: text/xml", "Pragma: no-cache"}));
    transfer.set(CURLOPT_USERAGENT, "Feedlark");
    transfer.set(CURLOPT_ACCEPT_ENCODING, "gzip");
    transfer.setTimeLimits(limits, limits.direct);
    const CURLcode code = transfer.perform(limits.stop);
    const HttpProgress progress = progressOf(code, transfer);
    if (failure && progress != HttpProgress::Complete)
        *failure = transfer.failure(code);
    return progress;
}

} // namespace tidebrook
