#include "feed_server/generated_feed.h"
#include "kit/layer.h"
#include "kit/list_view.h"
#include "kit/menu_bar.h"
#include "kit/progress_line.h"
#include "platform/desktop/service.h"
#include "res/commands.h"
#include "service/running_service.h"
#include "ui/test_session.h"

#include <QElapsedTimer>

#include <csignal>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

/// Three channels in each of three categories, and the real downloader.
class ReadingSessionTest : public RunningService {
protected:
    void SetUp() override {
        publish(2);
        for (const QString &category : {u"B"_s, u"C"_s, u"D"_s}) {
            for (const QChar name : all.sliced((category[0].unicode() - u'B') * 3, 3))
                ok(u"add --create --feed 0 %1 %2 %3"_s.arg(category, name,
                                                           server_.url(path(name))));
        }
        start();
    }
    void publish(int items) {
        for (const QChar name : all)
            server_.serve(path(name), generatedFeed(items, name.unicode()));
    }
    static QString path(QChar name) { return u'/' + QString(name); }
    /// "unread/total" of all channels, by name.
    QString stored() {
        QStringList texts;
        for (const QString &line : CtlTest::run(u"channels"_s).lines())
            texts.append(line.section(u'\t', 0, 0));
        return texts.join(u' ');
    }
    /// The user is before the categories, the second of which is selected.
    void run(const Hand &user) {
        session_ = std::make_unique<TestSession>(root_);
        EXPECT_TRUE(session_->run([&](User &someone) {
            ASSERT_TRUE(someone.seesRows({u"B"_s, u"C"_s, u"D"_s}) && someone.seesQuiet());
            someone.press(Qt::Key_Down);
            user(someone);
        }));
    }
    /// The user is before the channels of C.
    void runInC(const Hand &user) {
        run([&](User &someone) {
            someone.press(Qt::Key_Return);
            ASSERT_TRUE(someone.seesRows({u"d"_s, u"e"_s, u"f"_s}) && someone.seesQuiet());
            user(someone);
        });
    }
    bool seesUpdating(User &user, bool isUpdating, int command = CommandUpdateChannel) {
        return user.sees([&user, isUpdating, command] {
            const auto *menu = user.stack().top()->findChild<MenuBar *>();
            return menu != nullptr && menu->isEnabled(command) != isUpdating &&
                   user.stack().progressLine().isAtWork() == isUpdating;
        });
    }
    const QString all = u"abcdefghi"_s;
    std::unique_ptr<TestSession> session_;
};

TEST_F(ReadingSessionTest, EveryUpdateIsThatOfWhatIsSelectedAndIsShown) {
    const Hand update = choosing({u"Update"_s});
    const Hand updateAndOpen = [&](User &user) {
        update(user);
        ASSERT_TRUE(user.seesQuiet());
        user.press(Qt::Key_Return);
    };
    const struct {
        const char *what;
        Hand act;
        QStringList lines;
        QString stored;
    } updates[]{
        {"category", updateAndOpen, {u"d: 2/2"_s, u"e: 2/2"_s, u"f: 2/2"_s}, u"2/2 2/2 2/2"_s},
        {"a channel", update, {u"d: 2/2"_s, u"e: 3/3"_s, u"f: 2/2"_s}, u"2/2 3/3 2/2"_s},
        {"by key", pressing(Qt::Key_F5), {u"d: 2/2"_s, u"e: 4/4"_s, u"f: 2/2"_s}, u"2/2 4/4 2/2"_s},
        {"all",
         choosing({u"Update All"_s}),
         {u"d: 5/5"_s, u"e: 5/5"_s, u"f: 5/5"_s},
         u"5/5 5/5 5/5"_s},
    };
    const QString none = u"0/0 0/0 0/0"_s;
    run([&](User &user) {
        int items = 1;
        for (const auto &each : updates) {
            SCOPED_TRACE(each.what);
            publish(++items);
            each.act(user);
            ASSERT_TRUE(user.seesLines(each.lines) && user.seesQuiet());
            EXPECT_EQ(stored(), none + u' ' + each.stored + u' ' + none);
            user.press(Qt::Key_Home);
            user.press(Qt::Key_Down);
            ASSERT_TRUE(user.seesSelected(1));
        }
        user.press(Qt::Key_Return);
        ASSERT_TRUE(user.seesCaption(u"e"_s) && user.seesQuiet());
        EXPECT_EQ(user.rows().size(), 5);
        for (const Hand &act : {update, pressing(Qt::Key_F5)}) {
            publish(++items);
            act(user);
            ASSERT_TRUE(user.sees([&] { return user.list()->rowCount() == items; }));
            ASSERT_TRUE(user.seesQuiet());
        }
        user.press(Qt::Key_Escape);
        ASSERT_TRUE(user.seesLines({u"d: 5/5"_s, u"e: 7/7"_s, u"f: 5/5"_s}));
        user.press(Qt::Key_Right); // not what is selected in the list of categories
        ASSERT_TRUE(user.seesLines({u"g: 0/0"_s, u"h: 0/0"_s, u"i: 0/0"_s}) && user.seesQuiet());
        user.choose({u"Update All"_s});
        ASSERT_TRUE(user.seesLines({u"g: 7/7"_s, u"h: 7/7"_s, u"i: 7/7"_s}) && user.seesQuiet());
    });
    EXPECT_EQ(stored(), none + u" 5/5 7/7 5/5 7/7 7/7 7/7");
    expectSound();
}

