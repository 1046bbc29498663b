#include "test_device/test_device.h"

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

QByteArray contentOf(const QString &path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

TestDevice::TestDevice(const QString &seed) : root(folder_.filePath(QStringLiteral("device"))) {
    QDir().mkpath(root.path());
    root.makeFolders();
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
    QList<TestArticle> articles;
    for (const QString &title : titles)
        articles.append(
            {.title = title,
             .link = QStringLiteral("http://example.org/%1").arg(articles.size()),
             .date = QStringLiteral("2026-01-%1").arg(28 - articles.size(), 2, 10, QChar(u'0'))});
    addChannel(category, name, articles);
}

void TestDevice::addChannel(const QString &category, const QString &name,
                            const QList<TestArticle> &articles) {
    store->InsertChannel({category, name, QStringLiteral("http://example.org/feed")});
    store->changeAtOnce([&](SqlCommand &command) {
        int number = 0;
        for (TestArticle article : articles) {
            const QString channel = escapedChannelName(name);
            command.execute({"INSERT INTO RSSRecord VALUES ('%s', '%s', '%s', '%s', '%s', '%s', 0, "
                             "4000000000, '%s')",
                             channel, QString(channel + u' ' + QString::number(number++)),
                             escapedTitle(article.title), article.link,
                             article.description.replace(u'\'', QLatin1String("''")), article.date,
                             escapedCategory(category)});
        }
        store->RecountChannel(escapedChannelName(name));
    });
}

QStringList TestDevice::titles(const QString &channel, SortMode mode) {
    QStringList titles;
    QList<ArticleRow> rows;
    store->ListArticles(channel, mode, rows);
    for (const ArticleRow &row : std::as_const(rows))
        titles.append(row.title);
    return titles;
}

QList<ChannelRow> TestDevice::channels(const QString &category) {
    QList<ChannelRow> rows;
    store->ListChannels(escapedCategory(category), rows);
    return rows;
}

QString TestDevice::counts(const QString &category, const QString &channel) {
    for (const ChannelRow &row : channels(category)) {
        if (row.name == channel)
            return QStringLiteral("%1/%2").arg(row.unread).arg(row.total);
    }
    return {};
}

QStringList TestDevice::channelNames(const QString &category) {
    QStringList names;
    for (const ChannelRow &row : channels(category))
        names.append(row.name);
    return names;
}

quint32 TestDevice::lastErrorCode() {
    return SettingsStore(*registry).dword(programKey, u"ERRORNO");
}

} // namespace tidebrook
