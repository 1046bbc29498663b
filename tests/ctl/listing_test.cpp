#include "ctl/ctl_process.h"
#include "feed_server/generated_feed.h"
#include "platform/sql/registry.h"
#include "platform/sql/sqlite_database.h"
#include "store/feed_store.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

QByteArray item(const QByteArray &title, int number, const QByteArray &text) {
    const QByteArray digit = QByteArray::number(number);
    return "<item><title>" + title + "</title><link>http://a/" + digit + "</link><guid>g" + digit +
           "</guid><pubDate>Sat, " + QByteArray::number(20 - number) +
           " Nov 2026 10:00:00 GMT</pubDate><description><![CDATA[" + text +
           "]]></description></item>";
}

/// Five articles of "ch", the newest first, of which two are printed alike, and one of "other".
class ListingTest : public CtlTest {
protected:
    void SetUp() override {
        addChannel(u"ch"_s, "<rss><channel>" + item("Don't panic", 1, "<p>Stra&szlig;e</p>") +
                                item("Two\nlines", 2, "<b>Donau</b>dampf &eacute;t&eacute;") +
                                item("Two lines", 3, "plain") +
                                item("7", 4, "<a href=http://b/>A link</a>, a word") +
                                item("Evil \xC2\x9B\x31m\xE2\x80\xAE", 5,
                                     "a\xE2\x80\xAE"
                                     "b") +
                                "</channel></rss>");
        addChannel(u"other"_s,
                   "<rss><channel>" + item("Plain words", 6, "DEFAULT_X") + "</channel></rss>");
        ok(u"update"_s);
    }

    QJsonDocument json(const QString &arguments) {
        QJsonParseError error{};
        auto document = QJsonDocument::fromJson(ok(arguments + u" --json").toUtf8(), &error);
        EXPECT_EQ(error.error, QJsonParseError::NoError) << qPrintable(arguments);
        return document;
    }
    QString flags() {
        QString flags;
        for (const QString &line : run(u"articles ch"_s).lines())
            flags += line[0];
        return flags;
    }
    /// Numbers and channels of what a search finds.
    QString found(const QString &words) {
        QStringList places;
        for (const QString &line : ok(u"search " + words).split(u'\n', Qt::SkipEmptyParts))
            places.append(line.section(u'\t', 3, 3) + line.section(u'\t', 4));
        return places.join(u' ');
    }
    /// The command's output on a terminal of 40 columns, without carriage returns.
    QString onTerminal(const QString &arguments, const QString &pager) {
        environment_.insert(u"CALL"_s, u"stty cols 40; %1 %2 %3"_s.arg(
                                           pager, QStringLiteral(TIDEBROOKCTL), arguments));
        CtlRun shown = run({}, u"exec script -qec \"$CALL\" /dev/null </dev/null"_s);
        EXPECT_EQ(shown.exitCode, 0) << qPrintable(arguments);
        return shown.out.remove(u'\r');
    }
};

TEST_F(ListingTest, AListHasAHeaderOrIsADocumentWithTheSameRows) {
    ok(u"auto add ch"_s);
    addChannel(u"again"_s);
    ok(u"relink again " + server_.url(u"/ch"));
    const struct {
        QString call;
        QString header;
        QString fields; // of each object
    } lists[]{
        {u"categories"_s, u"name"_s, u"name"_s},
        {u"channels C"_s, u"unread/total name address category"_s,
         u"address category name total unread"_s},
        {u"articles ch"_s, u"state date title number"_s,
         u"category channel date guid link number read title"_s},
        {u"search p"_s, u"state date title channel number"_s,
         u"category channel date guid link number read title"_s},
        {u"search no-such"_s, u"state date title channel number"_s, {}},
        {u"updates"_s, u"name lastSuccess lastResult nextTry sharedFeed"_s,
         u"automatic category errorCode lastAttempt lastResult lastSuccess name newArticles "
         "nextTry sharedFeed"_s},
        {u"setting"_s, u"name value meaning"_s, u"meaning name value"_s},
        {u"auto list"_s, u"name category address"_s, u"address category name"_s},
        {u"check"_s, u"finding"_s, u"kind text"_s},
    };
    for (const auto &list : lists) {
        const QString lines = ok(list.call);
        EXPECT_EQ(ok(list.call + u" --header"),
                  QString(QString(list.header).replace(u' ', u'\t') + u'\n' + lines));
        const QJsonArray rows = json(list.call).array();
        EXPECT_EQ(rows.size(), lines.count(u'\n')) << qPrintable(list.call);
        for (const QJsonValue row : rows)
            EXPECT_EQ(row.toObject().keys().join(u' '), list.fields);
        EXPECT_EQ(ok(list.call + u" -q --json"), u"");
    }
    const QJsonObject channel = json(u"channels"_s)[1].toObject();
    EXPECT_EQ(channel[u"unread"_s], 5);
    EXPECT_TRUE(json(u"setting"_s)[0][u"value"_s].isNull());
    EXPECT_TRUE(json(u"updates"_s)[0][u"lastSuccess"_s].isNull());
    for (const QString &call :
         {u"channels --json --header"_s, u"setting SortMode --json"_s, u"auto run --json"_s,
          u"show ch 1 --html --link"_s, u"show ch 1 --header"_s, u"search \" \""_s})
        fails(call, {}, 2);
    fails(u"articles nowhere --json"_s);
}

