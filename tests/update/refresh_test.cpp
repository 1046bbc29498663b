#include "feed_server/feed_server.h"
#include "feed_server/generated_feed.h"
#include "store/category_list.h"
#include "store/store_check.h"
#include "support/test_device.h"
#include "update/refresh.h"

#include <gtest/gtest.h>

#include <set>
#include <thread>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

const QString category = u"It's"_s;

class RefreshTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(device_.store->Open());
        quint32 count = 0;
        SettingsStore(*device_.registry).RegReadDword(programKey, u"CategoryNumber", count);
        CategoryListStore(*device_.registry).AddCategory(category);
    }

    void addFeeds(int count, int items) {
        for (int i = 0; i < count; ++i) {
            const QString name = u"feed %1"_s.arg(i);
            const QString path = u"/%1"_s.arg(i);
            server_.serve(path, generatedFeed(items, static_cast<quint32>(i)));
            device_.addChannel(category, name);
            jobs_.append({server_.url(path), name, category});
        }
    }

    QList<RefreshResult> refresh(int parallel) {
        return refreshChannels({device_.root, *device_.registry, *device_.store}, jobs_, parallel,
                               [this](qsizetype index, const RefreshResult &) {
                                   EXPECT_EQ(std::this_thread::get_id(), caller_);
                                   EXPECT_TRUE(observed_.insert(index).second);
                               });
    }

    const std::thread::id caller_ = std::this_thread::get_id();
    FeedServer server_;
    TestDevice device_;
    QList<RefreshJob> jobs_;
    std::set<qsizetype> observed_;
};

TEST_F(RefreshTest, ManyChannelsAtATimeEndAsOneAfterAnother) {
    addFeeds(12, 20);
    jobs_.insert(5, {u"http://127.0.0.1:1/"_s, u"feed 3"_s, category});
    const QList<RefreshResult> results = refresh(5);
    ASSERT_EQ(results.size(), 13);
    EXPECT_EQ(observed_.size(), 13u);
    for (qsizetype i = 0; i < results.size(); ++i)
        EXPECT_EQ(results[i].error, i == 5 ? 1007u : 0u);
    EXPECT_EQ(results[0].storedCount, 20);
    EXPECT_EQ(results[0].counts.unread, 20);
    EXPECT_EQ(checkStore(device_.root, *device_.registry), QStringList());

    observed_.clear();
    const QList<RefreshResult> again = refresh(5);
    EXPECT_EQ(again[0].storedCount, 0);
    EXPECT_EQ(again[0].counts.total, 20);
}

TEST_F(RefreshTest, ADatabaseThatIsLockedFailsTheRefreshAndLosesNothing) {
    addFeeds(1, 5);
    refresh(1);
    auto other = SqliteDatabase::open(device_.root.filePath(u"RSSVault.sdf"), {});
    ASSERT_TRUE(other);
    SqliteTransaction lock(*other);
    ASSERT_TRUE(lock.isOpen());
    observed_.clear();
    const QList<RefreshResult> results = refresh(1);
    EXPECT_EQ(results[0].error, 1001u);
    EXPECT_EQ(device_.counts(category, u"feed 0"_s), u"5/5");
    EXPECT_EQ(device_.lastErrorCode(), 1001u);
}

TEST_F(RefreshTest, NoJobsEndAtOnce) { EXPECT_TRUE(refresh(8).isEmpty()); }

} // namespace
} // namespace tidebrook
