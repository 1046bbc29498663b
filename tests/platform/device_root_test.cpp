#include "platform/clock.h"
#include "platform/device_root.h"
#include "platform/text.h"
#include "support/text_printing.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace tidebrook {
namespace {

TEST(DeviceRoot, ProvisioningThatFailsLeavesNothingAndOneThatSucceedsIsNotRepeated) {
    const QTemporaryDir folder;
    const DeviceRoot root(folder.filePath(QStringLiteral("deep/down/device")));
    EXPECT_FALSE(root.provision([](const DeviceRoot &) { return false; }));
    EXPECT_TRUE(QDir(folder.filePath(QStringLiteral("deep/down"))).isEmpty());

    EXPECT_TRUE(root.provision([](const DeviceRoot &built) {
        return QFile(built.filePath(u"\\windows\\mark")).open(QIODevice::WriteOnly);
    }));
    EXPECT_TRUE(QFile::exists(root.filePath(u"\\windows\\mark")));
    EXPECT_TRUE(root.provision([](const DeviceRoot &) {
        ADD_FAILURE() << "a root that exists was provisioned again";
        return true;
    }));
}

TEST(Text, CutsNeverHalveASurrogatePair) {
    const QString emoji = QStringLiteral("ab😀😀");
    EXPECT_EQ(cutText(emoji, 3), u"ab");
    EXPECT_EQ(cutText(emoji, 4), QStringLiteral("ab😀"));
    EXPECT_EQ(cutText(emoji, 9), emoji);
    EXPECT_EQ(cutText(emoji, 0), u"");
}

TEST(Text, TrimmingKeepsTheFirstCharacter) {
    EXPECT_EQ(TrimTrailingBlanks(u"  name  "), u"  name");
    EXPECT_EQ(TrimTrailingBlanks(u"   "), u" ");
    EXPECT_EQ(TrimTrailingBlanks(u""), u"");
}

} // namespace
} // namespace tidebrook