TEST_F(ListingTest, ADocumentHasTheTextsAsTheyAreStored) {
    const QString document = ok(u"articles ch --json"_s);
    EXPECT_FALSE(document.contains(u'\u009b') || document.contains(u'\u202e'));
    const QJsonDocument articles = json(u"articles ch"_s);
    EXPECT_EQ(articles[1][u"title"_s], u"Two\nlines"_s);
    EXPECT_EQ(articles[4][u"title"_s], u"Evil \u009b1m\u202e"_s);
    EXPECT_EQ(articles[4][u"number"_s], 5);
    EXPECT_EQ(articles[4][u"read"_s], false);
    const QJsonDocument article = json(u"show ch g4"_s);
    EXPECT_EQ(article[u"text"_s], u"A link [1], a word\n"_s);
    EXPECT_EQ(article[u"html"_s], u"<a href=http://b/>A link</a>, a word"_s);
    EXPECT_EQ(article[u"links"_s].toArray(), QJsonArray{u"http://b/"_s});
    EXPECT_EQ(flags(), u"uuuuu") << "a program's look marks nothing";
}

TEST_F(ListingTest, AnArticleIsNamedByTitleGuidNumberOrBeginning) {
    const auto linkOf = [this](const QString &operand) {
        return ok(u"show ch \"%1\" --link"_s.arg(operand)).trimmed();
    };
    const std::pair<QString, QString> operands[]{
        {u"Don't panic"_s, u"1"_s}, {u"don"_s, u"1"_s},       {u"2"_s, u"2"_s},
        {u"g2"_s, u"2"_s},          {u"Two lines"_s, u"3"_s}, {u"3"_s, u"3"_s},
        {u"7"_s, u"4"_s},           {u"4"_s, u"4"_s},         {u"EVIL  1"_s, u"5"_s}};
    for (const auto &[operand, number] : operands)
        EXPECT_EQ(linkOf(operand), QString(u"http://a/" + number)) << qPrintable(operand);
    for (const QString &none : {u"\"\""_s, u"6"_s, u"0"_s, u"-1"_s, u"g"_s, u"x' OR 1 --"_s})
        fails(u"show ch -- \"%1\""_s.arg(none), u"there is no article"_s);
    fails(u"mark ch read two"_s, u"2 \"Two lines\", 3 \"Two lines\""_s);

    // An index that another program has dropped: titles are then stored twice.
    SqliteDatabase::open(filePath(u"RSSVault.sdf"_s), {})->run("DROP INDEX PK_RECORD");
    ASSERT_TRUE(SqliteDatabase::open(filePath(u"RSSVault.sdf"_s), {})
                    ->run("UPDATE RSSRecord SET TITLE = 'Same' WHERE CHANNEL_NAME = 'ch'"));
    fails(u"show ch Same"_s, u"several articles"_s);
    const QString file = filePath(u"saved"_s);
    ok(u"mark ch read 2"_s);
    EXPECT_EQ(flags(), u"uruuu");
    EXPECT_TRUE(ok(u"show ch g4"_s).contains(u"a word"));
    EXPECT_EQ(flags(), u"ururu");
    EXPECT_EQ(ok(u"channels"_s).section(u'\t', 0, 0), u"3/5");
    EXPECT_EQ(ok(u"setting UnreadItems --today"_s), u"4\n");
    ok(u"mark ch unread g2"_s);
    EXPECT_EQ(flags(), u"uuuru");
    ok(u"save ch 3 article " + file);
    EXPECT_TRUE(contentOf(file).contains("<p>plain</p>"));
}

