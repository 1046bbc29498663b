#include "ctl/ctl_process.h"
#include "feed_server/feed_server.h"

#include <QFile>

#include <gtest/gtest.h>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

const QByteArray feed =
    "<rss><channel><title>Feed</title>"
    "<item><title>Don't panic</title><link>http://example.org/1</link>"
    "<pubDate>Sat, 07 Nov 2026 10:00:00 "
    "GMT</pubDate><description>&lt;p&gt;Text</description></item>"
    "<item><title>Tab\there\xC2\x9B\x31m</title><link>http://example.org/2</link>"
    "<pubDate>Fri, 06 Nov 2026 10:00:00 GMT</pubDate></item></channel></rss>";

class CommandTest : public testing::Test {
protected:
    QString ok(const QStringList &arguments) {
        const CtlRun run = ctl_.run(arguments);
        EXPECT_EQ(run.exitCode, 0) << run.err.toUtf8().constData();
        return run.out;
    }

    FeedServer server_;
    CtlProcess ctl_;
};

TEST_F(CommandTest, AReaderSubscribesRefreshesAndReads) {
    server_.serve(u"/feed"_s, feed);
    const QString url = server_.url(u"/feed");
    EXPECT_EQ(ok({u"init"_s}), u"0 categories, 0 channels\n");
    EXPECT_EQ(ok({u"add"_s, u"It's news"_s, u"Bob's"_s, url}), u"Bob's\n");
    EXPECT_EQ(ok({u"categories"_s}), u"It's news\n");
    EXPECT_EQ(ok({u"channels"_s}), QString(u"0/0\tBob's\t" + url + u"\tIt's news\n"));
    EXPECT_EQ(ok({u"update"_s}), u"ok\t2\t2/2\tBob's\n");

    ok({u"rename-category"_s, u"It's news"_s, u"News"_s});
    EXPECT_EQ(ok({u"update"_s, u"News"_s, u"Bob's"_s}), u"ok\t0\t2/2\tBob's\n");
    EXPECT_EQ(ok({u"update"_s, u"--pauses"_s}), u"ok\t0\t2/2\tBob's\n");
    EXPECT_EQ(ok({u"articles"_s, u"Bob's"_s}),
              u"u\t2026-11-07\tDon't panic\nu\t2026-11-06\tTab here 1m\n");
    EXPECT_EQ(ok({u"show"_s, u"Bob's"_s, u"Don't panic"_s}),
              u"2026-11-07\nhttp://example.org/1\n\n<p>Text\n");
    EXPECT_EQ(ok({u"articles"_s, u"Bob's"_s, u"--order"_s, u"status"_s}),
              u"u\t2026-11-06\tTab here 1m\nr\t2026-11-07\tDon't panic\n");
    EXPECT_EQ(ok({u"setting"_s, u"UnreadItems"_s, u"--today"_s}), u"1\n");
    ok({u"mark"_s, u"Bob's"_s, u"read"_s});
    EXPECT_EQ(ok({u"articles"_s, u"Bob's"_s, u"--order"_s, u"unread"_s}), u"");
    EXPECT_EQ(ok({u"check"_s}), u"");
}

TEST_F(CommandTest, ChannelsAreRenamedMovedRelinkedAndDeleted) {
    ok({u"add"_s, u"A"_s, u"one"_s, u"http://x/"_s});
    ok({u"add"_s, u"B"_s, u"two"_s, u"http://y/"_s});
    EXPECT_TRUE(ok({u"add"_s, u"B"_s, u"two"_s, u"http://y/"_s}).startsWith(u"two-"));
    ok({u"rename"_s, u"one"_s, u"1'"_s});
    ok({u"relink"_s, u"1'"_s, u"http://z/%1"_s});
    ok({u"move"_s, u"1'"_s, u"B"_s});
    EXPECT_TRUE(ok({u"channels"_s, u"B"_s}).contains(u"0/0\t1'\thttp://z/%1\tB\n"));
    EXPECT_EQ(ok({u"channels"_s, u"A"_s}), u"");
    ok({u"delete"_s, u"1'"_s});
    ok({u"delete-category"_s, u"B"_s});
    EXPECT_EQ(ok({u"channels"_s}), u"");
    EXPECT_EQ(ok({u"categories"_s}), u"A\n");
    EXPECT_EQ(ok({u"check"_s}), u"");
}

