#include "platform/sql/sqlite_database.h"
#include "store/error_codes.h"
#include "support/fake_opener.h"
#include "ui/sharing_test.h"

#include <QDir>

namespace tidebrook {
namespace {

const QString unidentified = u"Encountering Unidentified Problem"_s;

using HandingOutTest = SharingTest;

/// Chooses a command that proposes this name, and answers with another.
Hand saving(const QString &command, const QString &proposal, const QString &name) {
    return [=](User &user) {
        user.choose({command});
        ASSERT_TRUE(user.seesControls({proposal}));
        user.replace(name);
        user.press(Qt::Key_Return);
    };
}

TEST_F(HandingOutTest, WhatIsSelectedIsSavedUnderANameThatIsLimitedWithItsEnding) {
    const QString name = QString(300, u'n').replace(0, 1, u"A"_s);
    CategoryListStore(*device.registry).AddCategory(name.left(39));
    device.addChannel(name.left(39), name.left(50), {u"a"_s, name.left(254), u"c"_s});
    device.store->InsertChannel({name.left(39), u"A"_s, u"http://example.org/a"_s});
    const Hand toChannel = [](User &user) {
        go(user, 1, 3);
        user.press(Qt::Key_Down);
    };
    const Hand toArticle = [&](User &user) {
        toChannel(user);
        user.press(Qt::Key_Return);
        ASSERT_TRUE(user.seesRows({u"a"_s, name.left(254), u"c"_s}) && user.seesQuiet());
        user.press(Qt::Key_Down);
        user.press(Qt::Key_Return);
        ASSERT_TRUE(user.seesPage(u"Text"_s));
    };
    const struct {
        QString command;
        QString ending;
        qsizetype limit;
        Hand go;
        int channels;
    } cases[]{
        {u"Export Category"_s, u".opml"_s, 39, pressing(Qt::Key_End), 2},
        {u"Export Channel"_s, u".opml"_s, 49, toChannel, 1},
        {u"Save Link"_s, u".html"_s, 254, toArticle, 0},
    };
    const QString folder(150, u'f');
    QDir(home.documents()).mkpath(folder);
    for (const auto &one : cases) {
        SCOPED_TRACE(one.command.toStdString());
        const QString stem = one.limit < 254 ? u"c"_s : folder + u'/';
        const QString longest = stem + QString(one.limit - 5 - stem.size(), u'x');
        run([&](User &user) {
            one.go(user);
            saving(one.command, name.left(qMin(one.limit, qsizetype{255}) - 5),
                   longest + u'x')(user);
            expectBox(user, fileProblem);
            user.replace(longest);
            user.press(Qt::Key_Return);
            EXPECT_TRUE(user.seesQuiet() && user.seesNoBox());
        });
        const QByteArray content = home.content(longest + one.ending);
        EXPECT_TRUE(content.contains(name.left(one.limit == 254 ? 254 : 50).toUtf8()));
        EXPECT_EQ(content.count("type=\"link\""), one.channels);
    }
}

TEST_F(HandingOutTest, AFailureThatIsToldLeavesItsCodeAndAllElseAsItWas) {
    const Hand remove = [](User &user) {
        user.press(Qt::Key_Delete);
        ASSERT_TRUE(user.seesBox(deleteChannel));
        user.tap(u"Yes"_s);
    };
    const Hand addChannel = [](User &user) {
        user.choose({u"New Channel"_s});
        ASSERT_TRUE(user.seesEditor(u"http://"_s));
        user.type(u"127.0.0.2/feed.xml"_s);
        user.press(Qt::Key_Return);
        ASSERT_TRUE(user.seesControls({u"News [Science] Travel"_s}));
        user.tap(u"Finish"_s);
    };
    using Fault = std::pair<QByteArray, QByteArray>; // how it begins and ends
    const auto lost = [](const QByteArray &table) {
        return Fault("ALTER TABLE " + table + " RENAME TO Gone",
                     "ALTER TABLE Gone RENAME TO " + table);
    };
    const auto refused = [](const QByteArray &change) {
        return Fault("CREATE TRIGGER no BEFORE " + change +
                         " ON RSSCHRecord BEGIN SELECT RAISE(ABORT, 'no'); END",
                     "DROP TRIGGER no");
    };
    const Fault none("SELECT 1", "SELECT 1"); // no such folder, or no program
    const struct {
        const char *what;
        Fault fault;
        Hand act;
        int screen;
        quint32 code = DatabaseFailed;
        QString told = databaseProblem;
    } cases[]{
        {"channels", lost("RSSCHRecord"), pressing(Qt::Key_Right), 1},
        {"properties", lost("RSSCHRecord"), choosing({u"Properties"_s}), 1},
        {"articles", lost("RSSRecord"), pressing(Qt::Key_Right), 2},
        {"a page", lost("RSSRecord"), pressing(Qt::Key_Return), 2},
        {"a deleted channel", refused("DELETE"), remove, 1},
        {"a new channel", refused("INSERT"), addChannel, 1},
        {"an export", none, saving(u"Export Channel"_s, u"Moon"_s, u"/proc/x"_s), 1, FileNotWritten,
         fileProblem},
        {"saving", none, saving(u"Save Link"_s, u"a"_s, u"/proc/x"_s), 3, FileNotWritten,
         fileProblem},
        {"sending", none, choosing({u"Send Link via SMS"_s}), 3, NothingKnown, unidentified},
    };
    FakeOpener opener;
    opener.refuse();
    const auto other = SqliteDatabase::open(device.root.filePath(u"\\RSSVault.sdf"), {});
    for (const auto &failing : cases) {
        SCOPED_TRACE(failing.what);
        run([&](User &user) {
            go(user, failing.screen);
            SetLastErrorCode(*device.registry, FeedNotDownloaded); // of long ago
            other->run(failing.fault.first);
            failing.act(user);
            expectBox(user, failing.told);
            EXPECT_EQ(device.lastErrorCode(), failing.code);
            other->run(failing.fault.second);
        });
        EXPECT_EQ(storedCategories(device.root), seeded);
        EXPECT_EQ(device.channelNames(u"Science"_s), QStringList({u"Moon"_s, u"Odd"_s, u"Star"_s}));
    }
}

TEST_F(HandingOutTest, AnArticleIsSavedAndSentAsItIsShown) {
    FakeOpener opener;
    device.addChannel(u"News"_s, u"Wire"_s,
                      QList<TestArticle>{{.title = u"first"_s, .link = u"http://f/"_s},
                                         {.title = u"a/b\nc?"_s, .date = u"2026-01-27"_s}});
    const QString proposal = u"a b c?"_s;
    run([&](User &user) {
        go(user, 1, 0);
        user.tapRow(1);
        ASSERT_TRUE(user.sees([&] { return user.list() && user.list()->rowCount() == 2; }));
        user.tapRow(1);
        ASSERT_TRUE(user.seesPage(u"Text"_s));
        for (const QString &command : {u"Save Link"_s, u"Save Article"_s}) {
            saving(command, proposal, command)(user);
            ASSERT_TRUE(user.sees(
                [&, name = command] { return home.content(name + u".html").contains("a/b\nc?"); }));
            EXPECT_EQ(home.content(command + u".html").size(), 65'536);
        }
        for (const auto &[command, call] : {std::pair(u"Send Link via email"_s, "1 mailto:"),
                                            std::pair(u"Send Link via SMS"_s, "1 sms:")}) {
            user.choose({command});
            ASSERT_TRUE(user.sees([&, made = call] { return opener.calls().contains(made); }));
        }
        EXPECT_EQ(opener.calls().count("c%3F"), 3) << "the title in subject and texts";
        ASSERT_TRUE(user.seesQuiet());
        device.store->DeleteChannel(u"Wire"_s);
        saving(u"Save Article"_s, proposal, proposal)(user);
        expectBox(user, unidentified);
    });
    EXPECT_FALSE(home.content(u"Save Link.html"_s).contains("Text"));
    EXPECT_TRUE(home.content(u"Save Article.html"_s).contains("Text"));
    EXPECT_EQ(home.files().size(), 2);
}

} // namespace
} // namespace tidebrook
