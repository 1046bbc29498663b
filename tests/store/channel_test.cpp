#include "support/open_store.h"

#include <gtest/gtest.h>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

class ChannelTest : public OpenStore {
protected:
    QString link(const QString &category, const QString &name) {
        QString found;
        EXPECT_TRUE(store().GetChannelLink(category, name, found));
        return found;
    }
};

TEST_F(ChannelTest, ATakenNameIsStoredWithASuffix) {
    const QString name45(45, u'n');
    QString stored;
    EXPECT_TRUE(store().InsertChannel({u"A"_s, u"World"_s, u"l"_s}, &stored));
    EXPECT_EQ(stored, u"World");
    EXPECT_TRUE(store().InsertChannel({u"B"_s, u"World  "_s, u"l"_s}, &stored));
    EXPECT_TRUE(stored.startsWith(u"World  -"));
    EXPECT_LT(stored.sliced(8).toInt(), 10'000);
    EXPECT_EQ(device_.channelNames(u"B"_s), QStringList(stored));
    EXPECT_TRUE(store().InsertChannel({u"A"_s, name45, u"l"_s}));
    EXPECT_FALSE(store().InsertChannel({u"A"_s, name45, u"l"_s}));
    EXPECT_EQ(device_.channelNames(u"A"_s).size(), 2);
}

TEST_F(ChannelTest, AnyNameGoesThroughEveryOperation) {
    for (const QString &name :
         {u"World"_s, u"Bob's"_s, u"'; DELETE FROM RSSCHRecord --"_s, u"''''"_s, u"100%1 %s ? \\"_s,
          u"😀😀😀 ✈"_s, QString(50, u'x'), u"\u202Eעברית"_s}) {
        SCOPED_TRACE(name.toStdString());
        const QString category = name.left(39).trimmed();
        device_.addChannel(category, name, {u"one"_s, name.left(200)});
        EXPECT_EQ(device_.channelNames(category), QStringList(name));
        EXPECT_TRUE(store().SetChannelLink(name, u"http://example.org/%1?a=%20  "_s));
        EXPECT_EQ(link(category, name), u"http://example.org/%1?a=%20");
        EXPECT_TRUE(store().MarkChannelRead(name));
        EXPECT_TRUE(store().MoveChannel(name, u"Other's"_s));
        EXPECT_EQ(device_.counts(u"Other's"_s, name), u"0/2");
        ReadFlagCounts counts;
        EXPECT_TRUE(store().CountReadFlags(u"Other's"_s, name, counts));
        EXPECT_EQ(counts.total, 2);
        EXPECT_TRUE(store().RenameChannel(name, u"Plain"_s));
        EXPECT_EQ(device_.titles(u"Plain"_s).size(), 2);
        EXPECT_TRUE(store().RenameChannel(u"Plain"_s, name));
        EXPECT_TRUE(store().MoveCategory(u"Other's"_s, category));
        EXPECT_EQ(device_.channelNames(category), QStringList(name));
        EXPECT_TRUE(store().DeleteChannel(name));
        EXPECT_EQ(device_.channelNames(category), QStringList());
        EXPECT_EQ(device_.titles(name), QStringList());
    }
}

TEST_F(ChannelTest, ALinkWithAQuoteNeverBecomesSql) {
    device_.addChannel(u"C"_s, u"victim"_s);
    const QString attack = u"x', NULL, NULL, NULL); DELETE FROM RSSCHRecord --"_s;
    EXPECT_FALSE(store().InsertChannel({u"C"_s, u"attack"_s, attack}));
    EXPECT_FALSE(store().InsertChannel({u"C"_s, u"attack"_s, u"x', 'a', 'b', 'c')"_s}));
    EXPECT_FALSE(store().SetChannelLink(u"victim"_s, u"x', CATEGORY = 'y"_s));
    EXPECT_EQ(device_.channelNames(u"C"_s), QStringList(u"victim"_s));
    EXPECT_EQ(link(u"C"_s, u"victim"_s), u"http://example.org/feed");
}

TEST_F(ChannelTest, AListEndsAtTheRowBufferAndACategoryOperationDoesNot) {
    store().changeAtOnce([](SqlCommand &command) {
        for (int i = 0; i < 700; ++i) {
            command.execute(u"INSERT INTO RSSCHRecord VALUES ('Big', 'channel %1', 0, 0, 'l', "
                            "NULL, NULL, NULL)"_s.arg(i));
        }
    });
    EXPECT_EQ(device_.channelNames(u"Big"_s).size(), 606);
    EXPECT_TRUE(store().MoveCategory(u"Big"_s, u"Moved"_s));
    EXPECT_EQ(device_.channelNames(u"Big"_s), QStringList());
    EXPECT_EQ(device_.channelNames(u"Moved"_s).size(), 606);
    EXPECT_TRUE(store().DeleteCategoryChannels(u"Moved"_s));
    EXPECT_EQ(device_.channelNames(u"Moved"_s), QStringList());
}

TEST_F(ChannelTest, AChannelWithoutANameHidesNoOther) {
    device_.addChannel(u"A"_s, u"first"_s);
    device_.addChannel(u"A"_s, u"second"_s);
    ASSERT_TRUE(store().RenameChannel(u"first"_s, u""_s));
    EXPECT_EQ(device_.channelNames(u"A"_s), (QStringList{u""_s, u"second"_s}));
    EXPECT_TRUE(store().RenameChannel(u""_s, u"third"_s));
    EXPECT_EQ(device_.channelNames(u"A"_s), (QStringList{u"second"_s, u"third"_s}));
}

} // namespace
} // namespace tidebrook
