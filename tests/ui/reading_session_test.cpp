#include "feed_server/generated_feed.h"
#include "platform/service.h"
#include "res/commands.h"
#include "service/running_service.h"
#include "ui/kit/layer.h"
#include "ui/kit/list_view.h"
#include "ui/kit/menu_bar.h"
#include "ui/kit/progress_line.h"
#include "ui/session.h"

#include <QElapsedTimer>

#include <csignal>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

/// Three channels in the category C, and the real downloader.
class ReadingSessionTest : public RunningService {
protected:
    void SetUp() override {
        for (const QString &name : {u"a"_s, u"b"_s, u"c"_s}) {
            addChannel(name);
            publish(name, 2);
        }
        start();
    }
    void publish(const QString &name, int items) {
        server_.serve(u'/' + name, generatedFeed(items, name[0].unicode()));
    }
    /// The user is before the channels of C.
    void run(const std::function<void(User &)> &user) {
        session_ = std::make_unique<Session>(root_);
        EXPECT_TRUE(session_->run([&](User &someone) {
            ASSERT_TRUE(someone.sees([&] { return someone.list()->rowCount() > 0; }) &&
                        someone.seesQuiet());
            someone.press(Qt::Key_Return);
            ASSERT_TRUE(someone.seesRows({u"a"_s, u"b"_s, u"c"_s}) && someone.seesQuiet());
            user(someone);
        }));
        EXPECT_LT(session_->longestBlocked(), 500ms);
    }
    bool seesUpdating(User &user, bool isUpdating, int command = CommandUpdateChannel) {
        return user.sees([&user, isUpdating, command] {
            const auto *menu = user.stack().top()->findChild<MenuBar *>();
            return menu != nullptr && menu->isEnabled(command) != isUpdating &&
                   user.stack().progressLine().isAtWork() == isUpdating;
        });
    }
    std::unique_ptr<Session> session_;
};

TEST_F(ReadingSessionTest, FromTheFirstUpdateToTheLastArticle) {
    ctl_.run({u"add-category"_s, u"D"_s});
    addChannel(u"z"_s);
    ctl_.run({u"move"_s, u"z"_s, u"D"_s});
    run([&](User &user) {
        ASSERT_TRUE(user.seesLines({u"a: 0/0"_s, u"b: 0/0"_s, u"c: 0/0"_s}));
        QStringList seen;
        user.look([&] {
            const auto note = [&] {
                seen.append(QString());
                for (int row = 0; row < 3; ++row)
                    seen.last() += user.list()->row(row).detail + u' ';
            };
            QObject::connect(user.list()->model(), &QAbstractItemModel::dataChanged, note);
            QObject::connect(user.list()->model(), &QAbstractItemModel::modelReset, note);
        });
        user.choose({u"Update All"_s});
        ASSERT_TRUE(user.seesLines({u"a: 2/2"_s, u"b: 2/2"_s, u"c: 2/2"_s}) && user.seesQuiet());
        EXPECT_EQ(seen, QStringList({u"2/2 0/0 0/0 "_s, u"2/2 2/2 0/0 "_s, u"2/2 2/2 2/2 "_s}));

        user.press(Qt::Key_Return);
        ASSERT_TRUE(user.seesCaption(u"a"_s) && user.seesQuiet());
        const QStringList titles = user.rows();
        EXPECT_EQ(titles.size(), 2);
        user.choose({u"Show Unread Only"_s});
        ASSERT_TRUE(user.seesRows(titles) && user.seesQuiet());
        user.press(Qt::Key_Return);
        ASSERT_TRUE(user.seesPage(titles[0]) && user.seesQuiet());
        user.choose({u"Font Size"_s, u"Big"_s});
        user.press(Qt::Key_Escape);
        EXPECT_TRUE(user.seesRows(titles.last(1)) && user.seesQuiet());
        EXPECT_TRUE(user.sees([&] { return user.list()->font().pointSize() == 13; }));
        user.press(Qt::Key_Escape);
        EXPECT_TRUE(user.seesLines({u"a: 1/2"_s, u"b: 2/2"_s, u"c: 2/2"_s}) && user.seesQuiet());
        user.press(Qt::Key_Left);
        EXPECT_TRUE(user.seesCaption(u"D"_s) && user.seesLines({u"z: 0/0"_s}));
    });
    expectSound();
}

TEST_F(ReadingSessionTest, WhatCannotBeUpdatedIsToldAndAnotherUpdateIsPossible) {
    const QString internet = u"Encountering Internet Problem"_s;
    const std::pair<std::function<void()>, QString> faults[]{
        {[&] { server_.answerStatus(u"/a"_s, 404); }, internet},
        {[&] { server_.resetHalfWay(u"/a"_s, generatedFeed(9, 1)); }, internet},
        {[&] { server_.serve(u"/a"_s, "<html/>"); },
         u"Encountering Problem when Reading Feed information"_s},
        {[&] { server_.hang(u"/a"_s); }, u"Encountering Unidentified Problem"_s}};
    run([&](User &user) {
        for (const auto &[prepare, message] : faults) {
            prepare();
            const bool isSilent = message.contains(u"Unidentified");
            user.look([&] { session_->state().updates.setAnswerTimeout(isSilent ? 300ms : 60s); });
            user.press(Qt::Key_F5);
            ASSERT_TRUE(user.seesBox(message)) << message.toStdString();
            user.press(Qt::Key_Return);
            ASSERT_TRUE(user.seesNoBox() && seesUpdating(user, false));
        }
        user.look([&] { session_->state().updates.setAnswerTimeout(60s); });
        kill(*runningService(root_), SIGKILL); // what another one brings is shown
        waitFor([this] { return !runningService(root_); });
        publish(u"a"_s, 3);
        user.choose({u"Update"_s});
        EXPECT_TRUE(user.seesLines({u"a: 3/3"_s, u"b: 0/0"_s, u"c: 0/0"_s}) && user.seesNoBox());
    });
    expectSound();
}

TEST_F(ReadingSessionTest, AWaitEndsByAKeyAndAllOfThemByTheClosedWindow) {
    for (const QString &name : {u"a"_s, u"c"_s})
        server_.hang(u'/' + name);
    QElapsedTimer timer;
    run([&](User &user) {
        user.choose({u"Update All"_s});
        ASSERT_TRUE(seesUpdating(user, true) && seesUpdating(user, true, CommandUpdateAll));
        waitFor([&] { return server_.requests().size() == 1; });
        user.press(Qt::Key_Return); // ends the wait for a and opens its articles
        ASSERT_TRUE(user.seesCaption(u"a"_s));
        waitFor([&] { return server_.requests().size() == 3; }); // the run goes on to c
        EXPECT_TRUE(seesUpdating(user, true, CommandUpdateArticles));
        timer.start();
        user.closeWindow();
    });
    session_.reset();
    EXPECT_LT(timer.elapsed(), 2000);
    EXPECT_EQ(counts(u"b"_s), u"2/2");
}

} // namespace
} // namespace tidebrook