TEST_F(ReadingSessionTest, WhatCannotBeUpdatedIsToldAndAnotherUpdateIsPossible) {
    const QString reading = u"Encountering Problem when Reading Feed information"_s;
    const std::pair<std::function<void()>, QString> faults[]{
        {[&] { server_.answerStatus(u"/e"_s, 404); }, reading}, // whose answer is empty
        {[&] { server_.resetHalfWay(u"/e"_s, generatedFeed(9, 1)); },
         u"Encountering Internet Problem"_s},
        {[&] { server_.serve(u"/e"_s, "<html/>"); }, reading},
        {[&] { server_.hang(u"/e"_s); }, u"Encountering Unidentified Problem"_s}};
    const auto seesItTold = [](User &user, const QString &message) {
        expectBox(user, message, u"e"_s);
        EXPECT_TRUE(user.seesSelected(1));
        ASSERT_TRUE(user.seesQuiet());
    };
    faults[0].first();
    run([&](User &user) {
        user.look([&] { // another row is selected meanwhile
            QObject::connect(&session_->state().updates, &UpdateJobs::begun, &user.stack(),
                             [&user] { user.list()->selectRow(0); });
        });
        user.press(Qt::Key_F5);
        seesItTold(user, reading);
        user.press(Qt::Key_Return);
        ASSERT_TRUE(user.seesLines({u"d: 2/2"_s, u"e: 0/0"_s, u"f: 0/0"_s}) && user.seesQuiet());
        for (const auto &[prepare, message] : faults) {
            prepare();
            const bool isSilent = message.contains(u"Unidentified");
            user.look([&] { session_->state().updates.setAnswerTimeout(isSilent ? 300ms : 60s); });
            user.act([&user] { user.list()->selectRow(1); });
            user.press(Qt::Key_F5);
            seesItTold(user, message);
            ASSERT_TRUE(seesUpdating(user, false));
        }
        user.look([&] { session_->state().updates.setAnswerTimeout(60s); });
        kill(*runningService(root_), SIGKILL); // what another one brings is shown
        waitFor([this] { return !runningService(root_); });
        publish(3);
        user.choose({u"Update"_s});
        EXPECT_TRUE(user.seesLines({u"d: 2/2"_s, u"e: 3/3"_s, u"f: 0/0"_s}) && user.seesNoBox());
    });
    expectSound();
}

TEST_F(ReadingSessionTest, AWaitEndsByAKeyAndAllOfThemByTheClosedWindow) {
    for (const QChar name : {u'e', u'f'})
        server_.hang(path(name));
    QElapsedTimer timer;
    runInC([&](User &user) {
        user.choose({u"Update All"_s});
        ASSERT_TRUE(user.seesLines({u"d: 2/2"_s, u"e: 0/0"_s, u"f: 0/0"_s})) << "one by one";
        ASSERT_TRUE(seesUpdating(user, true) && seesUpdating(user, true, CommandUpdateAll));
        waitFor([&] { return server_.requests().size() == 2; });
        user.press(Qt::Key_Return); // ends the wait for e and opens the articles of d
        ASSERT_TRUE(user.seesCaption(u"d"_s));
        waitFor([&] { return server_.requests().size() == 3; }); // the run goes on to f
        EXPECT_TRUE(seesUpdating(user, true, CommandUpdateArticles));
        timer.start();
        user.closeWindow();
    });
    session_.reset();
    EXPECT_LT(timer.elapsed(), 20'000) << "the servers' own limit is longer";
}

TEST_F(ReadingSessionTest, OpenListsFollowAnotherProgramAndStayWhereTheyAre) {
    run([&](User &user) {
        ok(u"delete-category B"_s);
        ASSERT_TRUE(user.seesRows({u"C"_s, u"D"_s}) && user.seesSelected(0));
        user.press(Qt::Key_F2);
        ASSERT_TRUE(user.seesEditor(u"C"_s));
        user.type(u"X"_s);
        ok(u"add-category E"_s);
        ASSERT_TRUE(user.seesQuiet() && user.seesEditor(u"X"_s));
        user.press(Qt::Key_Escape);
        ASSERT_TRUE(user.seesRows({u"C"_s, u"D"_s, u"E"_s}) && user.seesSelected(0));

        user.press(Qt::Key_Return);
        ASSERT_TRUE(user.seesRows({u"d"_s, u"e"_s, u"f"_s}) && user.seesQuiet());
        user.press(Qt::Key_Down);
        publish(9);
        ok(u"update C"_s);
        ASSERT_TRUE(user.seesLines({u"d: 9/9"_s, u"e: 9/9"_s, u"f: 9/9"_s}));
        ok(u"delete d"_s);
        ASSERT_TRUE(user.seesLines({u"e: 9/9"_s, u"f: 9/9"_s}) && user.seesSelected(0));

        user.press(Qt::Key_Return);
        ASSERT_TRUE(user.sees([&] { return user.list()->rowCount() == 9; }) && user.seesQuiet());
        for (int i = 0; i < 7; ++i)
            user.press(Qt::Key_Down); // and the list scrolls
        ASSERT_TRUE(user.seesSelected(7));
        const auto place = [&user] {
            const ListView &list = *user.list();
            return QStringList{list.rowText(SelectedRow(&list)),
                               list.rowText(list.indexAt({0, 0}).row())};
        };
        QStringList before;
        user.look([&] { before = place(); });
        server_.serve(path(u'e'), generatedFeed(5, u'e', 100));
        ok(u"update C e"_s);
        EXPECT_TRUE(user.sees([&] { return user.list()->rowCount() == 9 + 5; }));
        user.look([&] { EXPECT_EQ(place(), before); });
    });
}

} // namespace
} // namespace tidebrook
