#include "kit/layer.h"
#include "kit/page/text_page.h"
#include "support/fake_opener.h"
#include "ui/article_page.h"
#include "ui/reading_test.h"

#include <QFile>

#include <cstdlib>

namespace tidebrook {
namespace {

using ArticleViewTest = ReadingTest;

TEST(ArticlePage, HasWhatTheFeedSentAndNothingOfWhatItDidNot) {
    const QString text = u"<b>x</b> &amp; 'y' DEFAULT"_s;
    for (const auto &[sent, shown] :
         {std::pair(text, text), {u"DEFAULTS"_s, u" "_s}, {QString(), QString()}}) {
        const QString page =
            articlePage(u"A"_s, u"<i>T</i>"_s, {u"2026-01-02"_s, sent, u"http://a/?b&c"_s});
        EXPECT_TRUE(page.contains(u"<p>"_s + shown + u"</p>")) << page.toStdString();
        EXPECT_TRUE(page.contains(u"<a href=\"http://a/?b&c\"><i>T</i></a>"));
    }
}

TEST_F(ArticleViewTest, IsReadOnceItIsOpenedAndAsBigAsChosenEverywhere) {
    const auto isListOf = [](User &user, int points, const QString &entry) {
        return user.entries(u"Font Size"_s).contains(entry) &&
               user.sees([&] { return user.list()->font().pointSize() == points; });
    };
    run([&](User &user) {
        go(user, 2);
        user.press(Qt::Key_Down);
        user.press(Qt::Key_Return);
        ASSERT_TRUE(user.seesPage(u"2026-01-27"_s) && user.seesQuiet());
        EXPECT_EQ(device.counts(u"Science"_s, u"Moon"_s), u"2/5");
        const auto isOfSize = [&user](qreal points) {
            return user.sees([&] {
                const auto *page = user.stack().top()->findChild<TextPage *>();
                return page->document()->find(u"more"_s).charFormat().fontPointSize() == points;
            });
        };
        EXPECT_TRUE(isOfSize(9));
        user.choose({u"Font Size"_s, u"Big"_s});
        EXPECT_TRUE(isOfSize(13) && user.seesQuiet());
        EXPECT_EQ(setting(u"FontSize"), 13U);
        EXPECT_TRUE(user.entries(u"Font Size"_s).contains(u"+Big"_s));
        for (const auto &[key, points] : {std::pair{Qt::Key_Minus, 11}, {Qt::Key_0, 9}}) {
            user.press(key, Qt::ControlModifier);
            EXPECT_TRUE(isOfSize(points) && user.seesQuiet()) << points;
        }
        for (const Qt::Key bigger : {Qt::Key_Plus, Qt::Key_Equal})
            user.press(bigger, Qt::ControlModifier);
        const auto isNamed = [&user](const QString &title) {
            return user.sees([&] { return user.stack().windowTitle() == title; });
        };
        EXPECT_TRUE(isNamed(u"Moon \u2013 Tidebrook"_s) && user.seesCaption(u"Moon"_s));
        for (const QString &caption : {u"Moon"_s, u"Science"_s, u"All Categories"_s}) {
            user.press(Qt::Key_W, Qt::ControlModifier);
            ASSERT_TRUE(user.sees([&] { return user.list() != nullptr; }));
            ASSERT_TRUE(user.seesCaption(caption) && user.seesQuiet());
            EXPECT_TRUE(caption != u"Science" || isNamed(u"Science \u2013 Tidebrook"_s));
            EXPECT_TRUE(isListOf(user, 13, u"+Big"_s));
            EXPECT_TRUE(caption != u"Science" || user.lines().contains(u"Moon: 2/5"_s));
        }
        EXPECT_TRUE(isNamed(u"Tidebrook"_s));
    });
    run([&](User &user) { EXPECT_TRUE(isListOf(user, 13, u"+Big"_s)) << "after a restart"; });
    session = std::make_unique<TestSession>(device.root);
    session->state().settings.tell([this] { gate.acquire(); });
    EXPECT_TRUE(session->run([&](User &user) {
        ASSERT_TRUE(user.sees([&] { return user.list() && user.list()->rowCount() == 3; }));
        user.choose({u"Font Size"_s, u"Small"_s}); // before the stored one was read
        gate.release();
        EXPECT_TRUE(user.seesQuiet());
        EXPECT_TRUE(isListOf(user, 9, u"+Small"_s));
        go(user, 3);
        user.press(Qt::Key_Q, Qt::ControlModifier);
        EXPECT_TRUE(user.sees([&] { return user.stack().top() == nullptr; }));
    }));
    EXPECT_EQ(setting(u"FontSize"), 9U);
    EXPECT_EQ(setting(u"UnreadItems", testTodayKey), 6U);
}

TEST_F(ArticleViewTest, TurnsToTheArticlesBesideAndTheListFollows) {
    QList<TestArticle> articles;
    for (char16_t name = u'a'; name < u'j'; ++name)
        articles.append({.title = QString(QChar(name)),
                         .description = QString(3, name) + u"<p>more"_s.repeated(90),
                         .date = u"2026-01-0%1"_s.arg(u'j' - name)});
    device.addChannel(u"News"_s, u"Long"_s, articles);
    const auto swipe = [](int x, int y) { return [=](User &user) { user.touchPage({x, y}); }; };
    const QHash<QChar, Hand> turns{{u'l', pressing(Qt::Key_Left)}, {u'r', pressing(Qt::Key_Right)},
                                   {u'-', swipe(-80, 20)},         {u'+', swipe(80, 0)},
                                   {u'|', swipe(20, -80)},         {u'.', swipe(30, 0)}};
    const QStringList byDate{u"Sort by"_s, u"Date"_s};
    const QStringList byStatus{u"Sort by"_s, u"Status"_s};
    const struct {
        QStringList order;
        QString turns;  // each with the article that it leads to
        QString listed; // afterwards
        QString selected;
        Qt::LayoutDirection direction = Qt::LeftToRight;
    } rounds[]{{byDate, u"rclblala"_s, u"abcdefghi"_s, u"a"_s},
               {byDate, u"-c|c.c+b-c"_s, u"abcdefghi"_s, u"c"_s},
               {byDate, u"lc+drc"_s, u"abcdefghi"_s, u"c"_s, Qt::RightToLeft},
               {byStatus, u"rcrd"_s, u"aefghibcd"_s, u"d"_s},
               {{u"Show Unread Only"_s}, u"rcrd"_s, u"aefghi"_s, u"e"_s}};
    run([&](User &user) {
        go(user, 2, 0);
        for (const auto &round : rounds) {
            user.choose({u"Mark all as Unread"_s});
            user.choose(round.order);
            ASSERT_TRUE(user.seesQuiet());
            user.look([&] { user.stack().setLayoutDirection(round.direction); });
            user.tapRow(1);
            for (qsizetype i = 0; i < round.turns.size(); i += 2) {
                ASSERT_TRUE(user.seesPage(u"more"_s) && user.seesQuiet());
                turns[round.turns[i]](user);
                EXPECT_TRUE(user.seesQuiet() && user.seesPage(QString(3, round.turns[i + 1])));
            }
            user.press(Qt::Key_Escape);
            ASSERT_TRUE(user.sees([&] { return user.list() != nullptr; }) && user.seesQuiet());
            EXPECT_EQ(user.rows().join(QString()), round.listed);
            user.look([&] {
                const ListView *list = user.list();
                EXPECT_EQ(list->rowText(SelectedRow(list)), round.selected);
                EXPECT_TRUE(list->rect().contains(list->visualRect(list->currentIndex())));
            });
        }
    });
}

TEST_F(ArticleViewTest, ATappedLinkIsOpenedAsOneArgumentOrRefused) {
    const QString base = u"http://example.org/"_s;
    const QStringList good{base + u"plain?a=1&b=2#c"_s, base + QString(512 - base.size(), u'l'),
                           base + u"a b'c\";$(touch x)`touch x`"_s};
    const QStringList bad{base + QString(513 - base.size(), u'l'),
                          u"javascript:alert(1)"_s,
                          u"file:///etc/passwd"_s,
                          u"--help"_s,
                          u"page.html"_s,
                          u""_s};
    const QStringList links = good + bad;
    QString text;
    for (int i = 0; i < links.size(); ++i)
        text += u"<p>&raquo;<a href=\"%1\">(%2)</a></p>"_s.arg(links[i].toHtmlEscaped()).arg(i);
    device.addChannel(u"News"_s, u"Links"_s,
                      QList<TestArticle>{{.title = u"Q"_s, .description = text}});
    FakeOpener opener;
    QByteArray expected;
    run([&](User &user) {
        go(user, 3, 0);
        ASSERT_TRUE(user.seesPage(u"(0)"_s));
        for (int i = 0; i < links.size(); ++i) {
            SCOPED_TRACE(i);
            user.tapLink(u"(%1)"_s.arg(i));
            if (i >= good.size()) {
                expectBox(user, u"The URL format is wrong!"_s);
                continue;
            }
            expected += "1 " + QUrl(links[i]).toEncoded() + '\n';
            EXPECT_TRUE(user.sees([&] { return opener.calls() == expected; }));
        }
        user.look([&] { opener.remove(); });
        user.tapLink(u"(0)"_s);
        expectBox(user, u"Encountering Unidentified Problem"_s);
    });
    EXPECT_FALSE(QFile::exists(u"x"_s));
}

TEST_F(ArticleViewTest, WhatOthersChangeWhileAScreenIsOpenEndsInAListOfWhatIsLeft) {
    for (int screen = 1; screen <= 3; ++screen) {
        for (const char *change : {"move A Travel", "rename A Zeta", "delete A"}) {
            SCOPED_TRACE(change);
            device.addChannel(u"Science"_s, u"A"_s, {u"t"_s});
            const std::string other = TIDEBROOKCTL " --home " + device.root.path().toStdString();
            run([&](User &user) {
                go(user, screen);
                ASSERT_EQ(std::system((other + ' ' + change).c_str()), 0);
                const bool isEmptied = screen == 2 && change[0] != 'm'; // an open list follows
                ASSERT_TRUE(!isEmptied || user.sees([&] { return user.list()->rowCount() == 0; }));
                if (!isEmptied)
                    user.press(Qt::Key_Return); // what is shown, but may be gone
                for (int back = isEmptied ? 2 : std::min(screen + 1, 3); back > 1; --back) {
                    EXPECT_TRUE(user.seesQuiet() && user.seesNoBox());
                    user.press(Qt::Key_Escape);
                }
                EXPECT_TRUE(user.seesCaption(u"Science"_s));
                EXPECT_TRUE(user.seesRows(device.channelNames(u"Science"_s)));
                EXPECT_FALSE(user.rows().contains(u"A"_s));
            });
            for (const QString &name : {u"A"_s, u"Zeta"_s})
                device.store->DeleteChannel(name);
        }
    }
}

} // namespace
} // namespace tidebrook
