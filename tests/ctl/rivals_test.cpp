#include "ctl/ctl_process.h"
#include "feed_server/generated_feed.h"

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

/// Several commands at once on one device.
using RivalsTest = CtlTest;

TEST_F(RivalsTest, FirstStartsAtTheSameTimeMakeOneDevice) {
    for (int round = 0; round < 3; ++round) {
        const QString home = u"--home %1 "_s.arg(filePath(u"fresh%1"_s.arg(round)));
        EXPECT_EQ(together(QStringList(8, home + u"init")), QList<int>(8, 0));
        EXPECT_TRUE(ok(home + u"init").startsWith(u"3 categories, 8 channels\t"));
        EXPECT_EQ(ok(home + u"check"), u"");
    }
}

TEST_F(RivalsTest, WhatIsStoredIsNeverToldToHaveFailed) {
    for (int i = 0; i < 5; ++i)
        ok(u"add --create C ch%1 http://x/"_s.arg(i));
    for (int round = 0; round < 4; ++round) {
        QStringList calls;
        for (int i = 0; i < 5; ++i) {
            calls.append(u"setting FontSize %1"_s.arg(9 + i));
            calls.append(u"add-category \"%1 %2\""_s.arg(round).arg(i));
            calls.append(u"auto %1 ch%2"_s.arg(round % 2 == 0 ? u"add" : u"remove").arg(i));
        }
        EXPECT_EQ(together(calls), QList<int>(15, 0));
        EXPECT_EQ(ok(u"auto list"_s).count(u'\n'), round % 2 == 0 ? 5 : 0);
    }
    EXPECT_EQ(ok(u"categories"_s).count(u'\n'), 21);
    expectSound();
}

TEST_F(RivalsTest, NamesThatTwoWantGoToOneOfThem) {
    for (int round = 0; round < 5; ++round) {
        for (const QString &name : {u"A%1"_s.arg(round), u"B%1"_s.arg(round)})
            ok(u"add --create %1 \"%1 one\" http://127.0.0.1:1/"_s.arg(name));
        QStringList calls;
        for (const char *call : {"rename-category A%1 C%1", "rename-category B%1 C%1",
                                 "rename \"A%1 one\" C%1", "rename \"B%1 one\" C%1", "channels"})
            calls.append(QString::fromLatin1(call).replace(u"%1"_s, QString::number(round)));
        const QList<int> codes = together(calls);
        EXPECT_EQ(codes[0] + codes[1], 1);
        EXPECT_EQ(codes[2] + codes[3], 1);
        expectSound();
    }
    EXPECT_EQ(ok(u"channels"_s).count(u'\n'), 10);
}

TEST_F(RivalsTest, ChannelsThatChangeWhileTheirFeedIsOnItsWayStayWhole) {
    const QStringList names{u"gone"_s, u"renamed"_s, u"moved"_s};
    for (int i = 0; i < 3; ++i) {
        server_.serve(u"/%1"_s.arg(i), generatedFeed(5, static_cast<quint32>(i)));
        ok(u"add --create A %1 http://%2.localhost:%3/%2"_s.arg(names[i]).arg(i).arg(
            server_.port()));
    }
    ok(u"add-category B"_s);
    for (const QString &update : {u"update"_s, u"update B --pauses"_s}) {
        server_.clearRequests();
        server_.setDelay(std::chrono::milliseconds(700));
        const auto process = start(update);
        const bool isFirst = update == u"update";
        waitFor([&] { return server_.requests().size() == (isFirst ? 3 : 1); });
        ok(isFirst ? u"delete gone"_s : u"delete \"new name\""_s);
        if (isFirst)
            ok(u"rename renamed \"new name\""_s);
        ok(isFirst ? u"move moved B"_s : u"move moved A"_s);
        process->waitForFinished();
        server_.setDelay(std::chrono::milliseconds(0));
        expectSound();
    }
    // Nothing of the deleted channel is left to stand in the way of a new one.
    ok(u"add --create A again "_s + server_.url(u"/0"));
    EXPECT_EQ(ok(u"update A again"_s), u"ok\t5\t5/5\tagain\n");
    expectSound();
}

} // namespace
} // namespace tidebrook
