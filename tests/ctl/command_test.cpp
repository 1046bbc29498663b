#include "ctl/ctl_process.h"
#include "platform/sql/registry.h"
#include "store/feed_store.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>

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

using CommandTest = CtlTest;

TEST_F(CommandTest, AReaderSubscribesRefreshesAndReads) {
    server_.serve(u"/feed"_s, feed);
    const QString url = server_.url(u"/feed");
    EXPECT_TRUE(ok(u"init"_s).startsWith(u"0 categories, 0 channels\t"));
    EXPECT_EQ(ok(u"add --create \"It's news\" Bob's " + url), u"Bob's\n");
    EXPECT_EQ(ok(u"categories"_s), u"It's news\n");
    EXPECT_EQ(ok(u"channels"_s), QString(u"0/0\tBob's\t" + url + u"\tIt's news\n"));
    EXPECT_EQ(ok(u"update"_s), u"ok\t2\t2/2\tBob's\n");
    const QString news =
        u"\u200F\u0645\u06CC\u200C\u062E\u0648\u0627\u0646\u0645"_s; // with a mark and a joiner
    ok(u"rename-category \"It's news\" "_s + news);
    EXPECT_EQ(ok(u"categories"_s), QString(news + u'\n'));
    EXPECT_EQ(ok(u"update %1 Bob's"_s.arg(news)), u"ok\t0\t2/2\tBob's\n");
    QElapsedTimer timer;
    timer.start();
    environment_.insert(u"TIDEBROOK_PAUSES"_s, u"20"_s); // percent
    EXPECT_EQ(ok(u"update --pauses"_s), u"ok\t0\t2/2\tBob's\n");
    EXPECT_GE(timer.elapsed(), 400) << "a second before and after";
    EXPECT_EQ(ok(u"articles Bob's"_s),
              u"u\t2026-11-07\tDon't panic\t1\nu\t2026-11-06\tTab here 1m\t2\n");
    EXPECT_EQ(ok(u"show Bob's \"Don't panic\""_s),
              u"Title:   Don't panic\nDate:    2026-11-07\nChannel: Bob's\n"
              "Link:    http://example.org/1\n\nText\n");
    EXPECT_EQ(ok(u"articles Bob's --order status"_s),
              u"u\t2026-11-06\tTab here 1m\t2\nr\t2026-11-07\tDon't panic\t1\n");
    EXPECT_EQ(ok(u"setting UnreadItems --today"_s), u"1\n");
    ok(u"mark Bob's read"_s);
    EXPECT_EQ(ok(u"articles Bob's --order unread"_s), u"");
    expectSound();
}

// What a kill may leave: the new name listed, or that and the channels moved already.
TEST_F(CommandTest, ACategorysRenamingThatWasBrokenOffGoesOn) {
    for (const QString &name : {u"A"_s, u"B"_s, u"C"_s})
        ok(u"add --create %1 \"of %1\" http://x/"_s.arg(name));
    for (const QStringList &halfDone :
         {QStringList{u"add-category New"_s},
          QStringList{u"rename-category B New"_s, u"add-category B"_s}}) {
        for (const QString &step : halfDone)
            ok(step);
        ok(u"rename-category B New"_s);
        EXPECT_EQ(ok(u"channels New"_s), u"0/0\tof B\thttp://x/\tNew\n");
        EXPECT_EQ(ok(u"channels"_s).count(u'\n'), 3);
        EXPECT_FALSE(ok(u"categories"_s).contains(u'B'));
        fails(u"rename-category A New"_s, u"The name is exist!"_s);
        expectSound();
        ok(u"rename-category New B"_s);
    }
}

