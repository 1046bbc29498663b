#include "feed/pub_date.h"
#include "feed/rss_parser.h"
#include "platform/base/clock.h"
#include "support/open_store.h"

#include <gtest/gtest.h>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

class ParserTest : public OpenStore {
protected:
    bool parse(const QByteArray &channelContent, const QString &channel = u"ch"_s) {
        return parseDocument("<rss><channel>" + channelContent + "</channel></rss>", channel);
    }

    bool parseDocument(const QByteArray &text, const QString &channel = u"ch"_s) {
        const auto document = XmlDocument::parse({text});
        if (!document) {
            ADD_FAILURE() << "not well-formed";
            return false;
        }
        bool isParsed = false;
        store().changeAtOnce([&](SqlCommand &command) {
            isParsed = RssParser(command, channel, u"C"_s).parse(document->root());
        });
        return isParsed;
    }
};

TEST_F(ParserTest, ItemsAreStoredWithTheirOwnTexts) {
    EXPECT_TRUE(parse("<title>Feed</title><item><title> A &amp; B </title><link>http://a/</link>"
                      "<guid>1</guid><category>Sport</category>"
                      "<content:encoded>whole</content:encoded>"
                      "<description><![CDATA[<p>short</p>]]></description>"
                      "<pubDate>Fri, 07 Mar 2008 10:15:00 GMT</pubDate></item>"
                      "<item><Title>case</Title><media:title>m</media:title><link>http://b/</link>"
                      "<title></title><description> </description></item>"));
    EXPECT_EQ(device_.titles(u"ch"_s), (QStringList{u"A & B"_s, u"DEFAULT"_s}));
    const ArticleExtract first = detail(u"ch"_s, u"A & B"_s);
    EXPECT_EQ(first.description, u"<p>short</p>");
    EXPECT_EQ(first.itemLink, u"http://a/");
    EXPECT_EQ(first.publicationDate, u"2008-03-07");
    const ArticleExtract second = detail(u"ch"_s, u"DEFAULT"_s);
    EXPECT_EQ(second.description, u"DEFAULT");
    EXPECT_EQ(second.publicationDate, u"");
    ReadFlagCounts counts;
    store().CountReadFlags(u"C"_s, u"ch"_s, counts);
    EXPECT_EQ(counts.total, 2) << "the category of the run is stored, not the item's";
}

TEST_F(ParserTest, WithinADayTheNewestIsFirst) {
    const QDateTime first({2026, 6, 10}, {12, 0}, Qt::UTC);
    QStringList expected;
    for (int refresh = 0; refresh < 3; ++refresh) {
        const FixedClock clock(first.addSecs(refresh * 60));
        QByteArray items = "<title>Feed</title>";
        for (int i = 0; i < 40; ++i) {
            const QByteArray title =
                QByteArray::number((i * 7 + refresh) % 40) + ' ' + QByteArray::number(refresh);
            items += "<item><title>" + title + "</title><guid>" + title +
                     "</guid><pubDate>07 Mar 2008</pubDate></item>";
            expected.insert(i, QString::fromLatin1(title));
        }
        ASSERT_TRUE(parse(items));
    }
    expected = expected.first(110);
    for (const SortMode mode : {SortMode::Date, SortMode::UnreadOnly, SortMode::Status})
        EXPECT_EQ(device_.titles(u"ch"_s, mode), expected);
    detail(u"ch"_s, expected[1]);
    QStringList unread = expected;
    unread.removeAt(1);
    EXPECT_EQ(device_.titles(u"ch"_s, SortMode::Status).first(109), unread);
}

TEST_F(ParserTest, ARefreshTakesOutWhatItsOwnChannelHasHadForFiveDays) {
    const QDateTime stored({2026, 6, 10}, {12, 0}, Qt::UTC);
    const QByteArray item =
        "<item><title>old</title><guid>1</guid><pubDate>9 Jun 2006</pubDate></item>";
    {
        const FixedClock clock(stored);
        parse(item);
        parse(QByteArray(item).replace(">1<", ">2<"), u"other"_s);
    }
    const auto refreshedAt = [&](const QDateTime &time) {
        const FixedClock clock(time);
        EXPECT_TRUE(parse("<title>Feed</title>"));
        return device_.titles(u"ch"_s);
    };
    EXPECT_EQ(refreshedAt(stored.addDays(5)), QStringList(u"old"_s));
    EXPECT_EQ(refreshedAt(stored.addDays(5).addSecs(1)), QStringList());
    EXPECT_EQ(device_.titles(u"other"_s), QStringList(u"old"_s));
}

TEST_F(ParserTest, TextsAreKeptUpToTheirCapacities) {
    const auto itemOf = [](const QByteArray &guid, const QByteArray &title) {
        return QByteArray("<item><guid>" + guid.leftJustified(600, 'g') + "</guid><title>" +
                          title.leftJustified(300, 't') + "</title><link>" + QByteArray(600, 'l') +
                          "</link><description>" + QByteArray(3100, 'd') +
                          "</description><pubDate>07 Mar 2008</pubDate></item>");
    };
    parse(itemOf(QByteArray(511, 'g') + '1', "1") + itemOf(QByteArray(511, 'g') + '2', "2"));
    ASSERT_EQ(device_.titles(u"ch"_s).size(), 2);
    const QString title = device_.titles(u"ch"_s)[0];
    EXPECT_EQ(title.size(), 255);
    EXPECT_EQ(detail(u"ch"_s, title).itemLink.size(), 512);
    EXPECT_EQ(detail(u"ch"_s, title).description.size(), 2999);
}

TEST_F(ParserTest, TheFirstChildOfTheRootIsTheChannelAndWithoutAnythingInItUnreadable) {
    const std::pair<QByteArray, bool> cases[]{
        {"<rss><anything><item><title>t</title><guid>1</guid></item></anything>"
         "<channel><item><title>u</title><guid>2</guid></item></channel></rss>",
         true},
        {"<rss><channel><title>Feed</title></channel></rss>", true},
        {"<rss><channel></channel></rss>", false},
        {"<rss/>", false},
        {"<rss>text<channel><title>t</title></channel></rss>", false},
    };
    for (const auto &[text, isParsed] : cases)
        EXPECT_EQ(parseDocument(text), isParsed) << text.constData();
    EXPECT_EQ(device_.titles(u"ch"_s), QStringList(u"t"_s));
}

} // namespace
} // namespace tidebrook