struct RefusalCase {
    QStringList arguments;
    int exitCode;
};

TEST_F(CommandTest, WrongCallsSayWhyAndChangeNothing) {
    ok({u"add"_s, u"A"_s, u"one"_s, u"http://x/"_s});
    ok({u"add"_s, u"A"_s, u"two"_s, u"http://y/"_s});
    ok({u"add-category"_s, u"B"_s});
    const QString before = ok({u"channels"_s}) + ok({u"categories"_s});
    const QList<RefusalCase> cases{
        {{}, 2},
        {{u"fly"_s}, 2},
        {{u"init"_s, u"now"_s}, 2},
        {{u"add"_s, u"A"_s, u"three"_s}, 2},
        {{u"channels"_s, u"--pauses"_s}, 2},
        {{u"channels"_s, u"--no-such"_s}, 2},
        {{u"articles"_s, u"one"_s, u"--order"_s, u"size"_s}, 2},
        {{u"update"_s, u"--jobs"_s, u"0"_s}, 2},
        {{u"update"_s, u"--jobs"_s, u"2"_s, u"--pauses"_s}, 2},
        {{u"--home"_s, u""_s, u"channels"_s}, 2},
        {{u"add-category"_s, u"A\uFEFF"_s}, 1},
        {{u"add"_s, u"A"_s, u"\uFEFF"_s, u"http://x/"_s}, 1},
        {{u"rename"_s, u"one"_s, u"\uFFFEtwo"_s}, 1},
        {{u"rename"_s, u"one"_s, u"\t"_s}, 1},
        {{u"mark"_s, u"one"_s, u"seen"_s}, 2},
        {{u"save"_s, u"one"_s, u"a"_s, u"page"_s, u"f"_s}, 2},
        {{u"setting"_s, u"SortMode"_s, u"big"_s}, 2},
        {{u"setting"_s, u"SortMode"_s}, 1},
        {{u"add-category"_s, u" A "_s}, 1},
        {{u"add-category"_s, u"  "_s}, 1},
        {{u"rename-category"_s, u"A"_s, u"B"_s}, 1},
        {{u"rename-category"_s, u"C"_s, u"D"_s}, 1},
        {{u"delete-category"_s, u"C"_s}, 1},
        {{u"channels"_s, u"C"_s}, 1},
        {{u"add"_s, u"A"_s, u""_s, u"http://x/"_s}, 1},
        {{u"add"_s, u"A"_s, u"three"_s, u"http://x/'quote"_s}, 1},
        {{u"add"_s, u"A"_s, u"three"_s, QString(600, u'x')}, 1},
        {{u"rename"_s, u"one"_s, u"two"_s}, 1},
        {{u"rename"_s, u"three"_s, u"four"_s}, 1},
        {{u"move"_s, u"one"_s, u"C"_s}, 1},
        {{u"relink"_s, u"one"_s, u"http://x/'"_s}, 1},
        {{u"delete"_s, u"three"_s}, 1},
        {{u"articles"_s, u"three"_s}, 1},
        {{u"show"_s, u"one"_s, u"no title"_s}, 1},
        {{u"update"_s, u"A"_s, u"three"_s}, 1},
    };
    for (const RefusalCase &refusal : cases) {
        const CtlRun run = ctl_.run(refusal.arguments);
        EXPECT_EQ(run.exitCode, refusal.exitCode)
            << refusal.arguments.join(u' ').toUtf8().constData();
        EXPECT_EQ(run.out, u"");
        EXPECT_FALSE(run.err.isEmpty());
    }
    EXPECT_EQ(ok({u"channels"_s}) + ok({u"categories"_s}), before);
}

