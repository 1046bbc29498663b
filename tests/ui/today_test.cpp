#include "app/running_reader.h"
#include "kit/layer.h"
#include "platform/sql/sqlite_database.h"
#include "platform/sync/named_event.h"
#include "support/fake_opener.h"
#include "today/today_item.h"
#include "ui/reading_test.h"

#include <QDir>
#include <QTest>

#include <algorithm>

namespace tidebrook {
namespace {

class TodayTest : public ReadingTest {
protected:
    TodayTest() {
        device.addChannel(u"Travel"_s, u"Sun"_s, {u"a"_s, u"b"_s, u"c"_s});
        device.registry->write(testTodayKey, u"Enabled", 1U);
    }

    void tapHeadline(NamedEvent &tapped, const QString &channel, const QString &title,
                     const QString &category = u"Travel"_s) {
        device.registry->write(testTodayKey, u"CATEGORY", category);
        device.registry->write(testTodayKey, u"CHANNEL", channel);
        device.registry->write(testTodayKey, u"TITLE", title);
        tapped.set();
    }
    bool isOffered(const QString &title) {
        return SettingsStore(*device.registry).text(testTodayKey, u"TITLE", 255) == title;
    }
    /// Taps the headline when the Today item shows it, and has it step on otherwise.
    bool tap(const Headline &headline) {
        HeadlineStrip &strip = item->strip();
        const bool isShown = strip.headline() == headline;
        isShown ? strip.click() : QTest::keyClick(&strip, Qt::Key_Down);
        return isShown;
    }
    /// Whether a program runs that the item has started. It ends when the reader has answered it.
    bool isAnyStarting() const {
        const QByteArray home = "TIDEBROOK_HOME=" + device.root.path().toUtf8() + '\0';
        const QStringList processes = QDir(u"/proc"_s).entryList(QDir::Dirs);
        return std::ranges::any_of(processes, [&](const QString &process) {
            QFile environment(u"/proc/%1/environ"_s.arg(process));
            return environment.open(QIODevice::ReadOnly) && environment.readAll().contains(home);
        });
    }
    static void goBack(User &user) {
        for (int back = 0; back < 3; ++back) { // and stays in the first list
            user.press(Qt::Key_Escape);
            ASSERT_TRUE(user.seesQuiet());
        }
        ASSERT_TRUE(user.seesCaption(u"All Categories"_s)) << "nothing leads there again";
        user.press(Qt::Key_Home);
    }

