#include "support/open_store.h"

#include <gtest/gtest.h>

#include <thread>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

class ArticleTest : public OpenStore {};

TEST_F(ArticleTest, AnyTitleIsFoundByWhatTheListShows) {
    int channel = 0;
    for (const QString &title : {u"Plain"_s, u"Don't panic: 'x'"_s, u"\uFEFFMarked\r"_s, u" "_s,
                                 QString(255, u'x'), u"😀"_s.repeated(127), u"%1 %s 100% ?"_s}) {
        SCOPED_TRACE(title.toStdString());
        const QString name = QString::number(++channel);
        device_.addChannel(u"C"_s, name, {u"other"_s, title});
        const ArticleExtract found = detail(name, device_.titles(name)[1]);
        EXPECT_EQ(found.description, u"Text");
        EXPECT_EQ(found.itemLink, u"http://example.org/1");
        EXPECT_EQ(found.publicationDate, u"2026-01-27");
        EXPECT_EQ(device_.counts(u"C"_s, name), u"1/2");
    }
}

TEST_F(ArticleTest, ThreadsShareOneStoreAndMarkingAChannelChangesItsCountsAlone) {
    device_.addChannel(u"C"_s, u"a"_s, {u"1"_s, u"2"_s});
    device_.addChannel(u"C"_s, u"b"_s, {u"1"_s, u"2"_s, u"3"_s});
    const auto walk = [this](const QString &channel, qsizetype count) {
        for (int i = 0; i < 50; ++i) {
            QList<ArticleRow> articles;
            ASSERT_TRUE(store().ListArticles(channel, SortMode::Date, articles));
            ASSERT_EQ(articles.size(), count);
        }
    };
    std::thread one(walk, u"a"_s, 2);
    std::thread other(walk, u"b"_s, 3);
    for (int i = 0; i < 20; ++i) {
        EXPECT_TRUE(store().MarkChannelRead(u"a"_s));
        const auto guard = store().lock(); // over listing and walking the rows
        EXPECT_EQ(device_.counts(u"C"_s, u"a"_s), u"0/2");
        EXPECT_TRUE(store().MarkChannelUnread(u"a"_s));
    }
    one.join();
    other.join();
    EXPECT_EQ(device_.counts(u"C"_s, u"a"_s), u"2/2");
    EXPECT_EQ(device_.counts(u"C"_s, u"b"_s), u"3/3");
}

} // namespace
} // namespace tidebrook
