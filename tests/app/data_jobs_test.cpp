#include "app/base/data_jobs.h"
#include "platform/sqlite_database.h"
#include "store/error_codes.h"
#include "store/store_check.h"
#include "support/forked_process.h"
#include "support/test_device.h"
#include "ui/kit/screen_stack.h"
#include "update/auto_list.h"

#include <QTest>

#include <gtest/gtest.h>

#include <unistd.h>

#include <functional>
#include <optional>
#include <random>
#include <semaphore>
#include <thread>

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

// As the screen does it, which takes it off the list first.
bool deleteScience(AppState &state, QObject *receiver, JobEnd end) {
    state.changes.tell(
        [&device = state.device] { device.categoryStore.DeleteCategory(u"Science"_s); });
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

TEST_F(DataJobsTest, LongNamesAreCutEverywhereAlike) {
    const QString name(60, u'x');
    const auto in = [&name](int length) { return name.left(length); };
    EXPECT_TRUE(run([&](AppState &state, QObject *receiver, JobEnd end) {
        return startRenameCategory(state, receiver, name, u"News"_s, std::move(end));
    }));
    EXPECT_EQ(shown(in(40)), u"Planet");
    EXPECT_TRUE(run([&](AppState &state, QObject *receiver, JobEnd end) {
        return AddChannelJob(state, receiver, {name, name, u"http://example.org"_s},
                             std::move(end));
    }));
    QString category;
    device_.store->FindCategory(in(50), category);
    EXPECT_EQ(category, in(40));
    EXPECT_EQ(shown(name), u"-");
    EXPECT_TRUE(run([&](AppState &state, QObject *receiver, JobEnd end) {
        return startDeleteChannel(state, receiver, name, std::move(end));
    }));
    EXPECT_EQ(shown(in(40)), u"Planet");
    EXPECT_TRUE(run([&](AppState &state, QObject *receiver, JobEnd end) {
        return startDeleteCategory(state, receiver, name, std::move(end));
    }));
    EXPECT_EQ(shown(in(40)), u"");
    EXPECT_TRUE(CategoryListStore(*device_.registry).DeleteCategory(in(40)))
        << "it is not stored under the name that is listed";
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

TEST_F(DataJobsTest, ARenameThatTheDatabaseIsLockedForIsUndone) {
    const QString before = shown();
    const auto other = otherConnection();
    SqliteTransaction writing(*other);
    ASSERT_TRUE(writing.isOpen());
    EXPECT_FALSE(run(renameNews));
    EXPECT_EQ(shown(), before);
    EXPECT_EQ(device_.lastErrorCode(), DatabaseFailed);
}

// --- killed ---

void waitForAll(AppState &state) {
    std::binary_semaphore isDone(0);
    state.changes.tell([&isDone] { isDone.release(); });
    isDone.acquire();
}

void renameForEver(Parts &parts) {
    QString name;
    parts.device.store->FindCategory(u"Planet"_s, name);
    for (int i = 0;; ++i) {
        const QString next = QStringLiteral("%1 %2").arg(getpid()).arg(i);
        startRenameCategory(parts.state, nullptr, next, name, {});
        waitForAll(parts.state);
        name = next;
    }
}

void deleteForEver(Parts &parts) {
    for (;;) {
        parts.state.changes.tell([&device = parts.device] {
            device.categoryStore.AddCategory(u"Science"_s);
            device.store->InsertChannel({u"Science"_s, u"Moon"_s, u"http://example.org/b"_s});
        });
        deleteScience(parts.state, nullptr, {});
        waitForAll(parts.state);
    }
}

struct KillCase {
    const char *what;
    void (*work)(Parts &);
    bool needsNextStart; // which makes it good
};

class KilledReader : public testing::TestWithParam<KillCase> {};

TEST_P(KilledReader, LeavesEveryChannelInAListedCategory) {
    TestDevice device(seed);
    device.store.reset(); // nothing of it may be open in a forked process
    device.registry.reset();
    const SharedCount begun;
    std::mt19937 random(2026);
    for (int round = 0; round < 15; ++round) {
        ForkedProcess reader([&] {
            Parts parts(device.root);
            begun.add();
            GetParam().work(parts);
            return 0;
        });
        ASSERT_EQ(begun.take(), 1U);
        std::this_thread::sleep_for(
            std::chrono::microseconds(std::uniform_int_distribution(0, 40'000)(random)));
        reader.kill();
        reader.wait();
        if (GetParam().needsNextStart)
            const Parts next(device.root);
        Registry registry(device.root);
        EXPECT_EQ(checkStore(device.root, registry), QStringList());
    }
}

INSTANTIATE_TEST_SUITE_P(All, KilledReader,
                         testing::Values(KillCase{"RenamingACategory", renameForEver, false},
                                         KillCase{"DeletingACategory", deleteForEver, true}),
                         [](const auto &test) { return std::string(test.param.what); });

} // namespace
} // namespace tidebrook