TEST_F(CommandTest, ListsAreImportedAndExportedAndArticlesSaved) {
    server_.serve(u"/feed"_s, feed);
    const QByteArray url = server_.url(u"/feed").toUtf8();
    const QByteArray list = "<opml><body><outline text='F'><outline text=' Ann &amp; Tom' "
                            "type='rss' xmlUrl='" +
                            url +
                            "'/></outline><outline text='Bob&apos;s' type='link' url='ftp://b/'/>"
                            "<outline text='none' type='RSS' url='u'/></body></opml>";
    server_.serve(u"/list"_s, list);
    server_.serve(u"/bad"_s,
                  QByteArray(list).replace("'/></body>",
                                           "'/><o text='quoted' type='rss' "
                                           "url='it&apos;s'/><o text='&#9;' type='rss' url='u'/>"
                                           "<o text='last' type='rss' url='u'/></body>"));
    ctl_.setEnvironment(u"TIDEBROOK_HTTP_PORT"_s, QString::number(server_.port()));
    const QString names = u"Ann & Tom\nBob's\n"_s;
    EXPECT_EQ(ok({u"import"_s, u"http://localhost/list"_s, u"New"_s}), names);
    const QString channels = ok({u"channels"_s});
    EXPECT_EQ(channels.count(u'\n'), 2);
    const QString file = ctl_.filePath(u"out.opml"_s);
    ok({u"export"_s, u"New"_s, file});
    ok({u"delete-category"_s, u"New"_s});
    EXPECT_EQ(ok({u"import"_s, file, u"New"_s}), names);
    EXPECT_EQ(ok({u"channels"_s}), channels);
    ok({u"export"_s, u"New"_s, u"Bob's"_s, file});
    EXPECT_TRUE(ok({u"import"_s, file, u"Again"_s}).startsWith(u"Bob's-"));

    const CtlRun partly = ctl_.run({u"import"_s, u"http://localhost/bad"_s, u"Bad"_s});
    EXPECT_EQ(partly.exitCode, 1);
    EXPECT_TRUE(partly.out.endsWith(u"last\n")) << "one bad entry does not end it";
    EXPECT_EQ(partly.lines().size(), 3);
    EXPECT_EQ(partly.err.count(u'\n'), 2);
    EXPECT_TRUE(partly.err.contains(u"quoted: The URL format is wrong!"));

    ok({u"update"_s, u"New"_s, u"Ann & Tom"_s});
    for (const QString &what : {u"link"_s, u"article"_s}) {
        ok({u"save"_s, u"Ann & Tom"_s, u"Tab here 1m"_s, what, file});
        QFile saved(file);
        ASSERT_TRUE(saved.open(QIODevice::ReadOnly));
        EXPECT_EQ(saved.size(), 65'536);
        EXPECT_TRUE(saved.readAll().contains("Tab\there\xC2\x9B\x31m</a>"));
    }
    EXPECT_TRUE(ok({u"articles"_s, u"Ann & Tom"_s}).startsWith(u"u\t"));
    EXPECT_EQ(ok({u"check"_s}), u"");

    const QString nowhere = ctl_.filePath(u"no/folder"_s);
    const std::pair<QStringList, QString> refusals[] = {
        {{u"import"_s, u"http://localhost/gone"_s, u"X"_s}, u"(1002)"_s},
        {{u"import"_s, u"http://localhost/feed"_s, u"X"_s}, u"(1003)"_s},
        {{u"import"_s, nowhere, u"X"_s}, u"(1002)"_s},
        {{u"import"_s, u""_s, u"X"_s}, u"file"_s},
        {{u"export"_s, u"New"_s, nowhere}, nowhere},
        {{u"export"_s, u"X"_s, file}, u"\"X\""_s},
        {{u"export"_s, u"New"_s, u"last"_s, file}, u"\"New\""_s},
        {{u"save"_s, u"Ann & Tom"_s, u"Don't panic"_s, u"link"_s, nowhere}, nowhere},
        {{u"save"_s, u"Ann & Tom"_s, u"gone"_s, u"link"_s, file}, u"\"gone\""_s},
    };
    for (const auto &[arguments, words] : refusals) {
        const CtlRun run = ctl_.run(arguments);
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_TRUE(run.err.contains(words)) << run.err.toUtf8().constData();
    }
    EXPECT_FALSE(ok({u"categories"_s}).contains(u'X')) << "a refused list makes no category";
}

TEST_F(CommandTest, WhatAListShowsIsWhatACommandTakes) {
    server_.serve(u"/feed"_s, "<rss><channel><item><title>Two\nlines</title><guid>1</guid>"
                              "<description>Text</description></item></channel></rss>");
    const QString name = QString(44, u'n') + u"'''''''";
    EXPECT_EQ(ok({u"add"_s, u"C"_s, u"a\tb\uFEFFc"_s, u"http://x/"_s}), u"a bc\n");
    ok({u"rename"_s, u"a bc"_s, u"d\te"_s});
    ok({u"delete"_s, u"d e"_s});
    const QString stored = ok({u"add"_s, u"C"_s, name, server_.url(u"/feed")}).chopped(1);
    EXPECT_EQ(stored, name.left(50));
    EXPECT_EQ(ok({u"update"_s}), QString(u"ok\t1\t1/1\t" + stored + u'\n'));
    EXPECT_TRUE(ok({u"channels"_s}).startsWith(u"1/1\t"));
    EXPECT_EQ(ok({u"articles"_s, stored}).section(u'\t', 2), u"Two lines\n");
    EXPECT_TRUE(ok({u"show"_s, stored, u"Two lines"_s}).endsWith(u"Text\n"));
    EXPECT_EQ(ok({u"check"_s}), u"");
}

TEST_F(CommandTest, AMissingDeviceIsMadeByInitAlone) {
    const QString elsewhere = ctl_.filePath(u"elsewhere"_s);
    const CtlRun refused = ctl_.run({u"--home"_s, elsewhere, u"channels"_s});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_TRUE(refused.err.contains(u"init"));
    EXPECT_FALSE(QFile::exists(elsewhere));

    EXPECT_EQ(ok({u"--home"_s, elsewhere, u"init"_s}), u"3 categories, 8 channels\n");
    EXPECT_EQ(ok({u"--home"_s, elsewhere, u"init"_s}), u"3 categories, 8 channels\n");
    EXPECT_EQ(ok({u"--home"_s, elsewhere, u"setting"_s, u"Enabled"_s, u"--today"_s}), u"1\n");
    for (const QString &name : {u"News"_s, u"Technology"_s, u"Science"_s})
        ok({u"--home"_s, elsewhere, u"delete-category"_s, name});
    EXPECT_EQ(ok({u"--home"_s, elsewhere, u"init"_s}), u"3 categories, 0 channels\n")
        << "without categories they are seeded again, and the database is left alone";
}

TEST_F(CommandTest, SettingsAreWrittenWithTheirTypes) {
    ok({u"setting"_s, u"SortMode"_s, u"2"_s});
    EXPECT_EQ(ok({u"setting"_s, u"SortMode"_s}), u"2\n");
    ok({u"setting"_s, u"--today"_s, u"TITLE"_s, u"A 'title'"_s});
    EXPECT_EQ(ok({u"setting"_s, u"--today"_s, u"TITLE"_s}), u"A 'title'\n");
    EXPECT_EQ(ctl_.run({u"setting"_s, u"TITLE"_s}).exitCode, 1);
}

TEST_F(CommandTest, HelpAndVersionNeedNoDevice) {
    EXPECT_TRUE(ok({u"--help"_s}).contains(u"articles CHANNEL [--order date|status|unread]"));
    EXPECT_TRUE(ok({u"--version"_s}).startsWith(u"tidebrookctl "));
}

} // namespace
} // namespace tidebrook
