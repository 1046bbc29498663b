#include "app/base/data_jobs.h"
#include "platform/sqlite_database.h"
#include "store/error_codes.h"
#include "store/store_check.h"
#include "support/test_device.h"
#include "ui/kit/screen_stack.h"
#include "update/auto_list.h"

#include <QTest>

#include <gtest/gtest.h>

#include <functional>
#include <optional>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

constexpr int patience = 20'000; // ms

const QString seed = u"Planet\thttp://example.org/a\tNews\n"
                     u"Moon\thttp://example.org/b\tScience\n"
                     u"Star\thttp://example.org/c\tScience\n"_s;

/// A reader's parts, without its screens.
struct Parts {
    explicit Parts(const DeviceRoot &root) : device(root) { device.open(); }
    ~Parts() {
        state.changes.finish();
        device.close();
    }
    Parts(const Parts &) = delete;
    Parts &operator=(const Parts &) = delete;

    DeviceParts device;
    ScreenStack stack;
    AppState state{device, stack};
};

class DataJobsTest : public testing::Test {
protected:
    DataJobsTest() { device_.store->Open(); }

    using Start = std::function<bool(AppState &, QObject *, JobEnd)>;

    bool run(const Start &start) {
        std::optional<bool> end;
        QObject receiver;
        EXPECT_TRUE(
            start(parts_.state, &receiver, [&end](int messageId) { end = messageId == 0; }));
        EXPECT_TRUE(QTest::qWaitFor([&end] { return end.has_value(); }, patience));
        return end.value_or(false);
    }

    /// What there is of a category, "-" where it is not listed.
    QString shown(const QString &category) {
        const auto listed = CategoryListStore(*device_.registry).listedCategories();
        return listed->contains(category) ? device_.channelNames(category).join(u' ') : u"-"_s;
    }
    QString shown() {
        return QStringLiteral("News: %1, Science: %2, Sport: %3")
            .arg(shown(u"News"_s), shown(u"Science"_s), shown(u"Sport"_s));
    }
    QStringList automatic() {
        QStringList names;
        for (const RefreshJob &job :
             autoUpdatedChannels(device_.root).value_or(QList<RefreshJob>()))
            names.append(job.channelName);
        return names;
    }

    std::unique_ptr<SqliteDatabase> otherConnection() {
        return SqliteDatabase::open(device_.root.filePath(u"RSSVault.sdf"), {});
    }

    TestDevice device_{seed};
    Parts parts_{device_.root};
};

bool renameNews(AppState &state, QObject *receiver, JobEnd end) {
    return startRenameCategory(state, receiver, u"Sport"_s, u"News"_s, std::move(end));
}

bool deleteScience(AppState &state, QObject *receiver, JobEnd end) {
    return startDeleteCategory(state, receiver, u"Science"_s, std::move(end));
}

bool addMars(AppState &state, QObject *receiver, JobEnd end) {
    return AddChannelJob(state, receiver, {u"News"_s, u"Mars"_s, u"http://example.org/d"_s},
                         std::move(end));
}

bool deleteMoon(AppState &state, QObject *receiver, JobEnd end) {
    return startDeleteChannel(state, receiver, u"Moon"_s, std::move(end));
}

