#include "feed_server/direct_port.h"
#include "platform/http/http.h"
#include "platform/http/http_queue.h"

#include <QBuffer>

#include <gtest/gtest.h>

#include <optional>
#include <tuple>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

// The time limits are only for servers that use them up: a busy machine is not to fail the rest.
const HttpLimits smallLimits{20s, 20s, 20s, 100'000};
const HttpLimits hastyLimits{300ms, 300ms, 300ms, 100'000};

class HttpTest : public testing::Test {
protected:
    HttpAnswer get(const QString &path, const HttpLimits &limits = smallLimits) {
        return httpGet({server_.url(path)}, limits);
    }
    HttpProgress download(const QString &url) {
        body_.close();
        body_.setData({});
        body_.open(QIODevice::WriteOnly);
        return httpDownloadDirect(url, body_, smallLimits);
    }

    FeedServer server_;
    const DirectPort directPort_{server_};
    QBuffer body_;
};

TEST_F(HttpTest, AnswersWholeWhateverTheStatus) {
    server_.serve(u"/feed"_s, "body", "text/xml; charset=\"windows-1251\"");
    server_.answerStatus(u"/gone"_s, 404, "sorry");
    server_.serveGzip(u"/gzip"_s, "compressed");
    server_.redirect(u"/moved"_s, "/feed");
    EXPECT_EQ(get(u"/feed"_s).body, QByteArrayList{"body"});
    EXPECT_EQ(get(u"/feed"_s).charset, "windows-1251");
    EXPECT_EQ(get(u"/gone"_s).body, QByteArrayList{"sorry"});
    EXPECT_EQ(get(u"/gone"_s).progress, HttpProgress::Complete);
    EXPECT_EQ(get(u"/gzip"_s).body, QByteArrayList{"compressed"});
    EXPECT_EQ(get(u"/moved"_s).body, QByteArrayList{"body"});
}

TEST_F(HttpTest, ServersThatFailAreToldApart) {
    server_.trickle(u"/trickle"_s, QByteArray(50'000, 'x'));
    server_.redirect(u"/refused"_s, "http://127.0.0.1:1/");
    EXPECT_EQ(get(u"/trickle"_s, hastyLimits).progress, HttpProgress::Incomplete);
    EXPECT_EQ(get(u"/refused"_s).progress, HttpProgress::NotSent);
    for (const QStringView url : {u"", u"file:///etc/passwd", u"ftp://127.0.0.1/", u"http://",
                                  u"no address", u"gopher://127.0.0.1/"})
        EXPECT_EQ(httpGet({url.toString()}).progress, HttpProgress::NotOpened)
            << url.toUtf8().constData();
}

const QByteArray ok = "HTTP/1.1 200 OK\r\n";
const QByteArray chunked = ok + "Transfer-Encoding: chunked\r\n";

// Without an end in any part of an answer, the limits end it, and early.
TEST_F(HttpTest, AnAnswerWithoutAnEndIsRefusedBeforeItCostsMuch) {
    const QByteArray headers = QByteArray("X: y\r\n").repeated(1000);
    const QByteArray body(60'000, 'x');
    const std::tuple<const char *, QByteArray, QByteArray> cases[] = {
        {"headers", ok, headers},
        {"trailers", chunked + "\r\n0\r\n", headers},
        {"hints", "", QByteArray("HTTP/1.1 103 Hints\r\nLink: <a>\r\n\r\n").repeated(1000)},
        {"chunk extension", chunked + "\r\n1;", body},
        {"empty gzip blocks",
         ok + "Content-Encoding: gzip\r\n\r\n\x1F\x8B\x08" + QByteArray(6, '\0') + '\3',
         QByteArray("\0\0\0\xFF\xFF", 5).repeated(10'000)},
        {"a redirect's body",
         "HTTP/1.1 302 Found\r\nLocation: /y\r\nContent-Length: 9000000000\r\n\r\n", body},
    };
    for (const auto &[what, head, repeated] : cases) {
        SCOPED_TRACE(what);
        server_.clearCounts();
        server_.sendRaw(u"/x"_s, head, repeated);
        EXPECT_EQ(get(u"/x"_s).progress, HttpProgress::Incomplete);
        EXPECT_EQ(download(server_.url(u"/x")), HttpProgress::Incomplete);
        std::optional<HttpProgress> queued;
        httpGetAll({server_.url(u"/x")}, 1, smallLimits,
                   {[](std::size_t) { return HttpValidators(); },
                    [&](std::size_t, const HttpAnswer &answer) { queued = answer.progress; }});
        EXPECT_EQ(queued, HttpProgress::Incomplete);
        // Of what is sent a part waits in the sockets' buffers.
        EXPECT_LT(server_.bytesSent(), 3 * 20'000'000);
    }
}

TEST_F(HttpTest, ABodyIsMeasuredUnpackedAndUnpackedOnce) {
    server_.serveGzip(u"/bomb"_s, QByteArray(10'000'000, ' '));
    EXPECT_EQ(get(u"/bomb"_s).progress, HttpProgress::Incomplete);
    EXPECT_EQ(download(server_.url(u"/bomb")), HttpProgress::Incomplete);
    const QByteArray packed = "Content-Length: 0\r\n\r\n";
    for (const char *const encodings :
         {"Content-Encoding: gzip, gzip\r\n", "Content-Encoding: zstd\r\n",
          "content-encoding: br\r\n", "Transfer-Encoding: gzip\r\nContent-Encoding: gzip\r\n"}) {
        server_.sendRaw(u"/packed"_s, ok + QByteArray(encodings) + packed);
        EXPECT_EQ(get(u"/packed"_s).progress, HttpProgress::Incomplete) << encodings;
    }
}

TEST_F(HttpTest, TheDirectDownloadIgnoresSchemeAndPortAndDecodesThePath) {
    server_.serve(u"/a feed"_s, "direct");
    EXPECT_EQ(download(u"https://localhost:8443/a%20feed?x=%41%26b"_s), HttpProgress::Complete);
    EXPECT_EQ(body_.data(), "direct");
    const QList<FeedServer::Request> requests = server_.requests();
    ASSERT_EQ(requests.size(), 1);
    EXPECT_EQ(requests[0].path, "/a%20feed?x=A&b");
    EXPECT_EQ(requests[0].header("User-Agent"), "Feedlark");
    EXPECT_EQ(requests[0].header("Host"), "localhost");
}

TEST_F(HttpTest, ADirectDownloadWhoseAddressOrBodyHasNoPlaceFails) {
    for (const QString &url : {u""_s, QString(u"http://" + QString(100, u'h') + u"/feed"),
                               QString(u"http://localhost/" + QString(510, u'p'))})
        EXPECT_EQ(download(url), HttpProgress::NotOpened) << url.toStdString();
    server_.serveGzip(u"/feed"_s, "body");
    EXPECT_EQ(download(u"http://localhost/feed"_s), HttpProgress::Complete);
    EXPECT_EQ(body_.data(), "body");
    body_.close();
    EXPECT_EQ(httpDownloadDirect(u"http://localhost/feed"_s, body_), HttpProgress::Incomplete);
}

} // namespace
} // namespace tidebrook
