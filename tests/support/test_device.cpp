#include "support/test_device.h"

#include <QDir>
#include <QFile>
#include <QStringEncoder>

namespace tidebrook {

QByteArray utf16(const QString &text) {
    return QStringEncoder(QStringConverter::Utf16LE).encode(text);
}

bool writeFile(const QString &path, const QByteArray &content) {
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

TestDevice::TestDevice(const QString &seed) : root(folder_.filePath(QStringLiteral("device"))) {
    QDir().mkpath(root.path());
    root.makeFolders();
    if (!seed.isNull())
        writeFile(root.filePath(u"\\windows\\RSSChannels.txt"), utf16(seed));
    restart();
}

void TestDevice::restart() {
    store.reset();
    registry.reset();
    registry = std::make_unique<Registry>(root);
    store = std::make_unique<FeedStore>(root, *registry, testTodayKey.toString());
}

void TestDevice::addChannel(const QString &category, const QString &name,
                            const QStringList &titles) {
    store->InsertChannel({category, name, QStringLiteral("http://example.org/feed")});
    store->changeAtOnce([&](SqlCommand &command) {
        int number = 0;
        for (const QString &title : titles) {
            command.setText(QStringLiteral("INSERT INTO RSSRecord VALUES ('%1', '%1 %2', '%3', "
                                           "'http://example.org/%2', 'Text', '2026-01-%4', 0, "
                                           "4000000000, '%5')")
                                .arg(escapedChannelName(name), QString::number(number),
                                     escapedTitle(title),
                                     QStringLiteral("%1").arg(28 - number, 2, 10, QChar(u'0')),
                                     escapedCategory(category)));
            command.execute();
            ++number;
        }
        store->RecountChannel(escapedChannelName(name));
    });
}

QStringList TestDevice::titles(const QString &channel, SortMode mode) {
    QStringList titles;
    store->ListArticles(channel, mode);
    for (const ArticleRow &row : store->takeArticleRows())
        titles.append(row.titleText());
    return titles;
}

QString TestDevice::counts(const QString &category, const QString &channel) {
    store->ListChannels(escapedCategory(category));
    for (const ChannelRow &row : store->takeChannelRows()) {
        if (row.nameText() == channel)
            return QStringLiteral("%1/%2").arg(row.unread).arg(row.total);
    }
    return {};
}

QStringList TestDevice::channelNames(const QString &category) {
    QStringList names;
    store->ListChannels(escapedCategory(category));
    for (const ChannelRow &row : store->takeChannelRows())
        names.append(row.nameText());
    return names;
}

quint32 TestDevice::lastErrorCode() {
    return SettingsStore(*registry).dword(programKey, u"ERRORNO");
}

} // namespace tidebrook
