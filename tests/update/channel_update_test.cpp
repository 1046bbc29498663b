#include "feed_server/feed_server.h"
#include "platform/pause.h"
#include "support/test_device.h"
#include "update/channel_update.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

class ChannelUpdateTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(device_.store->Open());
        device_.addChannel(u"C"_s, u"It's"_s);
        server_.serve(u"/feed"_s, "<rss><channel><item><title>a</title><guid>1</guid></item>"
                                  "<item><title>b</title><guid>2</guid></item></channel></rss>");
    }

    bool update(const QString &url, RefreshResult *result = nullptr) {
        return updateChannel({device_.root, *device_.registry, *device_.store},
                             {url, u"It's"_s, u"C"_s}, result);
    }

    FeedServer server_;
    TestDevice device_;
};

TEST_F(ChannelUpdateTest, StoresCountsAndOpensTheDatabaseAgain) {
    RefreshResult result;
    EXPECT_TRUE(update(server_.url(u"/feed"), &result));
    EXPECT_EQ(result.storedCount, 2);
    EXPECT_EQ(device_.store->error(), 0u);
    EXPECT_EQ(device_.counts(u"C"_s, u"It's"_s), u"2/2");
    EXPECT_TRUE(update(server_.url(u"/feed"), &result));
    EXPECT_EQ(result.storedCount, 0);
    EXPECT_EQ(device_.counts(u"C"_s, u"It's"_s), u"2/2");
}

TEST_F(ChannelUpdateTest, AFailedFetchIsToldByTheStoresErrorAlone) {
    EXPECT_TRUE(update(u"http://127.0.0.1:1/"_s));
    EXPECT_EQ(device_.store->error(), 1007u);
    EXPECT_TRUE(update(server_.url(u"/feed")));
    EXPECT_EQ(device_.store->error(), 0u) << "an earlier failure must not stick";
    EXPECT_FALSE(update(QString()));
}

TEST_F(ChannelUpdateTest, PausesASecondBeforeAndAfter) {
    setPauseScale(10);
    QElapsedTimer timer;
    timer.start();
    update(server_.url(u"/feed"));
    setPauseScale(0);
    EXPECT_GE(timer.elapsed(), 200);
}

} // namespace
} // namespace tidebrook
