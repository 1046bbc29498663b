// A server's answer, byte for byte, through both transports. Byte 1 to 7 in front: where it is odd,
// the server repeats the second half of the answer without end; from 2 on, what comes is packed.

#include "platform/http/http.h"
#include "feed_server/feed_server.h"
#include "fuzz/fuzz.h"

#include <QBuffer>

namespace tidebrook {

using namespace Qt::StringLiterals;

// An answer without end takes all of this, twice.
static constexpr std::chrono::milliseconds longest{250};
static constexpr HttpLimits limits{
    .connect = longest, .requestObject = longest, .direct = longest, .bodyBytes = 65'536};

// Redirects to any host end at this server, which is the proxy too.
static FeedServer &server() {
    static FeedServer server;
    static const bool isSet = qputenv("http_proxy", server.url(u"").toUtf8()) &&
                              qputenv("https_proxy", server.url(u"").toUtf8()) &&
                              qunsetenv("no_proxy") && qunsetenv("NO_PROXY") &&
                              qputenv("TIDEBROOK_HTTP_PORT", QByteArray::number(server.port()));
    require(isSet, "the environment can be set");
    return server;
}

static void setAnswer(QByteArray answer, std::size_t choice) {
    constexpr qsizetype blockSize = 16'384; // in small ones, the server would be the slow part
    if (choice >= 2)
        answer.prepend("HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\n");
    QByteArray repeated = choice % 2 != 0 ? answer.sliced(answer.size() / 2) : QByteArray();
    if (!repeated.isEmpty())
        repeated = repeated.repeated(blockSize / repeated.size() + 1);
    server().sendRaw(u"/f"_s, answer, repeated);
}

static void checkGet() {
    const HttpAnswer answer = httpGet({server().url(u"/f"), {"\"e\"", "m"}}, limits);
    const bool isComplete = answer.progress == HttpProgress::Complete;
    require(answer.body.join().size() <= limits.bodyBytes, "a body keeps its limit");
    require(answer.validators.etag.size() <= 1024 && answer.validators.lastModified.size() <= 1024,
            "validators keep their limit");
    require(isComplete ? answer.status != 0 : !answer.isUnchanged, "a status is an answer's");
    require(answer.retryAfter.count() >= 0, "a wait is not negative");
}

static void checkDirect() {
    QBuffer sink;
    sink.open(QIODevice::WriteOnly);
    httpDownloadDirect(server().url(u"/f"), sink, limits);
    require(sink.size() <= limits.bodyBytes, "a download keeps its limit");
}

void fuzz(const QByteArray &input) {
    QByteArray answer = input;
    const std::size_t choice = takeChoice(answer);
    setAnswer(answer, choice);
    checkGet();
    if (!answer.toLower().contains("location")) // past the proxy it would lead to any host
        checkDirect();
    server().clearRequests();
}

} // namespace tidebrook