TEST_F(ListingTest, SearchFindsWordsInTitlesAndReadableTexts) {
    const std::pair<QString, QString> searches[]{
        {u"STRASSE"_s, u"ch1"_s},           {u"donaudampf \u00c9T\u00c9"_s, u"ch2"_s},
        {u"plain lines"_s, u"ch3"_s},       {u"\"LINES  plain\""_s, u"ch3"_s},
        {u"plain"_s, u"ch3 other1"_s},      {u"href"_s, u""_s},
        {u"default_x"_s, u"other1"_s},      {u"p"_s, u"ch1 ch2 ch3 other1"_s},
        {u"plain --unread"_s, u"other1"_s}, {u"plain --category C"_s, u"ch3 other1"_s},
        {u"plain -uc D"_s, u""_s}};
    ok(u"mark ch read 3"_s);
    ok(u"add-category D"_s);
    for (const auto &[words, places] : searches)
        EXPECT_EQ(found(words), places) << qPrintable(words);
    fails(u"search x --category E"_s, u"\"E\""_s);
}

TEST_F(ListingTest, ATextIsWrappedAndPagedOnATerminalAlone) {
    const QString title = QString(u"wide \u6f22\u5b57 "_s).repeated(10).trimmed();
    addChannel(u"long"_s, "<rss><channel>" + item(title.toUtf8(), 7, "end") + "</channel></rss>");
    ok(u"update C long"_s);
    EXPECT_EQ(ok(u"show long 1"_s),
              QString(u"Title:   " + title +
                      u"\nDate:    2026-11-13\nChannel: long\nLink:    http://a/7\n\nend\n"));
    const QString shown = onTerminal(u"show long 1"_s, u"PAGER='sed s/end/paged/'"_s);
    EXPECT_TRUE(shown.contains(u"\n         wide \u6f22\u5b57")) << qPrintable(shown);
    EXPECT_TRUE(shown.endsWith(u"\npaged\n")) << qPrintable(shown);
    for (const QString &line : shown.split(u'\n'))
        EXPECT_LE(line.size() + line.count(u'\u6f22') + line.count(u'\u5b57'), 40);
    for (const QString &pager :
         {u"PAGER=x TIDEBROOK_PAGER="_s, u"TIDEBROOK_PAGER=cat"_s, u"TIDEBROOK_PAGER=/no/such"_s})
        EXPECT_TRUE(onTerminal(u"show long 1"_s, pager).endsWith(u"\nend\n")) << qPrintable(pager);
    EXPECT_EQ(onTerminal(u"show long 1 --html"_s, u"TIDEBROOK_PAGER=true"_s), u"");
    EXPECT_EQ(ok(u"show long 1 --html"_s), u"end\n");
}

TEST_F(ListingTest, MoreThanAScreenHoldsIsListedWhole) {
    addChannel(u"many"_s, generatedFeed(150, 1));
    ok(u"update C many"_s);
    {
        Registry registry(root_);
        FeedStore store(root_, registry, testTodayKey.toString());
        ASSERT_TRUE(store.Open());
        EXPECT_TRUE(store.changeAtOnce([&](SqlCommand &) {
            for (int i = 0; i < 700; ++i)
                store.InsertChannel({u"C"_s, u"n%1"_s.arg(i), u"http://x/"_s});
        }));
    }
    EXPECT_EQ(ok(u"articles many"_s).count(u'\n'), 150);
    EXPECT_TRUE(ok(u"articles many --order status"_s).endsWith(u"\t150\n"));
    const QString last = json(u"articles many"_s)[149][u"link"_s].toString();
    EXPECT_EQ(ok(u"show many 150 --link"_s), QString(last + u'\n'));
    EXPECT_EQ(ok(u"channels C"_s).count(u'\n'), 703);
    EXPECT_EQ(ok(u"export C -"_s).count(u"url="_s), 703);
    // Others change the channels while what is listed is not read.
    const QString reader =
        u"\"$0\" updates --json | { \"$0\" add-category Other; cat >/dev/null; }"_s;
    EXPECT_EQ(run(u"categories"_s, reader).out, u"C\nOther\n");
    ok(u"rename-category C Big"_s);
    EXPECT_EQ(ok(u"channels Big"_s).count(u'\n'), 703);
    EXPECT_EQ(ok(u"delete-category Big --yes"_s), u"703 channels, 156 articles\n");
    EXPECT_EQ(ok(u"channels"_s), u"");
}

} // namespace
} // namespace tidebrook
