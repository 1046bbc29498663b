#include "kit/files/file_dialog.h"
#include "kit/files/file_name.h"
#include "test_device/home.h"
#include "ui/test_session.h"

#include <gtest/gtest.h>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

const QString smile = u"\U0001F600"_s;

using Choose = QString (*)(ScreenStack &, const FileRequest &);

FileRequest request(const QString &name = {}) {
    // However deep the folder of temporary files is.
    return {u"Export"_s, u"OPML (*.opml)"_s, u"*.opml"_s, name, 4096};
}

/// How a file dialog ends for a user who does this: a path as it is from the documents on,
/// "nothing", or "open" when it does not end.
QString outcome(Choose choose, const FileRequest &request, const Hand &hand) {
    const TestDevice device(u"Moon\thttp://example.org/b\tScience\n"_s);
    TestSession session(device.root);
    QString result = u"open"_s;
    const auto use = [&](User &user) {
        ASSERT_TRUE(user.seesRows({u"Science"_s}) && user.seesQuiet());
        user.act([&] {
            const QString path = choose(user.stack(), request);
            result = path.isNull() ? u"nothing"_s : pathFromDocuments(path);
        });
        ASSERT_TRUE(user.seesCaption(request.title) && user.seesQuiet());
        hand(user);
        user.sees([&] { return user.stack().isClosing() || result != u"open"; });
    };
    EXPECT_TRUE(session.run(use));
    return result;
}

/// The user puts this in place of the name, and presses Enter.
void enter(User &user, const QString &name) {
    user.replace(name);
    ASSERT_TRUE(user.seesEditor(name));
    user.press(Qt::Key_Return);
}

TEST(OpenFile, IsWalkedThroughByKeysAndByTapsAndSortsAsPeopleDo) {
    const Home home({u"b10.opml"_s, u"b9.OPML"_s, u"note.txt"_s, u".hidden.opml"_s, u"far/"_s,
                     u"Near/deep/x.opml"_s, u"Ark.opml/"_s, u".config/"_s, u"äpfel.opml"_s});
    // into the selected folder, and out of it again
    const std::pair<Hand, Hand> ways[]{
        {[](User &user) { user.tapRow(3); }, pressing(Qt::Key_Return)},
        {pressing(Qt::Key_Return), pressing(Qt::Key_Backspace)},
        {tapping(u"Open"_s), pressing(Qt::Key_Up, Qt::AltModifier)},
    };
    const auto walk = [&](User &user) {
        const QStringList top{u".."_s,         u"Ark.opml"_s, u"far"_s,     u"Near"_s,
                              u"äpfel.opml"_s, u"b9.OPML"_s,  u"b10.opml"_s};
        ASSERT_TRUE(user.seesRows(top) && user.seesSelected(0));
        for (const auto &[in, out] : ways) {
            in(user);
            ASSERT_TRUE(user.seesRows({u".."_s, u"deep"_s}) && user.seesSelected(0));
            out(user);
            ASSERT_TRUE(user.seesRows(top) && user.seesSelected(3)) << "what was left";
        }
        user.press(Qt::Key_Backspace);
        ASSERT_TRUE(user.seesRows({u".."_s, u"Papers"_s}) && user.seesSelected(1));
        user.tapRow(1);
        ASSERT_TRUE(user.seesRows(top));
        user.tapRow(5);
    };
    EXPECT_EQ(outcome(chooseFileToOpen, request(), walk), u"b9.OPML");
}

TEST(OpenFile, FollowsWhatOtherProgramsDoToTheFolder) {
    const Home home({u"a.opml"_s, u"c.opml"_s, u"sub/deep/"_s});
    const auto follow = [&](User &user) {
        ASSERT_TRUE(user.seesRows({u".."_s, u"sub"_s, u"a.opml"_s, u"c.opml"_s}));
        user.press(Qt::Key_End);
        ASSERT_TRUE(user.seesSelected(3));
        ASSERT_TRUE(writeFile(home.documents() + u"/b.opml", "new"));
        EXPECT_TRUE(user.seesRows({u".."_s, u"sub"_s, u"a.opml"_s, u"b.opml"_s, u"c.opml"_s}));
        EXPECT_TRUE(user.seesSelected(4)) << "what was selected stays so";
        QFile::remove(home.documents() + u"/a.opml");
        EXPECT_TRUE(user.seesRows({u".."_s, u"sub"_s, u"b.opml"_s, u"c.opml"_s}));
        user.tapRow(1);
        ASSERT_TRUE(user.seesRows({u".."_s, u"deep"_s}));
        user.tapRow(1);
        ASSERT_TRUE(user.seesRows({u".."_s}));
        ASSERT_TRUE(QDir(home.documents() + u"/sub").removeRecursively());
        EXPECT_TRUE(user.seesRows({u".."_s, u"b.opml"_s, u"c.opml"_s})) << "the nearest left";
        ASSERT_TRUE(user.seesQuiet());
        user.tapRow(1);
    };
    EXPECT_EQ(outcome(chooseFileToOpen, request(), follow), u"b.opml");
}

TEST(OpenFile, ChoosesNothingWhenItIsLeft) {
    const Home home({u"a.opml"_s});
    for (const Hand &leave : {tapping(u"Cancel"_s), Hand(&User::closeWindow)})
        EXPECT_EQ(outcome(chooseFileToOpen, request(), leave), u"nothing");
}