    std::optional<TodayItem> item; // used by the reader's thread
};

TEST_F(TodayTest, AHeadlineThatIsTappedIsOpenedWhereverTheUserIsAndSettingsHoldAtOnce) {
    const Hand stay = [](User &) {};
    const Hand leave = pressing(Qt::Key_Escape);
    const Hand hide = [](User &user) { user.act([&] { user.stack().hide(); }); };
    const Hand minimise = [](User &user) {
        user.act([&] { user.stack().setWindowState(Qt::WindowMinimized); });
    };
    const struct {
        const char *what;
        int screen;
        Hand go;
        Hand leave = {};
    } places[]{
        {"categories", 0, stay},
        {"channels", 1, stay},
        {"articles", 2, stay},
        {"an article", 3, stay},
        {"a name being typed", 0, pressing(Qt::Key_F2)},
        {"a question", 0, pressing(Qt::Key_Delete), leave},
        {"a warning over an article", 3, choosing({u"Send Link via SMS"_s}), leave},
        {"settings", 0, choosing({u"Setting"_s}), leave},
        {"the wizard", 1, choosing({u"New Channel"_s}), leave},
        {"properties", 1, choosing({u"Properties"_s}), leave},
        {"a file dialog", 3, choosing({u"Save Link"_s}), leave},
        {"help", 0, pressing(Qt::Key_F1), leave},
        {"a window that is hidden", 0, hide},
        {"a window that is minimised", 1, minimise},
    };
    const auto visit = [&](User &user, const auto &place) {
        SCOPED_TRACE(place.what);
        go(user, place.screen);
        place.go(user);
        ASSERT_TRUE(user.seesQuiet());
        device.store->MarkChannelUnread(u"Sun"_s);
        device.registry->write(testTodayKey, u"TITLE", u""_s);
        ASSERT_TRUE(user.sees([this] { return tap({u"Travel"_s, u"Sun"_s, u"b"_s}); }));
        EXPECT_TRUE(user.sees([&] { return isOffered(u"b"_s); }));
        // The reader looks for a tap at each start that finds it running.
        EXPECT_EQ(SingleInstance(device.root).claim(10s), SingleInstance::Claim::BroughtForward);
        EXPECT_TRUE(
            user.sees([&] { return user.stack().isVisible() && !user.stack().isMinimized(); }));
        EXPECT_TRUE(user.seesQuiet());
        if (place.leave)
            place.leave(user);
        EXPECT_TRUE(user.seesPage(u"Sun"_s) && user.seesQuiet());
        goBack(user);
    };
    FakeOpener opener;
    opener.remove(); // a message is refused at once
    EXPECT_TRUE(runReader(device.root, [&](User &user) {
        EXPECT_TRUE(user.seesRows(seeded) && user.seesQuiet());
        user.look([&] { item.emplace(TodayArguments{device.root, Place::Window}); });
        for (const auto &place : places) {
            if (!HasFatalFailure())
                visit(user, place);
        }
        user.look([&] { item->menu().settingsChosen(); });
        EXPECT_TRUE(user.seesCaption(u"Today Setting"_s) && user.seesQuiet());
        user.tap(u"Enable Today Plugin."_s);
        user.tap(u"Done"_s);
        EXPECT_TRUE(user.sees([&] { return !item->strip().isVisible(); }));
        EXPECT_TRUE(user.sees([&] { return !isAnyStarting(); })) << "else it becomes a reader";
        user.look([&] { item.reset(); });
    }));
    EXPECT_EQ(device.counts(u"Travel"_s, u"Sun"_s), u"2/3");
}

TEST_F(TodayTest, AHeadlineThatHasGoneEndsInAListAndOneThatIsToldLateWaitsForWhatIsOpen) {
    NamedEvent tapped(device.root, u"CLKTODAY", NamedEvent::Reset::Auto);
    tapHeadline(tapped, u"Gone"_s, u"b"_s);
    session = std::make_unique<TestSession>(device.root); // tapped before the reader was started
    EXPECT_TRUE(session->run([&](User &user) {
        const auto leave = [&user] {
            ASSERT_TRUE(user.seesCaption(u"Travel"_s) && user.seesQuiet());
            goBack(user);
        };
        leave();
        tapHeadline(tapped, u"Sun"_s, u""_s);
        user.leaveAndReturn();
        EXPECT_TRUE(user.seesQuiet() && user.seesCaption(u"All Categories"_s));
        EXPECT_FALSE(tapped.test()) << "a headline without a title is nowhere";
        for (const int key : {Qt::Key_Delete, Qt::Key_Return}) {
            closeGate(user, &AppState::settings);
            tapHeadline(tapped, u"Gone"_s, u"b"_s);
            user.leaveAndReturn();
            user.press(key);
            const bool isQuestion = key == Qt::Key_Delete;
            EXPECT_TRUE(isQuestion ? user.seesBox(deleteCategory) : user.seesCaption(u"News"_s));
            gate.release();
            if (isQuestion) {
                ASSERT_TRUE(user.seesQuiet());
                user.tap(u"No"_s);
            }
            leave(); // it also leads there from what was chosen meanwhile
        }
        for (int i = 0; i < 8; ++i) {
            SCOPED_TRACE(i);
            go(user, i % 4);
            tapHeadline(tapped, i < 4 ? u"Sun"_s : u"Gone"_s, i < 4 ? u"Gone"_s : u"b"_s);
            user.leaveAndReturn();
            ASSERT_TRUE(user.seesQuiet() && user.seesNoBox());
            EXPECT_TRUE(user.sees([&user] { return user.list() != nullptr; }));
            goBack(user);
        }
    }));
    EXPECT_EQ(device.counts(u"Travel"_s, u"Sun"_s), u"3/3");
}

TEST_F(TodayTest, AHeadlineOfANewCategoryIsOpenedAndOneThatCannotBeReadLeavesTheArticle) {
    NamedEvent tapped(device.root, u"CLKTODAY", NamedEvent::Reset::Auto);
    const auto other = SqliteDatabase::open(device.root.filePath(u"\\RSSVault.sdf"), {});
    run([&](User &user) {
        go(user, 1);
        device.addChannel(u"Later"_s, u"New"_s, {u"n"_s});
        CategoryListStore(*device.registry).AddCategory(u"Later"_s);
        tapHeadline(tapped, u"New"_s, u"n"_s, u"Later"_s);
        user.leaveAndReturn();
        ASSERT_TRUE(user.seesPage(u"New"_s) && user.seesQuiet());
        goBack(user);

        go(user, 3);
        {
            const SqliteTransaction writing(*other);
            tapHeadline(tapped, u"Sun"_s, u"b"_s);
            user.leaveAndReturn();
            expectBox(user, databaseProblem);
        }
        EXPECT_TRUE(user.seesCaption(u"Moon"_s));
        user.press(Qt::Key_Right);
        EXPECT_TRUE(user.seesPage(u"2026-01-27"_s) && user.seesQuiet());
    });
}

} // namespace
} // namespace tidebrook
