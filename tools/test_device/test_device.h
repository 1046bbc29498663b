#pragma once

#include "platform/base/device_root.h"
#include "platform/sql/registry.h"
#include "store/feed_store.h"

#include <QStringList>
#include <QTemporaryDir>

#include <memory>

namespace tidebrook {

inline constexpr QStringView testTodayKey = u"Software\\Microsoft\\Today\\Items\\Tidebrook";

/// An article, with texts as they stand in the database.
struct TestArticle {
    QString title;
    QString link = QStringLiteral("http://example.org/");
    QString description = QStringLiteral("Text");
    QString date = QStringLiteral("2026-01-28");
};

/// A device root of its own for one test, with whatever seed file it is given.
class TestDevice {
public:
    /// The seed file's text.
    explicit TestDevice(const QString &seed = QStringLiteral(""));

    /// Ends the store and starts another over the same files, as a restart does.
    void restart();

    /// Adds a channel to the open store and an article for each title, unread, each a day older
    /// than the one before.
    void addChannel(const QString &category, const QString &name, const QStringList &titles = {});
    /// The same with these articles.
    void addChannel(const QString &category, const QString &name,
                    const QList<TestArticle> &articles);

    QStringList titles(const QString &channel, SortMode mode = SortMode::Date);
    /// "unread/total" of a channel as its category's list shows it; null when it is not there.
    QString counts(const QString &category, const QString &channel);
    QStringList channelNames(const QString &category);
    quint32 lastErrorCode();

private:
    QList<ChannelRow> channels(const QString &category);

    QTemporaryDir folder_;

public:
    const DeviceRoot root;
    std::unique_ptr<Registry> registry;
    std::unique_ptr<FeedStore> store;
};

/// A text as it stands in a UTF-16LE file.
QByteArray utf16(const QString &text);
bool writeFile(const QString &path, const QByteArray &content);
/// Null for what cannot be read.
QByteArray contentOf(const QString &path);

} // namespace tidebrook
