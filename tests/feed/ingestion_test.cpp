#include "feed/article_ingestion.h"
#include "feed/pub_date.h"
#include "support/open_store.h"

#include <gtest/gtest.h>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

class IngestionTest : public OpenStore {
protected:
    void SetUp() override {
        OpenStore::SetUp();
        device_.addChannel(u"C"_s, u"ch"_s);
    }

    bool insert(const ItemRecord &item, const QString &channel = u"ch"_s,
                const QString &category = u"C"_s) {
        bool isInserted = false;
        store().changeAtOnce([&](SqlCommand &command) {
            ArticleIngestion ingestion(command, channel, category);
            isInserted = ingestion.pruneChannel() && ingestion.insertItem(item);
        });
        return isInserted;
    }

    static ItemRecord item(const QString &title, const QString &guid) {
        return {title.toUtf8(),   "Text",        "Fri, 07 Mar 2008",
                "DEFAULT",        guid.toUtf8(), "http://example.org/",
                ingestionClock(0)};
    }
};

TEST_F(IngestionTest, DuplicatesAreLeftOutAndLeaveTheOldRowAlone) {
    EXPECT_TRUE(insert(item(u"one"_s, u"1"_s)));
    detail(u"ch"_s, u"one"_s);
    EXPECT_TRUE(insert(item(u"another title"_s, u"1"_s)));
    EXPECT_TRUE(insert(item(u"another title"_s, u"1"_s), u"other channel"_s));
    EXPECT_TRUE(insert(item(u"one"_s, u"2"_s)));
    EXPECT_TRUE(insert(item(u"one "_s, u"3"_s)));
    EXPECT_EQ(device_.titles(u"ch"_s), QStringList(u"one"_s));
    EXPECT_EQ(device_.titles(u"ch"_s, SortMode::UnreadOnly), QStringList());
    EXPECT_EQ(device_.titles(u"other channel"_s), QStringList());
}

TEST_F(IngestionTest, NoTextOfAFeedBecomesSql) {
    const QString attack =
        u"x', 't', 'l' ,'d' ,'2008-01-01',0, 1 ,'C'); DELETE FROM RSSRecord --"_s;
    const QString doubled = u"it''s"_s;
    EXPECT_TRUE(insert(item(u"kept"_s, u"1"_s)));
    for (const QString &text : {attack, doubled, u"'"_s}) {
        ItemRecord record = item(u"guid"_s, text);
        EXPECT_FALSE(insert(record));
        record = item(u"link"_s, u"2"_s);
        record.link = text.toUtf8();
        EXPECT_FALSE(insert(record));
        record = item(u"date"_s, u"3"_s);
        record.publicationDate = "'' 'x " + text.toUtf8();
        EXPECT_FALSE(insert(record));
        EXPECT_EQ(insert(item(u"category"_s, u"4"_s), u"ch"_s, text), text == doubled);
        EXPECT_TRUE(insert(item(text, u"title "_s + QString::number(text.size()))));
        record = item(u"description "_s + text, u"d"_s + QString::number(text.size()));
        record.description = text.toUtf8();
        EXPECT_TRUE(insert(record));
        EXPECT_TRUE(text.startsWith(detail(u"ch"_s, QString::fromUtf8(record.title)).description));
    }
    EXPECT_EQ(device_.titles(u"ch"_s).size(), 8);
}

TEST_F(IngestionTest, TextsAreNeverCutInTheMiddleOfAQuote) {
    ItemRecord record = item(u"quotes"_s, u"q"_s);
    record.description = "''" + QByteArray(96, 'd') + "''";
    EXPECT_TRUE(insert(record));
    EXPECT_EQ(detail(u"ch"_s, u"quotes"_s).description, QString(u"''"_s + QString(96, u'd')));

    record = item(u"odd"_s, u"o"_s);
    record.description = "abc'";
    EXPECT_TRUE(insert(record));
    EXPECT_EQ(detail(u"ch"_s, u"odd"_s).description, u"abc");

    EXPECT_TRUE(insert(item(u"'"_s.repeated(255), u"t"_s)));
    EXPECT_TRUE(device_.titles(u"ch"_s).contains(u"'"_s.repeated(128)));
    EXPECT_TRUE(insert(item(u"😀"_s.repeated(127) + u"x", u"e"_s)));
    EXPECT_EQ(detail(u"ch"_s, u"😀"_s.repeated(127) + u"x").description, u"Text");
    const QString fitting = u"é"_s + QString(253, u'a');
    EXPECT_TRUE(insert(item(fitting + u"😀", u"f"_s)));
    EXPECT_EQ(detail(u"ch"_s, fitting).description, u"Text");
}

TEST_F(IngestionTest, ATitleThatShowsNothingHidesNoOtherArticle) {
    ItemRecord record = item(u"\uFEFF"_s, u"1"_s);
    record.publicationDate = "DEFAULT";
    EXPECT_TRUE(insert(record));
    record.title = "other";
    record.guid = "2";
    EXPECT_TRUE(insert(record));
    EXPECT_EQ(device_.titles(u"ch"_s), (QStringList{u"DEFAULT"_s, u"other"_s}));
}

} // namespace
} // namespace tidebrook
