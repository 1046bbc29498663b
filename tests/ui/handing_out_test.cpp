#include "support/fake_opener.h"
#include "support/full_disk.h"
#include "ui/kit/message_box.h"
#include "ui/sharing_test.h"

#include <QDir>
#include <QFile>

namespace tidebrook {
namespace {

const QString fileProblem = u"Encountering Problem when Accessing Crucial File"_s;

QByteArray contentOf(const QString &path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

class HandingOutTest : public SharingTest {
protected:
    /// Waits for a file that is written in its turn.
    bool seesFile(User &user, const QString &name, const QByteArray &part) {
        return user.sees([&] { return contentOf(path(name)).contains(part); });
    }
};

TEST_F(HandingOutTest, ACategoryAndAChannelAreExported) {
    run([&](User &user) {
        user.press(Qt::Key_Down);
        user.choose({u"Export Category"_s});
        ASSERT_TRUE(user.seesControls({u"Science"_s}));
        user.press(Qt::Key_Return);
        ASSERT_TRUE(user.seesCaption(u"All Categories"_s));
        EXPECT_TRUE(seesFile(user, u"Science.opml"_s, "text=\"Star\""));
        ASSERT_TRUE(user.seesSelected(1));
        user.press(Qt::Key_Return);
        ASSERT_TRUE(user.seesLines(scienceLines));
        user.choose({u"Export Channel"_s});
        ASSERT_TRUE(user.seesControls({u"Moon"_s}));
        user.type(u"Lune"_s);
        user.press(Qt::Key_Return);
        EXPECT_TRUE(seesFile(user, u"Lune.opml"_s, "text=\"Moon\""));
    });
    EXPECT_FALSE(contentOf(path(u"Lune.opml"_s)).contains("Star"));
    EXPECT_EQ(QDir(documents.path()).entryList(QDir::Files).size(), 2);
}

TEST_F(HandingOutTest, APlaceThatIsTooLongOrCannotBeWrittenIsToldAndNothingIsLost) {
    const QString name(39, u'n');
    ASSERT_TRUE(writeFile(path(u"News.opml"_s), "old"));
    run([&](User &user) {
        const auto exportUnder = [&user](const QString &typed) {
            user.choose({u"Export Category"_s});
            ASSERT_TRUE(user.seesControls({u"News"_s}));
            user.type(typed);
            user.press(Qt::Key_Return);
        };
        exportUnder(name + u'n');
        expectBox(user, fileProblem);
        user.press(Qt::Key_Escape);
        ASSERT_TRUE(user.seesCaption(u"All Categories"_s));
        exportUnder(name);
        EXPECT_TRUE(seesFile(user, name + u".opml", "Planet"));
        exportUnder(u"News.opml"_s);
        ASSERT_TRUE(user.sees([&] { return qobject_cast<MessageBox *>(user.stack().top()); }));
        {
            const FullDisk full;
            user.tap(u"Yes"_s);
            expectBox(user, fileProblem);
        }
    });
    EXPECT_EQ(contentOf(path(u"News.opml"_s)), "old");
    EXPECT_EQ(QDir(documents.path()).entryList(QDir::Files).size(), 2);
}

TEST_F(HandingOutTest, AnArticleIsSavedAndSentAsItIsShown) {
    FakeOpener opener;
    device.addChannel(u"News"_s, u"Wire"_s, QList<TestArticle>{{.title = u"a/b\nc?"_s}});
    run([&](User &user) {
        go(user, 1, 0);
        user.tapRow(1);
        ASSERT_TRUE(user.sees([&] { return user.list() && user.list()->rowCount() == 1; }));
        user.press(Qt::Key_Return);
        ASSERT_TRUE(user.seesPage(u"Text"_s));
        for (const QString &command : {u"Save Link"_s, u"Save Article"_s}) {
            user.choose({command});
            ASSERT_TRUE(user.seesControls({u"a b c?"_s}));
            user.type(command);
            user.press(Qt::Key_Return);
            ASSERT_TRUE(seesFile(user, command + u".html", "a/b\nc?"));
            EXPECT_EQ(contentOf(path(command + u".html")).size(), 65'536);
        }
        for (const QString &command : {u"Send Link via email"_s, u"Send Link via SMS"_s}) {
            user.choose({command});
            ASSERT_TRUE(user.sees([&] {
                return opener.calls().contains(command.endsWith(u"SMS") ? "1 sms:" : "1 mailto:");
            }));
        }
        ASSERT_TRUE(user.seesQuiet());
        opener.refuse();
        user.choose({u"Send Link via SMS"_s});
        expectBox(user, u"Encountering Unidentified Problem"_s);
        device.store->DeleteChannel(u"Wire"_s);
        user.choose({u"Save Article"_s});
        ASSERT_TRUE(user.seesControls({u"a b c?"_s}));
        user.press(Qt::Key_Return);
        expectBox(user, u"Encountering Unidentified Problem"_s);
    });
    EXPECT_FALSE(contentOf(path(u"Save Link.html"_s)).contains("Text"));
    EXPECT_TRUE(contentOf(path(u"Save Article.html"_s)).contains("Text"));
    EXPECT_EQ(QDir(documents.path()).entryList(QDir::Files).size(), 2);
}

} // namespace
} // namespace tidebrook
