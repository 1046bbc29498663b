#include "feed_server/direct_port.h"
#include "platform/http/http.h"

#include <QBuffer>

#include <gtest/gtest.h>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

class HttpTest : public testing::Test {
protected:
    HttpProgress download(const QString &url) {
        body_.close();
        body_.setData({});
        body_.open(QIODevice::WriteOnly);
        return httpDownloadDirect(url, body_);
    }

    FeedServer server_;
    const DirectPort directPort_{server_};
    QBuffer body_;
};

TEST_F(HttpTest, WhatIsNoAddressOfTheWebIsNotRequested) {
    for (const QStringView url : {u"", u"file:///etc/passwd", u"ftp://127.0.0.1/", u"http://",
                                  u"no address", u"gopher://127.0.0.1/"})
        EXPECT_EQ(httpGet({url.toString()}).progress, HttpProgress::NotOpened)
            << url.toUtf8().constData();
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