TEST_F(DataJobsTest, EachChangesWhatItIsToAndNothingElse) {
    for (const QString &name : {u"Planet"_s, u"Moon"_s, u"Star"_s}) {
        isAutoUpdated(device_.root, name); // which makes the list
        setAutoUpdate(device_.root, *device_.store, {u"http://example.org"_s, name, u"C"_s}, true);
        device_.store->DeleteChannel(name);
        device_.addChannel(name == u"Planet" ? u"News"_s : u"Science"_s, name,
                           {u"One"_s, u"Two"_s});
    }
    const auto unread = [this] {
        return SettingsStore(*device_.registry).dword(testTodayKey, u"UnreadItems");
    };
    EXPECT_TRUE(run(addMars));
    EXPECT_EQ(shown(), u"News: Mars Planet, Science: Moon Star, Sport: -");
    EXPECT_TRUE(run(deleteMoon));
    EXPECT_EQ(shown(), u"News: Mars Planet, Science: Star, Sport: -");
    EXPECT_EQ(device_.titles(u"Moon"_s), QStringList());
    EXPECT_EQ(automatic(), QStringList({u"Planet"_s, u"Star"_s}));
    EXPECT_EQ(unread(), 4U);
    EXPECT_TRUE(run(deleteScience));
    EXPECT_EQ(shown(), u"News: Mars Planet, Science: -, Sport: -");
    EXPECT_EQ(automatic(), QStringList({u"Planet"_s}));
    EXPECT_EQ(unread(), 2U);
    EXPECT_TRUE(run(renameNews));
    EXPECT_EQ(shown(), u"News: -, Science: -, Sport: Mars Planet");
    EXPECT_EQ(device_.titles(u"Planet"_s).size(), 2);
    EXPECT_EQ(checkStore(device_.root, *device_.registry), QStringList());
}

TEST_F(DataJobsTest, AChannelNeitherTakesAnotherOnesNameNorGoesOutOfReach) {
    device_.addChannel(u"Science"_s, u"Quark"_s, {u"One"_s, u"Two"_s});
    const auto change = [this](const ChannelProperties &from, const ChannelProperties &to) {
        EXPECT_TRUE(run([&](AppState &state, QObject *receiver, JobEnd end) {
            return startChangeChannel(state, receiver, from, to, std::move(end));
        }));
    };
    const QString link = u"http://example.org/feed"_s;
    change({u"Science"_s, u"Quark"_s, link}, {u"Science"_s, u"Star"_s, link});
    EXPECT_EQ(shown(), u"News: Planet, Science: Moon Quark Star, Sport: -");
    EXPECT_EQ(device_.titles(u"Star"_s), QStringList());
    EXPECT_EQ(device_.titles(u"Quark"_s), QStringList({u"One"_s, u"Two"_s}));
    // It goes to a category that somebody has deleted since it was offered.
    change({u"Science"_s, u"Quark"_s, link}, {u"Sport"_s, u"Up"_s, link});
    EXPECT_EQ(shown(), u"News: Planet, Science: Moon Star, Sport: Up");
    EXPECT_EQ(device_.titles(u"Up"_s), QStringList({u"One"_s, u"Two"_s}));
}

TEST_F(DataJobsTest, AFailureLeavesAllAsItWasAndItsOwnCode) {
    const QString before = shown();
    for (const char *change : {"INSERT", "UPDATE", "DELETE"})
        otherConnection()->run("CREATE TRIGGER no" + QByteArray(change) + " BEFORE " + change +
                               " ON RSSCHRecord BEGIN SELECT RAISE(ABORT, 'no'); END");
    for (auto *const job : {renameNews, deleteScience, addMars, deleteMoon}) {
        SetLastErrorCode(*device_.registry, 0);
        parts_.device.store->recordError(SeedFileMissing); // of long ago
        EXPECT_FALSE(run(job));
        EXPECT_EQ(shown(), before);
        EXPECT_EQ(device_.lastErrorCode(), DatabaseFailed);
    }
}

TEST_F(DataJobsTest, AStartSeedsCategoriesWhereThereAreNoneAndListsThoseOfChannels) {
    const auto start = [this] { DeviceParts(device_.root).open(); };
    CategoryListStore categories(*device_.registry);
    start();
    EXPECT_EQ(shown(), u"News: Planet, Science: Moon Star, Sport: -");
    device_.store->DeleteCategoryChannels(u"News"_s);
    categories.DeleteCategory(u"News"_s);
    device_.store->MoveChannel(u"Moon"_s, u"Sport"_s); // as a change that was cut short
    start();
    EXPECT_EQ(shown(), u"News: -, Science: Star, Sport: Moon");
    for (const QString &category : {u"Science"_s, u"Sport"_s}) {
        device_.store->DeleteCategoryChannels(category);
        categories.DeleteCategory(category);
    }
    start();
    EXPECT_EQ(shown(), u"News: , Science: , Sport: -");
}

} // namespace
} // namespace tidebrook
