#include "support/test_device.h"

#include <gtest/gtest.h>

#include <thread>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

class ArticleTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(device_.store->Open()); }

    FeedStore &store() { return *device_.store; }

    TestDevice device_;
};

TEST_F(ArticleTest, ListsComeInTheirThreeOrders) {
    device_.addChannel(u"C"_s, u"ch"_s, {u"newest"_s, u"middle"_s, u"oldest"_s});
    ArticleDetail detail;
    ASSERT_TRUE(store().GetArticleDetail(u"ch"_s, u"newest"_s, detail));
    EXPECT_EQ(device_.titles(u"ch"_s), (QStringList{u"newest"_s, u"middle"_s, u"oldest"_s}));
    EXPECT_EQ(device_.titles(u"ch"_s, SortMode::Status),
              (QStringList{u"middle"_s, u"oldest"_s, u"newest"_s}));
    EXPECT_EQ(device_.titles(u"ch"_s, SortMode::UnreadOnly),
              (QStringList{u"middle"_s, u"oldest"_s}));
    ASSERT_TRUE(store().MarkChannelRead(u"ch"_s));
    EXPECT_TRUE(store().ListArticles(u"ch"_s, SortMode::UnreadOnly));
    EXPECT_TRUE(store().takeArticleRows().isEmpty());
}

struct TitleCase {
    const char *what;
    QString title;
};

class AnyTitle : public ArticleTest, public testing::WithParamInterface<TitleCase> {};

TEST_P(AnyTitle, IsFoundByWhatTheListShows) {
    const QString title = GetParam().title;
    device_.addChannel(u"C"_s, u"ch"_s, {u"other"_s, title});
    const QString listed = device_.titles(u"ch"_s)[1];
    ArticleDetail detail;
    ASSERT_TRUE(store().GetArticleDetail(u"ch"_s, listed, detail));
    EXPECT_EQ(detail.description, u"Text");
    EXPECT_EQ(detail.itemLink, u"http://example.org/1");
    EXPECT_EQ(detail.publicationDate, u"2026-01-27");
    EXPECT_EQ(device_.counts(u"C"_s, u"ch"_s), u"1/2");
}

INSTANTIATE_TEST_SUITE_P(
    All, AnyTitle,
    testing::Values(TitleCase{"Plain", u"Plain"_s}, TitleCase{"Quote", u"Don't panic: 'x'"_s},
                    TitleCase{"Mark", u"\uFEFFMarked\r"_s}, TitleCase{"Blank", u" "_s},
                    TitleCase{"Full", QString(255, u'x')}, TitleCase{"Emoji", u"😀"_s.repeated(127)},
                    TitleCase{"Format", u"%1 %s 100% ?"_s}),
    [](const auto &test) { return std::string(test.param.what); });

TEST_F(ArticleTest, AnArticleThatIsNotThereIsReadAsNothing) {
    device_.addChannel(u"C"_s, u"ch"_s, {u"one"_s});
    ArticleDetail detail{u"x"_s, u"x"_s, u"x"_s};
    EXPECT_TRUE(store().GetArticleDetail(u"ch"_s, u"two"_s, detail));
    EXPECT_TRUE(detail.itemLink.isEmpty() && detail.description.isEmpty());
    EXPECT_EQ(device_.counts(u"C"_s, u"ch"_s), u"1/1");
}

TEST_F(ArticleTest, MarkingAChannelChangesItsCountsAlone) {
    device_.addChannel(u"C"_s, u"a"_s, {u"1"_s, u"2"_s});
    device_.addChannel(u"C"_s, u"b"_s, {u"1"_s});
    EXPECT_TRUE(store().MarkChannelRead(u"a"_s));
    EXPECT_EQ(device_.counts(u"C"_s, u"a"_s), u"0/2");
    EXPECT_EQ(device_.counts(u"C"_s, u"b"_s), u"1/1");
    EXPECT_TRUE(store().MarkChannelUnread(u"a"_s));
    EXPECT_EQ(device_.counts(u"C"_s, u"a"_s), u"2/2");
}

TEST_F(ArticleTest, ALongListEndsAtTheRowBuffer) {
    QStringList titles;
    for (int i = 0; i < 120; ++i)
        titles.append(u"title %1"_s.arg(i));
    device_.addChannel(u"C"_s, u"ch"_s, titles);
    EXPECT_EQ(device_.titles(u"ch"_s).size(), 110);
    EXPECT_EQ(device_.counts(u"C"_s, u"ch"_s), u"120/120");
}

TEST_F(ArticleTest, AStatementHasRoomForTheLongestArticle) {
    QString description;
    EXPECT_TRUE(EscapeSql(QString(5000, u'd'), description, TextKind::Description));
    EXPECT_EQ(description.size(), 3001);
    EXPECT_TRUE(EscapeSql(u"''''", description, TextKind::Description));
    EXPECT_EQ(description, u"''''''''");
    EXPECT_FALSE(EscapeSql(QStringView(), description, TextKind::Title));
}

TEST_F(ArticleTest, ThreadsShareOneStore) {
    device_.addChannel(u"C"_s, u"a"_s, {u"1"_s, u"2"_s});
    device_.addChannel(u"C"_s, u"b"_s, {u"1"_s, u"2"_s, u"3"_s});
    const auto walk = [this](const QString &channel, qsizetype count) {
        for (int i = 0; i < 50; ++i) {
            const auto guard = store().lock();
            ASSERT_TRUE(store().ListArticles(channel, SortMode::Date));
            ASSERT_EQ(store().takeArticleRows().size(), count);
        }
    };
    std::thread one(walk, u"a"_s, 2);
    std::thread other(walk, u"b"_s, 3);
    for (int i = 0; i < 20; ++i) {
        ArticleDetail detail;
        EXPECT_TRUE(store().GetArticleDetail(u"a"_s, u"1"_s, detail));
        EXPECT_TRUE(store().MarkChannelUnread(u"a"_s));
    }
    one.join();
    other.join();
    EXPECT_EQ(device_.counts(u"C"_s, u"a"_s), u"2/2");
}

} // namespace
} // namespace tidebrook
