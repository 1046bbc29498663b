#include "feed_server/direct_port.h"
#include "platform/http/http.h"

#include <QBuffer>

#include <gtest/gtest.h>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

TEST(Http, WhatIsNoAddressOfTheWebIsNotRequested) {
    for (const QStringView url : {u"", u"file:///etc/passwd", u"ftp://127.0.0.1/", u"http://",
                                  u"no address", u"gopher://127.0.0.1/"})
        EXPECT_EQ(httpGet({url.toString()}).progress, HttpProgress::NotOpened)
            << url.toUtf8().constData();
}

TEST(Http, TheDirectDownloadIgnoresSchemeAndPortAndDecodesThePath) {
    FeedServer server;
    const DirectPort directPort(server);
    server.serve(u"/a feed"_s, "direct");
    QBuffer body;
    body.open(QIODevice::WriteOnly);
    EXPECT_EQ(httpDownloadDirect(u"https://localhost:8443/a%20feed?x=%41%26b"_s, body),
              HttpProgress::Complete);
    EXPECT_EQ(body.data(), "direct");
    const QList<FeedServer::Request> requests = server.requests();
    ASSERT_EQ(requests.size(), 1);
    EXPECT_EQ(requests[0].path, "/a%20feed?x=A&b");
    EXPECT_EQ(requests[0].header("User-Agent"), "Feedlark");
    EXPECT_EQ(requests[0].header("Host"), "localhost");
}

} // namespace
} // namespace tidebrook
