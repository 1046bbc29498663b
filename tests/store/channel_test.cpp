#include "support/open_store.h"

#include <gtest/gtest.h>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

class ChannelTest : public OpenStore {};

TEST_F(ChannelTest, AnyNameGoesThroughEveryOperation) {
    for (const QString &name :
         {u"World"_s, u"Bob's"_s, u"'; DELETE FROM RSSCHRecord --"_s, u"''''"_s, u"100%1 %s ? \\"_s,
          u"😀😀😀 ✈"_s, QString(50, u'x'), u"\u202Eעברית"_s}) {
        SCOPED_TRACE(name.toStdString());
        const QString category = name.left(39).trimmed();
        device_.addChannel(category, name, {u"one"_s, name.left(200)});
        EXPECT_EQ(device_.channelNames(category), QStringList(name));
        EXPECT_TRUE(store().SetChannelLink(name, u"http://example.org/%1?a=%20  "_s));
        QString link;
        EXPECT_TRUE(store().GetChannelLink(category, name, link));
        EXPECT_EQ(link, u"http://example.org/%1?a=%20");
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

} // namespace
} // namespace tidebrook
