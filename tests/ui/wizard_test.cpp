#include "ui/sharing_test.h"

#include <QLineEdit>

namespace tidebrook {
namespace {

const QString internetProblem = u"Encountering Internet Problem"_s;
const QString feedProblem = u"Encountering Problem when Reading Feed information"_s;
const QString wrongUrl = u"The URL format is wrong!"_s;

QStringList firstPage(const QString &address) {
    return {u"x Input from URL"_s, u"- Import from a file"_s, address};
}
const QStringList categoryPage{u"News [Science] Travel"_s};

const QByteArray list = R"opml(<?xml version="1.0"?><opml version="2.0"><body>
  <outline text="Folder"><outline text="One" type="rss" xmlUrl="http://Example.org/One"/></outline>
  <outline text="Other" type="RSS" xmlUrl="http://example.org/hole"/>
  <outline text="Two" type="link" url="http://example.org/two"/>
  <outline text="Three" type="rss" xmlUrl="javascript:alert(1)"/>
  <outline text="Bad" type="rss" xmlUrl="http://example.org/it's"/></body></opml>)opml";

class WizardTest : public SharingTest {
protected:
    static void openWizard(User &user) {
        user.choose({u"New Channel"_s});
        ASSERT_TRUE(user.seesControls(firstPage(u"http://"_s)));
    }
    /// Types an address behind the scheme and goes on.
    static void enter(User &user, const QString &rest) {
        openWizard(user);
        user.type(rest);
        user.press(Qt::Key_Return);
    }
};

TEST_F(WizardTest, AFeedIsAddedUnderTheTitleThatItHas) {
    const std::pair<QByteArray, QString> feeds[]{
        {"<?xml version='1.0'?><RSS><title>Sea &amp; Air</title>", u"Sea &amp; Air"_s},
        {"<rss><title>\n\tSea\r\n air \n</title>", u"Sea   air"_s},
        {"<rss><channel>", u"New Channel"_s},
        {"<rss><title> </title>", u"New Channel 0"_s},
    };
    runInScience([&](User &user) {
        for (const auto &feed : feeds) {
            SCOPED_TRACE(feed.first.constData());
            const QString path = u"/feed%1.xml"_s.arg(user.rows().size());
            server.serve(path, feed.first);
            enter(user, u"LocalHost"_s + path.toUpper());
            ASSERT_TRUE(user.seesControls(categoryPage));
            user.tap(u"Finish"_s);
            ASSERT_TRUE(user.seesPart<ListView>(
                [&](auto &rows) { return rows.findRow(feed.second) >= 0; }));
            EXPECT_TRUE(
                channels(u"Science"_s).contains(feed.second + u" http://localhost"_s + path));
        }
        EXPECT_EQ(user.rows().size(), 7);
    });
    EXPECT_EQ(device.channelNames(u"Science"_s).size(), 7);
}

TEST_F(WizardTest, AnAddressIsRefusedOrTakenForAFeedThatIsOutOfReach) {
    server.answerStatus(u"/gone.opml"_s, 404, "<html>");
    const QString longest = u"https://127.0.0.2/"_s + QString(493, u'X');
    runInScience([&](User &user) {
        enter(user, u"a.bc"_s); // with the scheme 11 characters
        expectBox(user, wrongUrl);
        user.type(u"d"_s);
        user.press(Qt::Key_Return);
        ASSERT_TRUE(user.seesControls(categoryPage)); // 12 are an address
        user.press(Qt::Key_Escape);
        ASSERT_TRUE(user.seesControls(firstPage(u"http://a.bcd"_s)));
        // The message is that of the last code, which a document that does not tell leaves.
        for (const auto &[address, code] : {std::pair(u"http://127.0.0.2/list.opml"_s, 1009U),
                                            std::pair(u"opml:opml.opml"_s, 1007U),
                                            std::pair(u"http://localhost/gone.opml"_s, 1007U)}) {
            user.replace(address);
            user.press(Qt::Key_Return);
            expectBox(user, internetProblem);
            EXPECT_EQ(device.lastErrorCode(), code);
        }
        // A whole address brings its own scheme, and one that is too long is cut.
        user.press(Qt::Key_A, Qt::ControlModifier);
        user.type(u"http://"_s);
        user.paste(u"https://127.0.0.2/Feed.xml"_s);
        ASSERT_TRUE(user.seesControls(firstPage(u"https://127.0.0.2/Feed.xml"_s)));
        user.replace(longest + u"XX");
        ASSERT_TRUE(user.seesControls(firstPage(longest)));
        user.press(Qt::Key_Return);
        ASSERT_TRUE(user.seesControls(categoryPage));
        user.press(Qt::Key_Return);
        ASSERT_TRUE(user.seesRows({u"Moon"_s, u"New Channel"_s, u"Odd"_s, u"Star"_s}));
    });
    EXPECT_TRUE(channels(u"Science"_s).contains(QString(u"New Channel " + longest.toLower())));
}

TEST_F(WizardTest, AListIsOfferedAndWhatIsTickedIsAdded) {
    ASSERT_TRUE(writeFile(home.filePath(u"my.opml"_s), list));
    runInScience([&](User &user) {
        openWizard(user);
        user.tap(u"Import from a file"_s);
        user.tap(u"Next"_s);
        ASSERT_TRUE(user.seesRows({u".."_s, u"my.opml"_s}));
        user.tapRow(1);
        ASSERT_TRUE(user.seesControls({u"- One, - Two, - Three, - Bad."_s, u"- All"_s}));
        user.tap(u"All"_s);
        user.tapRow(0);
        ASSERT_TRUE(user.seesControls({u"- One, x Two, x Three, x Bad."_s, u"- All"_s}));
        user.tapRow(2);
        user.press(Qt::Key_Return);
        ASSERT_TRUE(user.seesControls(categoryPage));
        user.tap(u"Back"_s); // keeps the ticks
        ASSERT_TRUE(user.seesControls({u"- One, x Two, - Three, x Bad."_s, u"- All"_s}));
        user.press(Qt::Key_Space); // on the row that was tapped
        user.tapRow(0);
        user.tap(u"Next"_s);
        ASSERT_TRUE(user.seesControls(categoryPage));
        user.press(Qt::Key_Up);
        user.tap(u"Finish"_s);
        expectBox(user, wrongUrl); // of the one that is left out
        ASSERT_TRUE(user.seesRows({u"Moon"_s, u"Odd"_s, u"Star"_s}));
    });
    QStringList added = channels(u"News"_s);
    added.sort();
    EXPECT_EQ(added,
              QStringList({u"One http://Example.org/One"_s, u"Planet http://example.org/a"_s,
                           u"Three javascript:alert(1)"_s, u"Two http://example.org/two"_s}));
}

TEST_F(WizardTest, TheMiddleCategoryIsProposedAndListedAgainWhenItHasGoneMeanwhile) {
    CategoryListStore categories(*device.registry);
    const auto add = [&](const QString &proposed, const auto &meanwhile) {
        run([&](User &user) {
            go(user, 1, 0);
            enter(user, u"127.0.0.2/feed.xml"_s);
            EXPECT_TRUE(user.seesControls({proposed}));
            meanwhile();
            user.tap(u"Finish"_s);
            EXPECT_TRUE(user.seesQuiet() && user.seesNoBox());
        });
    };
    categories.AddCategory(u"Sport"_s);
    add(u"News Science [Travel] Sport"_s, [] {});
    device.store->DeleteCategoryChannels(u"Travel"_s); // or their category would be listed again
    for (const QString &name : {u"Sport"_s, u"Travel"_s})
        categories.DeleteCategory(name);
    add(u"News [Science]"_s, [&] { categories.DeleteCategory(u"Science"_s); });
    EXPECT_EQ(storedCategories(device.root), QStringList({u"News"_s, u"Science"_s}));
    EXPECT_TRUE(device.channelNames(u"Science"_s).contains(u"New Channel"_s));
}

TEST_F(WizardTest, IsReadyToBeTypedInAndLeavesTheRowWhenItIsCancelled) {
    runInScience([&](User &user) {
        user.press(Qt::Key_Down);
        openWizard(user);
        user.press(Qt::Key_Home);
        user.tap(u"Import from a file"_s);
        EXPECT_TRUE(user.seesPart<QLineEdit>(&QLineEdit::isReadOnly));
        user.tap(u"Input from URL"_s);
        EXPECT_TRUE(user.seesPart<QLineEdit>([](auto &line) {
            return line.hasFocus() && !line.isReadOnly() && !line.hasSelectedText() &&
                   line.cursorPosition() == line.text().size();
        }));
        user.press(Qt::Key_Escape);
        EXPECT_TRUE(user.seesLines(scienceLines) && user.seesQuiet() && user.seesSelected(1));
    });
}

TEST_F(WizardTest, AListThatCannotBeReadIsToldAndLeadsBack) {
    ASSERT_TRUE(writeFile(home.filePath(u"a.opml"_s), "<opml><body>"));
    ASSERT_TRUE(
        writeFile(home.filePath(u"b.opml"_s), "<opml><body><outline url='u'/></body></opml>"));
    ASSERT_TRUE(writeFile(home.filePath(u"c.opml"_s), "<opml><body/></opml>"));
    runInScience([&](User &user) {
        openWizard(user);
        user.tap(u"Import from a file"_s);
        for (const int row : {1, 2, 3}) {
            user.tap(u"Next"_s);
            ASSERT_TRUE(user.seesRows({u".."_s, u"a.opml"_s, u"b.opml"_s, u"c.opml"_s}));
            user.tapRow(row);
            if (row != 3)
                expectBox(user, feedProblem);
            ASSERT_TRUE(user.seesControls({u"."_s, u"- All"_s}));
            user.press(Qt::Key_Escape);
            ASSERT_TRUE(user.seesControls(
                {u"- Input from URL"_s, u"x Import from a file"_s, u"http://"_s}));
        }
        user.tap(u"Cancel"_s);
        ASSERT_TRUE(user.seesLines(scienceLines));
    });
}

TEST_F(WizardTest, TheLineIsTypedInAgainAfterAWaitThatEndedBelowTheHelp) {
    auto silent = std::make_unique<FeedServer>();
    const DirectPort itsPort(*silent);
    silent->hang(u"/list.opml"_s);
    runInScience([&](User &user) {
        enter(user, u"localhost/list.opml"_s);
        ASSERT_TRUE(user.seesControls({u"waiting"_s}));
        user.press(Qt::Key_F1);
        ASSERT_TRUE(user.seesCaption(u"Tidebrook"_s));
        silent.reset();
        ASSERT_TRUE(user.seesQuiet());
        user.press(Qt::Key_Escape);
        expectBox(user, internetProblem);
        user.type(u"x"_s);
        EXPECT_TRUE(user.seesControls(firstPage(u"http://localhost/list.opmlx"_s)));
    });
}

TEST_F(WizardTest, BackAndCancelEndEveryWait) {
    server.hang(u"/silent"_s);
    server.trickle(u"/slow.opml"_s, "<opml>" + QByteArray(2000, ' '), 50ms);
    server.trickle(u"/slow.xml"_s, "<rss>" + QByteArray(2000, ' '), 50ms);
    runInScience([&](User &user) {
        enter(user, u"localhost/silent"_s);
        ASSERT_TRUE(user.seesControls({u"waiting"_s}));
        user.tap(u"Cancel"_s);
        ASSERT_TRUE(user.seesLines(scienceLines) && user.seesQuiet());

        enter(user, u"localhost/slow.opml"_s); // known for a list at once, which then is read whole
        ASSERT_TRUE(user.sees([&] { return user.list() != nullptr; }));
        ASSERT_TRUE(user.seesControls({u"waiting"_s}));
        user.press(Qt::Key_Escape);
        ASSERT_TRUE(user.seesControls(firstPage(u"http://localhost/slow.opml"_s)));
        ASSERT_TRUE(user.seesQuiet());
        user.replace(u"http://localhost/slow.xml"_s);
        user.press(Qt::Key_Return);
        ASSERT_TRUE(user.seesControls(categoryPage));
        user.tap(u"Finish"_s);
        ASSERT_TRUE(user.seesControls({u"waiting"_s}));
        user.tap(u"Back"_s);
        ASSERT_TRUE(user.seesControls(firstPage(u"http://localhost/slow.xml"_s)));
        user.press(Qt::Key_Return);
        ASSERT_TRUE(user.seesControls(categoryPage));
        user.tap(u"Finish"_s); // which holds, also when the window is closed over it
        ASSERT_TRUE(user.seesControls({u"waiting"_s}));
        user.closeWindow();
    });
    EXPECT_EQ(channels(u"Science"_s).size(), 4);
    EXPECT_TRUE(channels(u"Science"_s).contains(u"New Channel http://localhost/slow.xml"_s));
}

} // namespace
} // namespace tidebrook
