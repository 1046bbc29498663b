#include "feed_server/direct_port.h"
#include "platform/http/http.h"
#include "platform/http/http_queue.h"

#include <QBuffer>

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

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

TEST(Http, WhatTimesOutWhileAnAnswerIsStoredIsAskedForAgain) {
    FeedServer server;
    server.serve(u"/first"_s, "<rss/>");
    server.trickle(u"/second"_s, "<rss/>", 30ms);
    const QString second = server.url(u"/second").replace(u"127.0.0.1"_s, u"localhost"_s);
    const HttpLimits limits{.connect = 1500ms, .requestObject = 1500ms};
    std::vector<HttpProgress> ends;
    const auto store = [&](std::size_t index, HttpAnswer &answer) {
        ends.push_back(answer.progress);
        if (index == 0)
            std::this_thread::sleep_for(1800ms); // as a slow disk does
    };
    EXPECT_TRUE(httpGetAll({server.url(u"/first"), second}, 2, limits,
                           {[](std::size_t) { return HttpValidators(); }, store}));
    EXPECT_EQ(ends, std::vector(2, HttpProgress::Complete));
}

} // namespace
} // namespace tidebrook
