#include "ui/sharing_test.h"

namespace tidebrook {

SharingTest::SharingTest() {
    qputenv("TIDEBROOK_HTTP_PORT", QByteArray::number(server.port()));
    qputenv("XDG_CONFIG_HOME", config_.path().toLocal8Bit());
    EXPECT_TRUE(writeFile(config_.filePath(u"user-dirs.dirs"_s),
                          u"XDG_DOCUMENTS_DIR=\"%1\"\n"_s.arg(documents.path()).toUtf8()));
}

SharingTest::~SharingTest() {
    qunsetenv("TIDEBROOK_HTTP_PORT");
    qunsetenv("XDG_CONFIG_HOME");
}

void SharingTest::runInScience(const Hand &user) {
    run([&](User &someone) {
        go(someone, 1);
        ASSERT_TRUE(someone.seesLines(scienceLines) && someone.seesQuiet());
        user(someone);
    });
}

QStringList SharingTest::channels(const QString &category) {
    QStringList channels;
    for (const QString &name : device.channelNames(category)) {
        QString link;
        EXPECT_TRUE(device.store->GetChannelLink(category, name, link));
        channels.append(name + u' ' + link);
    }
    return channels;
}

} // namespace tidebrook