TEST_F(CommandTest, WrongCallsSayWhyAndChangeNothing) {
    server_.serve(u"/feed"_s, feed);
    ok(u"add --create A one " + server_.url(u"/feed"));
    ok(u"update"_s);
    ok(u"add --create A two http://y/"_s);
    ok(u"add --create B other http://z/"_s);
    const auto stored = [this] {
        return QString(ok(u"channels"_s) + ok(u"categories"_s) + ok(u"articles one"_s));
    };
    const QString before = stored();
    const QString misused =
        u"; fly; help fly; fly --help; help add rename; service fly; update -n; -q; init now; add "
        u"A three; channels --pauses; channels --no-such; "
        "articles one --order size; update --jobs 0; update --jobs 2 --pauses; update --full "
        "--pauses; "
        "--home= channels; mark one seen; save one a page f; "
        "setting SortMode big; setting SortMode 3; setting UpdateInterval 0; setting Sort; "
        "setting Sort 1; setting SortMode 1 --today; auto add; auto add one --all; auto remove "
        "--all; "
        "auto add --all --category A; auto run one; channels --all"_s;
    for (const QString &call : misused.split(u"; "_s))
        fails(call, {}, 2);
    const QString refused =
        u"mark one read none; add-category A\uFEFF; add A \uFEFF http://x/; "
        u"rename one \uFFFEtwo; rename one \"\t\"; "
        "setting SortMode; add-category \" A \"; add-category \"  \"; rename-category A B; "
        "rename-category C D; rename-category A \" \"; delete-category C; channels C; "
        "add Unknown three http://y/; add A three y; add A three ftp://y/; add A three http:///y; "
        "add A three http://:80/; add A three \"http://y z/\"; relink one y; relink one \" \"; "
        "add A \" \" http://x/; add A three \"x', NULL, NULL, NULL);DELETE FROM RSSCHRecord --\"; "
        "rename one two; rename three four; "
        "move one C; relink one \"x', CATEGORY = 'B\"; delete three; articles three; show one "
        "none; "
        "update A three; auto remove one; auto add --category C; auto add --category="_s;
    for (const QString &call : refused.split(u"; "_s))
        fails(call);
    fails(u"add A three " + QString(600, u'x'));
    EXPECT_EQ(stored(), before);
}

TEST_F(CommandTest, HelpIsOfTheCommandAndQuietLeavesTheErrorsAlone) {
    ok(u"add --create C one http://127.0.0.1:1/"_s);
    EXPECT_EQ(ok(u"relink -h"_s), ok(u"help relink"_s));
    EXPECT_EQ(ok(u"-V"_s), ok(u"--version"_s));
    for (const QString &call : {u"-q channels"_s, u"init --quiet"_s})
        EXPECT_EQ(ok(call), u"") << qPrintable(call);
    EXPECT_TRUE(ok(u"-q export C -"_s).contains(u"127.0.0.1"));
    fails(u"-q channels D"_s, u"\"D\""_s);
    addChannel(u"two"_s, feed);
    EXPECT_EQ(run(u"update -qj1"_s).lines().size(), 1) << "the failure alone";
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
    const QString names = u"Ann & Tom\nBob's\n"_s;
    EXPECT_EQ(ok(u"import http://localhost/list New"_s), names);
    const QString channels = ok(u"channels"_s);
    EXPECT_EQ(channels.count(u'\n'), 2);
    const QString file = filePath(u"out.opml"_s);
    ok(u"export New " + file);
    ok(u"delete-category New"_s);
    EXPECT_EQ(ok(u"import %1 New"_s.arg(file)), names);
    EXPECT_EQ(ok(u"channels"_s), channels);
    EXPECT_EQ(ok(u"export New -"_s).toUtf8(), contentOf(file));
    EXPECT_EQ(run(u"import - Piped"_s, u"exec <"_s + file).lines().size(), 2);
    EXPECT_EQ(ok(u"channels Piped"_s).count(u'\n'), 2);
    ok(u"delete-category Piped"_s);
    ok(u"export New Bob's " + file);
    EXPECT_TRUE(ok(u"import %1 Again"_s.arg(file)).startsWith(u"Bob's-"));

    const CtlRun partly = run(u"import http://localhost/bad Bad"_s);
    EXPECT_EQ(partly.exitCode, 1);
    EXPECT_TRUE(partly.out.endsWith(u"last\n")) << "one bad entry does not end it";
    EXPECT_EQ(partly.lines().size(), 3);
    EXPECT_EQ(partly.err.count(u'\n'), 2);
    EXPECT_TRUE(partly.err.contains(u"quoted: The URL format is wrong!"));

    ok(u"update New \"Ann & Tom\""_s);
    for (const QString &what : {u"link"_s, u"article"_s}) {
        ok(u"save \"Ann & Tom\" \"Tab here 1m\" %1 %2"_s.arg(what, file));
        EXPECT_TRUE(contentOf(file).contains("Tab\there\xC2\x9B\x31m</a>"));
    }
    EXPECT_TRUE(ok(u"articles \"Ann & Tom\""_s).startsWith(u"u\t"));
    expectSound();

    const QString nowhere = filePath(u"no/folder"_s);
    fails(u"import http://localhost/feed X"_s, u"(1003)"_s);
    fails(u"import %1 X"_s.arg(nowhere), u"%1: no such file"_s.arg(nowhere));
    EXPECT_TRUE(run(u"import - X"_s, u"exec </dev/null"_s).err.contains(u"(1002)"));
    fails(u"import %1 X"_s.arg(root_.path()), u"(1002)"_s);
    fails(u"export New " + nowhere, nowhere);
    fails(u"export X " + file, u"\"X\""_s);
    fails(u"export New last " + file, u"\"New\""_s);
    fails(u"save \"Ann & Tom\" \"Don't panic\" link " + nowhere, nowhere);
    fails(u"save \"Ann & Tom\" gone link " + file, u"\"gone\""_s);
    EXPECT_FALSE(ok(u"categories"_s).contains(u'X')) << "a refused list makes no category";
}

