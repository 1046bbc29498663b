#include "app/messages.h"
#include "kit/dialog.h"
#include "res/commands.h"
#include "res/strings.h"
#include "ui/reading_test.h"

#include <QTest>

namespace tidebrook {
namespace {

using ChannelListTest = ReadingTest;

bool seesListAlone(User &user) {
    return user.sees([&user] { return user.list()->hasFocus(); }) && user.seesQuiet();
}

TEST_F(ChannelListTest, StepsAndChoosesRoundAndRound) {
    const std::pair<Hand, QString> steps[]{
        {pressing(Qt::Key_Right), u"Travel"_s}, {pressing(Qt::Key_Right), u"News"_s},
        {pressing(Qt::Key_Left), u"Travel"_s},  {tapping(u"Next"_s), u"News"_s},
        {tapping(u"Previous"_s), u"Travel"_s},
    };
    for (const QString &name : {u"asteroid"_s, u"Belt 10"_s, u"Belt 9"_s, u"\u00C4gir"_s})
        device.addChannel(u"Travel"_s, name);
    const QHash<QString, QStringList> rows{
        {u"News"_s, {u"Planet"_s}},
        {u"Travel"_s, {u"\u00C4gir"_s, u"asteroid"_s, u"Belt 9"_s, u"Belt 10"_s, u"Comet"_s}}};
    run([&](User &user) {
        go(user, 1);
        EXPECT_TRUE(user.seesLines(scienceLines));
        for (const auto &[step, category] : steps) {
            step(user);
            EXPECT_TRUE(user.seesCaption(category) && user.seesRows(rows[category]));
            EXPECT_TRUE(user.seesQuiet() && user.seesSelected(0));
        }
        for (int i = 0; i < 2; ++i) {
            user.press(Qt::Key_F4);
            ASSERT_TRUE(user.seesChoices());
            user.press(Qt::Key_Home);
            user.press(Qt::Key_Down);
            user.press(Qt::Key_Return);
            ASSERT_TRUE(user.seesCaption(u"Science"_s) && user.seesLines(scienceLines));
        }
        for (const Hand &leave :
             {tapping(u"Category List"_s), tapping(u"Next"_s), pressing(Qt::Key_Tab)}) {
            user.press(Qt::Key_Down);
            user.tap(u"Science"_s);
            ASSERT_TRUE(user.seesChoices());
            leave(user);
            EXPECT_TRUE(seesListAlone(user) && user.seesSelected(0));
            EXPECT_TRUE(user.seesCaption(u"Science"_s));
        }
        user.tap(u"Category List"_s);
        EXPECT_TRUE(user.seesCaption(u"All Categories"_s));
    });
}

TEST_F(ChannelListTest, DeletesAfterAYesAloneAndWarnsWithoutARow) {
    for (const QString &name : {u"Planet"_s, u"Odd"_s})
        updateByItself(name, u"News"_s);
    run([&](User &user) {
        go(user, 1);
        user.press(Qt::Key_Down);
        user.act([&user] {
            for (int i = 0; i < 2; ++i) // a key that is pressed twice asks once
                QTest::keyClick(user.list(), Qt::Key_Delete);
        });
        ASSERT_TRUE(user.seesBox(deleteChannel, u"Odd"_s));
        user.look([&user] {
            const QRect row = user.list()->visualRect(user.list()->currentIndex());
            const QColor colour = user.list()->viewport()->grab(row).toImage().pixelColor(0, 0);
            EXPECT_EQ(colour, user.list()->palette().color(QPalette::Highlight)) << "told apart";
            const QPoint place = user.list()->viewport()->mapTo(&user.stack(), row.center());
            EXPECT_EQ(user.stack().childAt(place), user.stack().top()) << "beside the box itself";
        });
        expectBox(user, deleteChannel); // Enter is a No
        ASSERT_TRUE(user.seesQuiet() && user.seesNoBox());
        EXPECT_EQ(user.lines(), scienceLines);
        for (const QStringList &left :
             {QStringList{scienceLines[0], scienceLines[2]}, scienceLines.first(1), {}}) {
            user.choose({u"Delete Channel"_s});
            ASSERT_TRUE(user.seesBox(deleteChannel));
            user.tap(u"Yes"_s);
            EXPECT_TRUE(user.seesLines(left) && user.seesQuiet());
            user.press(Qt::Key_Down);
        }
        for (const Hand &act :
             {pressing(Qt::Key_Return), choosing({u"Update"_s}), pressing(Qt::Key_F5),
              choosing({u"Delete Channel"_s}), choosing({u"Properties"_s}),
              choosing({u"Export Channel"_s}), Hand(&User::tapBelowRows)}) {
            act(user);
            ASSERT_TRUE(user.seesBox(u"No channel selected!"_s));
            user.press(Qt::Key_Tab); // leads nowhere else
            expectBox(user, u"No channel selected!"_s);
        }
    });
    EXPECT_EQ(device.channelNames(u"Science"_s), QStringList());
    EXPECT_EQ(device.channelNames(u"News"_s), QStringList{u"Planet"_s});
    EXPECT_EQ(automatic(), QStringList{u"Planet http://example.org/feed News"_s});
    EXPECT_EQ(setting(u"UnreadItems", testTodayKey), 0U);
    EXPECT_EQ(checkStore(device.root, *device.registry), QStringList());
}

TEST_F(ChannelListTest, ARefreshWaitsBehindABoxAndTakesNoTapAway) {
    run([&](User &user) {
        go(user, 1);
        const auto refresh = [&] {
            qobject_cast<Dialog *>(user.stack().top())->post(CommandRefreshChannels);
        };
        user.press(Qt::Key_F4);
        ASSERT_TRUE(user.seesChoices());
        device.store->DeleteChannel(u"Star"_s);
        user.act([&] {
            refresh();
            ShowMessage(session->state(), warningString, nameExistsString);
        });
        expectBox(user, u"The name is exist!"_s);
        user.press(Qt::Key_Escape);
        ASSERT_TRUE(seesListAlone(user) && user.seesLines(scienceLines.first(2)));

        QPoint middle;
        user.look([&] {
            middle = user.list()->visualRect(user.list()->model()->index(1, 0)).center();
            QTest::mousePress(user.list()->viewport(), Qt::LeftButton, {}, middle);
            refresh();
        });
        ASSERT_TRUE(user.seesQuiet() && user.seesSelected(0));
        user.act([&] { QTest::mouseRelease(user.list()->viewport(), Qt::LeftButton, {}, middle); });
        EXPECT_TRUE(user.seesCaption(u"Odd"_s));
    });
}

TEST_F(ChannelListTest, AMenuIsAboutTheRowThatItWasOpenedForAlsoBehindARefresh) {
    run([&](User &user) {
        go(user, 1);
        for (const bool isGone : {false, true}) {
            user.press(Qt::Key_Home);
            user.press(Qt::Key_Down);
            user.press(Qt::Key_F10);
            ASSERT_TRUE(user.seesPopup());
            if (isGone)
                device.store->DeleteChannel(u"Odd"_s);
            user.look(
                [&] { qobject_cast<Dialog *>(user.stack().top())->post(CommandRefreshChannels); });
            ASSERT_TRUE(user.seesQuiet() && user.seesSelected(0));
            user.press(Qt::Key_D);
            user.press(Qt::Key_Return);
            if (isGone)
                expectBox(user, u"No channel selected!"_s);
            else
                expectBox(user, deleteChannel, u"Odd"_s); // Enter is a No
        }
    });
}

TEST_F(ChannelListTest, WhatIsDoneWhileListsFillIsDoneToTheListThatComes) {
    QStringList titles;
    for (int i = 0; i < 110; ++i)
        titles.append(u"title %1"_s.arg(i));
    device.addChannel(u"Travel"_s, u"Sun"_s, titles);
    run([&](User &user) {
        auto held = session->state().device.store.lock();
        user.press(Qt::Key_Return);
        ASSERT_TRUE(user.seesCaption(u"News"_s));
        for (const int key : {Qt::Key_Left, Qt::Key_Left, Qt::Key_Right, Qt::Key_Down})
            user.press(key);
        held.unlock();
        EXPECT_TRUE(user.seesRows({u"Comet"_s, u"Sun"_s}) && user.seesQuiet());
        held.lock();
        user.press(Qt::Key_Return);
        ASSERT_TRUE(user.seesCaption(u"Comet"_s));
        user.choose({u"Show Unread Only"_s});
        for (int i = 0; i < 9; ++i)
            user.press(i < 5 ? Qt::Key_Left : Qt::Key_Right);
        held.unlock();
        EXPECT_TRUE(user.seesCaption(u"Sun"_s) && user.seesQuiet());
        EXPECT_EQ(user.rows(), device.titles(u"Sun"_s, SortMode::UnreadOnly));
    });
}

} // namespace
} // namespace tidebrook
