#include "feed_server/feed_server.h"
#include "platform/http.h"
#include "support/text_printing.h"

#include <QBuffer>

#include <gtest/gtest.h>

#include <tuple>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

using std::chrono::milliseconds;

// The time limits are only for servers that use them up: a busy machine is not to fail the rest.
const HttpLimits smallLimits{milliseconds(20'000), milliseconds(20'000), milliseconds(20'000),
                             100'000};
const HttpLimits hastyLimits{milliseconds(300), milliseconds(300), milliseconds(300), 100'000};

class HttpTest : public testing::Test {
protected:
    HttpAnswer get(const QString &path, const HttpLimits &limits = smallLimits) {
        return httpGet({server_.url(path)}, limits);
    }

    FeedServer server_;
};

TEST_F(HttpTest, AnswersWholeWhateverTheStatus) {
    server_.serve(u"/feed"_s, "body", "text/xml; charset=\"windows-1251\"");
    server_.answerStatus(u"/gone"_s, 404, "sorry");
    server_.serveGzip(u"/gzip"_s, "compressed");
    server_.redirect(u"/moved"_s, "/feed");
    EXPECT_EQ(get(u"/feed"_s).body, "body");
    EXPECT_EQ(get(u"/feed"_s).charset, "windows-1251");
    EXPECT_EQ(get(u"/gone"_s).body, "sorry");
    EXPECT_EQ(get(u"/gone"_s).progress, HttpProgress::Complete);
    EXPECT_EQ(get(u"/gzip"_s).body, "compressed");
    EXPECT_EQ(get(u"/moved"_s).body, "body");
}

TEST_F(HttpTest, ServersThatFailAreToldApart) {
    const QByteArray body(50'000, 'x');
    server_.hang(u"/hang"_s);
    server_.resetHalfWay(u"/reset"_s, body);
    server_.trickle(u"/trickle"_s, body);
    server_.endless(u"/endless"_s);
    server_.redirect(u"/circle"_s, "/circle");
    server_.redirect(u"/file"_s, "file:///etc/passwd");
    server_.redirect(u"/refused"_s, "http://127.0.0.1:1/");
    for (const QStringView path : {u"/hang", u"/trickle"})
        EXPECT_EQ(get(path.toString(), hastyLimits).progress, HttpProgress::Incomplete)
            << path.toUtf8().constData();
    for (const QStringView path : {u"/reset", u"/endless"})
        EXPECT_EQ(get(path.toString()).progress, HttpProgress::Incomplete)
            << path.toUtf8().constData();
    for (const QStringView path : {u"/circle", u"/file", u"/refused"})
        EXPECT_EQ(get(path.toString()).progress, HttpProgress::NotSent)
            << path.toUtf8().constData();
    EXPECT_EQ(httpGet({u"http://127.0.0.1:1/"_s}).progress, HttpProgress::NotSent);
    for (const QStringView url : {u"", u"file:///etc/passwd", u"ftp://127.0.0.1/", u"http://",
                                  u"no address", u"gopher://127.0.0.1/"})
        EXPECT_EQ(httpGet({url.toString()}).progress, HttpProgress::NotOpened)
            << url.toUtf8().constData();
}

TEST_F(HttpTest, ACompressedBodyIsMeasuredUnpacked) {
    server_.serveGzip(u"/bomb"_s, QByteArray(10'000'000, ' '));
    EXPECT_EQ(get(u"/bomb"_s).progress, HttpProgress::Incomplete);
}

TEST_F(HttpTest, TheDirectDownloadIgnoresSchemeAndPortAndDecodesThePath) {
    qputenv("TIDEBROOK_HTTP_PORT", QByteArray::number(server_.port()));
    server_.serve(u"/a feed"_s, "direct");
    server_.clearRequests();
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    EXPECT_EQ(httpDownloadDirect(u"https://localhost:8443/a%20feed?x=%41%26b"_s, buffer),
              HttpProgress::Complete);
    EXPECT_EQ(buffer.data(), "direct");
    const QList<FeedServer::Request> requests = server_.requests();
    ASSERT_EQ(requests.size(), 1);
    EXPECT_EQ(requests[0].path, "/a%20feed?x=A&b");
    EXPECT_EQ(requests[0].header("User-Agent"), "Feedlark");
    EXPECT_EQ(requests[0].header("Accept"), "text/xml");
    EXPECT_EQ(requests[0].header("Host"), "localhost");
    qunsetenv("TIDEBROOK_HTTP_PORT");
}

TEST_F(HttpTest, ADirectDownloadThatIsCutOffOrDoesNotFitFails) {
    qputenv("TIDEBROOK_HTTP_PORT", QByteArray::number(server_.port()));
    server_.resetHalfWay(u"/reset"_s, QByteArray(5000, 'x'));
    server_.endless(u"/endless"_s);
    server_.redirect(u"/refused"_s, "http://127.0.0.1:1/");
    server_.serveGzip(u"/bomb"_s, QByteArray(10'000'000, ' '));
    server_.serveGzip(u"/feed"_s, "body");
    const std::tuple<QString, HttpProgress> cases[] = {
        {u"http://localhost/reset"_s, HttpProgress::Incomplete},
        {u"http://localhost/endless"_s, HttpProgress::Incomplete},
        {u"http://localhost/bomb"_s, HttpProgress::Incomplete},
        {u"http://localhost/refused"_s, HttpProgress::NotSent},
        {u""_s, HttpProgress::NotOpened},
        {QString(u"http://" + QString(100, u'h') + u"/feed"), HttpProgress::NotOpened},
        {QString(u"http://localhost/" + QString(510, u'p')), HttpProgress::NotOpened},
        {u"http://localhost/feed"_s, HttpProgress::Complete},
    };
    QBuffer buffer;
    for (const auto &[url, progress] : cases) {
        buffer.setData({});
        buffer.open(QIODevice::WriteOnly);
        EXPECT_EQ(httpDownloadDirect(url, buffer, smallLimits), progress)
            << url.toUtf8().constData();
        buffer.close();
    }
    EXPECT_EQ(buffer.data(), "body");
    EXPECT_EQ(httpDownloadDirect(u"http://localhost/feed"_s, buffer, smallLimits),
              HttpProgress::Incomplete)
        << "a closed sink takes nothing";
    qunsetenv("TIDEBROOK_HTTP_PORT");
}

} // namespace
} // namespace tidebrook
