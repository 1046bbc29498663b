#pragma once

#include "feed_server/feed_server.h"
#include "ui/reading_test.h"

#include <QTemporaryDir>

namespace tidebrook {

/// A device as for reading, a server that stands for every host at its plain port, and a folder
/// for the user's documents.
class SharingTest : public ReadingTest {
public:
    SharingTest(const SharingTest &) = delete;
    SharingTest &operator=(const SharingTest &) = delete;

protected:
    SharingTest();
    ~SharingTest() override;

    /// Shows the channels of Science to the user.
    void runInScience(const Hand &user);
    /// The channels of a category, each as "NAME ADDRESS".
    QStringList channels(const QString &category);
    QString path(const QString &name) const { return documents.filePath(name); }

    FeedServer server;
    QTemporaryDir documents;

private:
    QTemporaryDir config_;
};

} // namespace tidebrook
