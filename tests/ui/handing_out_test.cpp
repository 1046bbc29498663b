#include "support/fake_opener.h"
#include "support/full_disk.h"
#include "ui/kit/message_box.h"
#include "ui/sharing_test.h"

namespace tidebrook {
namespace {

class HandingOutTest : public SharingTest {
protected:
    /// Waits for a file that is written in its turn.
    bool seesFile(User &user, const QString &name, const QByteArray &part) {
        return user.sees([&] { return home.content(name).contains(part); });
    }
    /// Chooses a command, answers the proposal with a name, and is told this, or nothing.
    static void hand(User &user, const QString &command, const QString &proposal,
                     const QString &name, const QString &problem = {}) {
        user.choose({command});
        ASSERT_TRUE(user.seesControls({proposal}));
        user.type(name);
        user.press(Qt::Key_Return);
        if (!problem.isNull())
            expectBox(user, problem);
    }
};

TEST_F(HandingOutTest, TheSelectedCategoryAndTheSelectedChannelAreExported) {
    run([&](User &user) {
        user.press(Qt::Key_Down);
        hand(user, u"Export Category"_s, u"Science"_s, u""_s);
        ASSERT_TRUE(user.seesCaption(u"All Categories"_s));
        EXPECT_TRUE(seesFile(user, u"Science.opml"_s, "text=\"Star\""));
        ASSERT_TRUE(user.seesSelected(1));
        user.press(Qt::Key_Return);
        ASSERT_TRUE(user.seesLines(scienceLines) && user.seesQuiet());
        user.press(Qt::Key_Down);
        hand(user, u"Export Channel"_s, u"Odd"_s, u"Even"_s);
        EXPECT_TRUE(seesFile(user, u"Even.opml"_s, "text=\"Odd\""));
    });
    EXPECT_EQ(home.content(u"Science.opml"_s).count("type=\"link\""), 3);
    EXPECT_EQ(home.content(u"Even.opml"_s).count("type=\"link\""), 1);
    EXPECT_EQ(home.files().size(), 2);
}

TEST_F(HandingOutTest, APlaceThatIsTooLongOrCannotBeWrittenIsToldAndNothingIsLost) {
    ASSERT_TRUE(writeFile(path(u"News.opml"_s), "old"));
    run([&](User &user) {
        hand(user, u"Export Category"_s, u"News"_s, QString(40, u'n'), fileProblem);
        user.press(Qt::Key_Escape);
        ASSERT_TRUE(user.seesCaption(u"All Categories"_s));
        hand(user, u"Export Category"_s, u"News"_s, u"News.opml"_s);
        ASSERT_TRUE(user.sees([&] { return qobject_cast<MessageBox *>(user.stack().top()); }));
        {
            const FullDisk full;
            user.tap(u"Yes"_s);
            expectBox(user, fileProblem);
        }
        ASSERT_TRUE(user.seesCaption(u"All Categories"_s));
        go(user, 1);
        hand(user, u"Export Channel"_s, u"Moon"_s, QString(50, u'c'), fileProblem);
        user.press(Qt::Key_Escape);
        ASSERT_TRUE(user.seesCaption(u"Science"_s));
    });
    EXPECT_EQ(home.content(u"News.opml"_s), "old");
    EXPECT_EQ(home.files().size(), 1);
}

TEST_F(HandingOutTest, AnArticleIsSavedAndSentAsItIsShown) {
    FakeOpener opener;
    device.addChannel(u"News"_s, u"Wire"_s,
                      QList<TestArticle>{{.title = u"first"_s, .link = u"http://f/"_s},
                                         {.title = u"a/b\nc?"_s, .date = u"2026-01-27"_s}});
    const QString unidentified = u"Encountering Unidentified Problem"_s;
    const QString proposal = u"a b c?"_s;
    run([&](User &user) {
        go(user, 1, 0);
        user.tapRow(1);
        ASSERT_TRUE(user.sees([&] { return user.list() && user.list()->rowCount() == 2; }));
        user.tapRow(1);
        ASSERT_TRUE(user.seesPage(u"Text"_s));
        for (const QString &command : {u"Save Link"_s, u"Save Article"_s}) {
            hand(user, command, proposal, command);
            ASSERT_TRUE(seesFile(user, command + u".html", "a/b\nc?"));
            EXPECT_EQ(home.content(command + u".html").size(), 65'536);
        }
        for (const auto &[command, call] : {std::pair(u"Send Link via email"_s, "1 mailto:"),
                                            std::pair(u"Send Link via SMS"_s, "1 sms:")}) {
            user.choose({command});
            ASSERT_TRUE(user.sees([&, made = call] { return opener.calls().contains(made); }));
        }
        EXPECT_EQ(opener.calls().count("c%3F"), 3) << "the title in subject and texts";
        ASSERT_TRUE(user.seesQuiet());
        opener.refuse();
        user.choose({u"Send Link via SMS"_s});
        expectBox(user, unidentified);
        device.store->DeleteChannel(u"Wire"_s);
        hand(user, u"Save Article"_s, proposal, proposal, unidentified);
    });
    EXPECT_FALSE(home.content(u"Save Link.html"_s).contains("Text"));
    EXPECT_TRUE(home.content(u"Save Article.html"_s).contains("Text"));
    EXPECT_EQ(home.files().size(), 2);
}

} // namespace
} // namespace tidebrook