TEST(OpenFile, BeginsAtHomeWithoutDocumentsAndOpensTheHelp) {
    const Home home;
    ASSERT_TRUE(QDir().rmdir(home.documents()) && writeFile(home.path() + u"/x.opml", ""));
    const auto open = [&](User &user) {
        EXPECT_TRUE(user.seesRows({u".."_s, u"x.opml"_s}));
        user.press(Qt::Key_F1);
        EXPECT_TRUE(user.seesCaption(u"Tidebrook"_s));
        user.press(Qt::Key_F1); // no second one
        user.press(Qt::Key_Escape);
        EXPECT_TRUE(user.seesCaption(u"Export"_s));
        user.tapRow(1);
    };
    EXPECT_EQ(outcome(chooseFileToOpen, request(), open), home.path() + u"/x.opml");
}

TEST(SaveFile, TakesTheNamesThatPeopleGive) {
    const Home home({u"old.opml"_s, u"sub/"_s, u"dir.opml/"_s});
    const QString longest(250, u'x');
    const std::pair<QString, QString> good[]{
        {u" News.OPML "_s, u"News.OPML"_s},
        {u"old.html"_s, u"old.html.opml"_s},
        {u":colon"_s, u":colon.opml"_s},
        {u"sub/x"_s, u"sub/x.opml"_s},
        {longest, longest + u".opml"},
        {u"~/x"_s, home.path() + u"/x.opml"},
        {home.path() + u"/./y", home.path() + u"/y.opml"},
    };
    for (const auto &[typed, path] : good) {
        const auto save = [&name = typed](User &user) { enter(user, name); };
        EXPECT_EQ(outcome(chooseFileToSave, request(u"Proposed"_s), save), path);
    }
    const std::pair<QString, QString> bad[]{
        {longest + u'x', u"The file name is too long."_s},
        {smile.repeated(63), u"The file name is too long."_s},
        {u"  "_s, u"Please enter a file name."_s},
        {u"/gone/x"_s, u"There is no folder /gone."_s},
        {u"/dev/null"_s, u"null is not a file."_s},
        {u"dir"_s, u"dir.opml is not a file."_s},
    };
    const auto save = [&](User &user) {
        for (const auto &[typed, problem] : bad) {
            enter(user, typed);
            expectBox(user, problem);
            ASSERT_TRUE(user.seesEditor(typed));
        }
        enter(user, u"News"_s);
    };
    EXPECT_EQ(outcome(chooseFileToSave, request(u"Proposed"_s), save), u"News.opml");
}

TEST(SaveFile, ReplacesAFileOnlyWhenTheUserAgrees) {
    const Home home({u"old.opml"_s, u"sub/"_s});
    const QString question = u"old.opml is there already. Replace it?"_s;
    const auto replace = [&](User &user) {
        ASSERT_TRUE(user.seesEditor(u"old"_s));
        user.tap(u"Save"_s);
        expectBox(user, question); // Enter is a No
        enter(user, u"sub"_s);
        ASSERT_TRUE(user.seesRows({u".."_s}) && user.seesEditor(u"old"_s)) << "a folder is gone to";
        enter(user, u".."_s);
        ASSERT_TRUE(user.seesRows({u".."_s, u"sub"_s, u"old.opml"_s}));
        user.tapRow(2);
        ASSERT_TRUE(user.seesEditor(u"old.opml"_s));
        user.press(Qt::Key_Return);
        ASSERT_TRUE(user.seesBox(question));
        user.tap(u"Yes"_s);
    };
    EXPECT_EQ(outcome(chooseFileToSave, request(u"old"_s), replace), u"old.opml");
    EXPECT_EQ(home.content(u"old.opml"_s), "before") << "it is left to the caller";
}

TEST(OpenFile, RefusesAPathThatIsTooLongAndStays) {
    const Home home({u"sub/longer.opml"_s, u"sub/old.opml"_s});
    FileRequest limited = request();
    limited.pathLimit = 12;
    const auto use = [&](User &user) {
        user.tapRow(1);
        ASSERT_TRUE(user.seesRows({u".."_s, u"longer.opml"_s, u"old.opml"_s}));
        user.tapRow(1);
        expectBox(user, u"Encountering Problem when Accessing Crucial File"_s);
        user.tapRow(2);
    };
    EXPECT_EQ(outcome(chooseFileToOpen, limited, use), u"sub/old.opml");
}

TEST(FileName, OfAnythingIsThatOfAFileInSight) {
    const std::pair<QString, QString> cases[]{
        {u" \ta/b\u2028c"_s + QChar(u'\0') + u"d\n", u"a b c d"_s},
        {u"..hidden.opml"_s, u"hidden.opml"_s},
        {u".."_s, u""_s},
        {u"News.Opml"_s, u"News.Opml"_s},
        {smile.repeated(255), smile.repeated(62)},
        {u"x"_s + smile.repeated(255) + u".opml", u"x"_s + smile.repeated(62) + u".opml"},
    };
    for (const auto &[wanted, proposed] : cases)
        EXPECT_EQ(possibleFileName(wanted, u".opml"_s, 255), proposed);
}

} // namespace
} // namespace tidebrook