TEST_F(CommandTest, WhatAListShowsIsWhatACommandTakes) {
    server_.serve(u"/feed"_s, "<rss><channel><item><title>Two\nlines</title><guid>1</guid>"
                              "<description>Text</description></item></channel></rss>");
    const QString name = QString(44, u'n') + u"'''''''";
    EXPECT_EQ(ok(u"add --create C \"a\tb\uFEFFc\" http://x/"_s), u"a bc\n");
    ok(u"rename \"a bc\" \"d\te\""_s);
    ok(u"delete \"d e\""_s);
    const QString stored =
        ok(u"add --create C %1 %2"_s.arg(name, server_.url(u"/feed"))).chopped(1);
    EXPECT_EQ(stored, name.left(50));
    EXPECT_EQ(ok(u"update"_s), QString(u"ok\t1\t1/1\t" + stored + u'\n'));
    EXPECT_TRUE(ok(u"channels"_s).startsWith(u"1/1\t"));
    EXPECT_EQ(ok(u"articles " + stored).section(u'\t', 2), u"Two lines\t1\n");
    EXPECT_TRUE(ok(u"show %1 \"Two lines\""_s.arg(stored)).endsWith(u"Text\n"));
    ok(u"setting --today TITLE \"A 'title'\""_s);
    EXPECT_EQ(ok(u"setting --today TITLE"_s), u"A 'title'\n");
    expectSound();
}

TEST_F(CommandTest, ADeletedCategorySaysWhatGoesAndATerminalIsAsked) {
    ok(u"add --create Kept kept http://x/"_s);
    addChannel(u"ch"_s, feed);
    addChannel(u"empty"_s);
    ok(u"update C ch"_s);
    const QString content = u"2 channels, 2 articles"_s;
    EXPECT_EQ(ok(u"delete-category C --dry-run"_s), content + u'\n');
    const auto onTerminal = [&](const QString &answer, const QString &option = {}) {
        return run(u"delete-category C " + option,
                   u"echo %1 | exec script -qec \"$0 $*\" /dev/null; exit $?"_s.arg(answer));
    };
    const CtlRun refused = onTerminal(u"n"_s);
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_TRUE(refused.out.contains(u"Delete \"C\" with %1?"_s.arg(content)))
        << qPrintable(refused.out);
    EXPECT_EQ(ok(u"channels C"_s).count(u'\n'), 2);
    const QString meanwhile =
        u"{ until grep -qs Delete \"$1\"; do :; done; \"$0\" -q add C more http://y/; echo y; } "
        "| exec script -qefc \"$0 delete-category C\" \"$1\"; exit $?"_s;
    const CtlRun changed = run(filePath(u"asked"_s), meanwhile);
    EXPECT_EQ(changed.exitCode, 1);
    EXPECT_TRUE(changed.out.contains(u"\"C\" stays"_s)) << qPrintable(changed.out);
    EXPECT_EQ(ok(u"channels C"_s).count(u'\n'), 3);
    EXPECT_EQ(onTerminal(u"y"_s).exitCode, 0);
    addChannel(u"ch"_s, feed);
    EXPECT_FALSE(onTerminal(u"n"_s, u"--yes"_s).out.contains(u"Delete"));
    addChannel(u"ch"_s, feed);
    EXPECT_EQ(ok(u"delete-category C"_s), u"1 channels, 0 articles\n") << "without a terminal";
    EXPECT_EQ(ok(u"channels"_s), u"0/0\tkept\thttp://x/\tKept\n");
    EXPECT_EQ(ok(u"categories"_s), u"Kept\n");
}

