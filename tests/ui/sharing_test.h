#pragma once

#include "feed_server/direct_port.h"
#include "test_device/home.h"
#include "ui/reading_test.h"

namespace tidebrook {

/// A device as for reading, a server that stands for every host at its plain port, and a home.
class SharingTest : public ReadingTest {
protected:
    /// Shows the channels of Science to the user.
    void runInScience(const Hand &user) {
        run([&](User &someone) {
            go(someone, 1);
            ASSERT_TRUE(someone.seesLines(scienceLines) && someone.seesQuiet());
            user(someone);
        });
    }
    /// The channels of a category, each as "NAME ADDRESS".
    QStringList channels(const QString &category) {
        QStringList channels;
        for (const QString &name : device.channelNames(category)) {
            QString link;
            EXPECT_TRUE(device.store->GetChannelLink(category, name, link));
            channels.append(name + u' ' + link);
        }
        return channels;
    }

    FeedServer server;
    const DirectPort directPort{server};
    const Home home;
};

} // namespace tidebrook