TEST_F(CommandTest, TheProgressOfAnUpdateStaysOnOneLineOfANarrowTerminal) {
    addChannel(u"ch"_s, feed);
    addChannel(QString(40, u'\u65B0'), feed); // twice as wide as a letter
    const CtlRun update = run(u"update C --jobs 1"_s,
                              u"exec script -qec \"stty cols 30; $0 $*\" /dev/null; exit $?"_s);
    EXPECT_EQ(update.exitCode, 0);
    const QString most = u"2 of 2  "_s + QString(10, u'\u65B0');
    EXPECT_TRUE(update.out.contains(QString(most + u"\r\x1b[K"))) << qPrintable(update.out);
}

TEST_F(CommandTest, ManyChannelsAtATimeAreToldInTheirOrder) {
    for (int i = 0; i < 12; ++i) {
        const QString name(QChar((i % 2 == 0 ? u'a' : u'A') + i));
        server_.serve(u'/' + name, feed);
        ok(u"add --create C %1 %2"_s.arg(name, i == 5 ? u"http://127.0.0.1:1/"_s
                                                      : server_.url(QString(u'/' + name))));
    }
    for (const QString &call : {u"update --jobs 5"_s, u"update --pauses"_s}) {
        const CtlRun update = run(call);
        EXPECT_EQ(update.exitCode, 1);
        for (int i = 0; i < 12; ++i) {
            EXPECT_EQ(update.lines().value(i).section(u'\t', 3, 3).toLower(), QChar(u'a' + i));
            EXPECT_EQ(update.lines().value(i).startsWith(u"error\t1007"), i == 5);
        }
    }
    expectSound();
}

TEST_F(CommandTest, ManyChannelsTakePartAtOnceAndEachOnce) {
    const QString left = u"\"no address\": cannot be updated automatically"_s;
    for (const QString &name : {u"one"_s, u"two"_s})
        ok(u"add --create A %1 http://%1/"_s.arg(name));
    ok(u"add --create A \"no address\" http://x/"_s);
    ok(u"add --create B three http://three/"_s);
    ok(u"auto add two"_s);
    EXPECT_EQ(ok(u"auto add --category B"_s), u"1 channel added\n");
    {
        Registry registry(root_);
        FeedStore store(root_, registry, testTodayKey.toString());
        EXPECT_TRUE(store.Open() && store.SetChannelLink(u"no address"_s, {}));
    }
    for (const QString &added : {u"1 channel added\n"_s, u"0 channels added\n"_s}) {
        const CtlRun all = run(u"auto add --all"_s);
        EXPECT_EQ(all.out, added);
        EXPECT_EQ(all.exitCode, 1);
        EXPECT_TRUE(all.err.contains(left));
    }
    EXPECT_EQ(ok(u"auto list"_s),
              u"two\tA\thttp://two/\nthree\tB\thttp://three/\none\tA\thttp://one/\n");
}

TEST_F(CommandTest, ADeviceIsMadeByInitAloneAndOnlyWhereNothingIs) {
    const QString elsewhere = filePath(u"elsewhere"_s);
    const auto there = [&](const QString &command) {
        return u"--home %1 %2"_s.arg(elsewhere, command);
    };
    fails(there(u"channels"_s), u"init"_s);
    EXPECT_FALSE(QFile::exists(elsewhere));
    ASSERT_TRUE(QDir().mkpath(elsewhere + u"/mine"));
    for (const QString &command :
         {u"channels"_s, u"check"_s, u"setting SortMode 1"_s, u"service start"_s, u"init"_s}) {
        fails(there(command), elsewhere);
        const auto all = QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot;
        EXPECT_EQ(QDir(elsewhere).entryList(all), QStringList(u"mine"_s)) << qPrintable(command);
    }
    ASSERT_TRUE(QDir(elsewhere).rmdir(u"mine"_s));
    for (const QString &made : {u"new device at "_s, u"device found at "_s})
        EXPECT_EQ(ok(there(u"init"_s)),
                  QString(u"3 categories, 8 channels\t" + made + elsewhere + u'\n'));
    EXPECT_EQ(ok(there(u"setting Enabled --today"_s)), u"1\n");
    ok(there(u"delete-category News"_s));
    EXPECT_TRUE(ok(there(u"init"_s)).startsWith(u"2 categories")) << "what was deleted comes back";
    for (const QString &name : {u"Technology"_s, u"Science"_s})
        ok(there(u"delete-category " + name));
    EXPECT_TRUE(ok(there(u"init"_s)).startsWith(u"3 categories, 0 channels\t"))
        << "without categories they are seeded again, and the database is left alone";
}

} // namespace
} // namespace tidebrook
