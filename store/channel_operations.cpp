#include "store/feed_store.h"

#include "platform/base/name_order.h"
#include "platform/base/text.h"

#include <QRandomGenerator>

namespace tidebrook {

namespace {

constexpr qsizetype suffixableNameLength = 45;
constexpr int suffixLimit = 10'000;

// Links are not escaped. A quote would end the literal, and what follows could become SQL.
bool isSafeLink(const QString &link) { return !link.contains(u'\''); }

} // namespace

bool FeedStore::InsertChannel(const ChannelRecord &record, QString *storedName) {
    const auto guard = lock();
    if (!session_)
        return recordFailure(false);
    SqlCommand command(*session_);
    return insertChannel(command, record, storedName);
}

bool FeedStore::insertChannel(SqlCommand &command, const ChannelRecord &record,
                              QString *storedName) {
    const QString link = cutText(record.channelLink, linkCapacity).toString();
    if (!isSafeLink(link) || record.category.isNull() || record.channelName.isNull())
        return false;
    const QString category = escapedCategory(record.category);
    QString name = withoutDropped(cutText(record.channelName, channelNameCapacity));
    const auto insert = [&] {
        return command.execute(QStringLiteral("INSERT INTO RSSCHRecord VALUES ('%1', '%2', 0, 0, '")
                                   .arg(category, escapedChannelName(name)) +
                               link + QStringLiteral("', NULL, NULL, NULL)"));
    };
    SqliteStep status = insert();
    if (status == SqliteStep::IntegrityViolation && name.size() < suffixableNameLength) {
        name += u'-' + QString::number(QRandomGenerator::global()->bounded(suffixLimit));
        status = insert();
    }
    if (status == SqliteStep::IntegrityViolation)
        return false;
    if (status != SqliteStep::Done)
        return recordFailure(false);
    if (storedName)
        *storedName = name;
    return true;
}

bool FeedStore::ListChannels(const QString &escapedCategory, QList<ChannelRow> &channels) {
    const auto guard = lock();
    return ReadChannelRows(
        QStringLiteral("SELECT CHANNEL_NAME, NUM_OF_UNREAD, TOTAL_ITEMS FROM RSSCHRecord "
                       "WHERE CATEGORY = '%1'")
            .arg(escapedCategory),
        channels);
}

bool FeedStore::ListChannelsByName(const QString &category, QList<ChannelRow> &channels) {
    const bool isListed = ListChannels(escapedCategory(category), channels);
    sortByName(channels);
    return isListed;
}

bool FeedStore::ListWholeCategory(const QString &category, QList<ListedChannel> &channels) {
    const auto guard = lock();
    channels.clear();
    return readRows(
        QStringLiteral("SELECT CHANNEL_NAME, NUM_OF_UNREAD, TOTAL_ITEMS, CHANNEL_LINK "
                       "FROM RSSCHRecord WHERE CATEGORY = '%1'")
            .arg(escapedCategory(category)),
        [&](const SqliteStatement &row) {
            const auto text = [&](int column, qsizetype capacity) {
                return TrimTrailingBlanks(cutText(row.text(column), capacity)).toString();
            };
            channels.append({text(0, channelNameCapacity), category, text(3, linkCapacity),
                             static_cast<int>(row.integer(1)), static_cast<int>(row.integer(2))});
            return true;
        });
}

bool FeedStore::ListFeeds(QList<ChannelRecord> &feeds) {
    const auto guard = lock();
    feeds.clear();
    return readRows(QStringLiteral("SELECT CATEGORY, CHANNEL_NAME, CHANNEL_LINK FROM RSSCHRecord"),
                    [&](const SqliteStatement &row) {
                        const auto text = [&](int column) {
                            return TrimTrailingBlanks(row.text(column)).toString();
                        };
                        feeds.append({text(0), text(1), text(2)});
                        return true;
                    });
}

bool FeedStore::FindCategory(const QString &name, QString &category) {
    const auto guard = lock();
    category = QString();
    return readRows(QStringLiteral("SELECT CATEGORY FROM RSSCHRecord WHERE CHANNEL_NAME='%1'")
                        .arg(escapedChannelName(name)),
                    [&](const SqliteStatement &row) {
                        category = TrimTrailingBlanks(row.text(0)).toString();
                        return false;
                    });
}

bool FeedStore::ListChannelCategories(QStringList &categories) {
    const auto guard = lock();
    categories.clear();
    return readRows(QStringLiteral("SELECT DISTINCT CATEGORY FROM RSSCHRecord"),
                    [&](const SqliteStatement &row) {
                        categories.append(TrimTrailingBlanks(row.text(0)).toString());
                        return true;
                    });
}

bool FeedStore::GetChannelLink(const QString &category, const QString &name, QString &link) {
    const auto guard = lock();
    link.clear();
    return ReadText(QStringLiteral("SELECT CHANNEL_LINK FROM RSSCHRecord WHERE CATEGORY = '%1' and "
                                   "CHANNEL_NAME='%2'")
                        .arg(escapedCategory(category), escapedChannelName(name)),
                    link);
}

bool FeedStore::SetChannelLink(const QString &name, const QString &link) {
    return changeAndReopen([&] {
        const QStringView trimmed = TrimTrailingBlanks(cutText(link, linkCapacity));
        return isSafeLink(link) &&
               ExecuteNonQuery(QStringLiteral("UPDATE RSSCHRecord SET CHANNEL_LINK = '%1' WHERE "
                                              "CHANNEL_NAME='%2'")
                                   .arg(trimmed, escapedChannelName(name)));
    });
}

bool FeedStore::RenameChannel(const QString &old, const QString &to) {
    return setInBothTables(u"CHANNEL_NAME", escapedChannelName(to), old);
}

bool FeedStore::MoveChannel(const QString &name, const QString &category) {
    return setInBothTables(u"CATEGORY", escapedCategory(category), name);
}

// The articles first: they are renamed also when the channel's new name is taken.
bool FeedStore::setInBothTables(QStringView column, const QString &escaped,
                                const QString &channel) {
    const QString statement = QStringLiteral("UPDATE %1 SET %2 = '%3' WHERE CHANNEL_NAME='%4'");
    const QString name = escapedChannelName(channel);
    return changeAndReopen([&] {
        return ExecuteNonQuery(statement.arg(u"RSSRecord", column, escaped, name)) &&
               ExecuteNonQuery(statement.arg(u"RSSCHRecord", column, escaped, name));
    });
}

bool FeedStore::DeleteChannel(const QString &name) {
    const QString channel = escapedChannelName(name);
    return executeAll(
        {QStringLiteral("DELETE FROM RSSCHRecord WHERE CHANNEL_NAME='%1'").arg(channel),
         QStringLiteral("DELETE FROM RSSRecord WHERE CHANNEL_NAME='%1'").arg(channel)});
}

bool FeedStore::RecountChannel(const QString &escapedName, ReadFlagCounts *counts) {
    ReadFlagCounts counted;
    const bool isDone = changeWhole([&] {
        return CountRows(QStringLiteral("SELECT READ_UNREAD FROM RSSRecord WHERE CHANNEL_NAME='%1' "
                                        "and READ_UNREAD = 0")
                             .arg(escapedName),
                         counted.unread) &&
               CountRows(QStringLiteral("SELECT READ_UNREAD FROM RSSRecord WHERE CHANNEL_NAME='%1'")
                             .arg(escapedName),
                         counted.total) &&
               ExecuteNonQuery(
                   QStringLiteral("UPDATE RSSCHRecord SET NUM_OF_UNREAD='%1', TOTAL_ITEMS='%2' "
                                  "WHERE CHANNEL_NAME='%3'")
                       .arg(QString::number(counted.unread), QString::number(counted.total),
                            escapedName));
    });
    if (isDone && counts)
        *counts = counted;
    return isDone;
}

bool FeedStore::IsSettled(const QString &name, qint64 oldestKept, ReadFlagCounts &counts) {
    const auto guard = lock();
    counts = {};
    ReadFlagCounts stored;
    bool isYoung = true;
    const auto tally = [&](const SqliteStatement &row) {
        ++counts.total;
        counts.unread += row.integer(0) == 0 ? 1 : 0;
        isYoung = isYoung && row.integer(1) >= oldestKept;
        stored = {static_cast<int>(row.integer(2)), static_cast<int>(row.integer(3))};
        return true;
    };
    const bool isRead = readRows(
        QStringLiteral("SELECT READ_UNREAD, TIMESTAMP, NUM_OF_UNREAD, TOTAL_ITEMS FROM RSSRecord "
                       "JOIN RSSCHRecord ON RSSCHRecord.CHANNEL_NAME = RSSRecord.CHANNEL_NAME "
                       "WHERE RSSCHRecord.CHANNEL_NAME = '%1'")
            .arg(escapedChannelName(name)),
        tally);
    return isRead && isYoung && stored.unread == counts.unread && stored.total == counts.total;
}

bool FeedStore::PublishTotalUnread() {
    qint64 sum = 0;
    {
        const auto guard = lock();
        if (!SumUnread(QStringLiteral("SELECT NUM_OF_UNREAD FROM RSSCHRecord"), sum))
            return false;
    }
    // Without the store's lock, since the registry may be busy.
    return settings_.setDword(todayItemKey_, u"UnreadItems", static_cast<quint32>(sum));
}

bool FeedStore::MoveCategory(const QString &from, const QString &to) {
    const QString old = escapedCategory(from);
    const QString category = escapedCategory(to);
    return executeAll(
        {QStringLiteral("UPDATE RSSRecord SET CATEGORY = '%1' WHERE CHANNEL_NAME IN "
                        "(SELECT CHANNEL_NAME FROM RSSCHRecord WHERE CATEGORY = '%2')")
             .arg(category, old),
         QStringLiteral("UPDATE RSSCHRecord SET CATEGORY = '%1' WHERE CATEGORY = '%2'")
             .arg(category, old)});
}

bool FeedStore::DeleteCategoryChannels(const QString &category) {
    const QString old = escapedCategory(category);
    return executeAll(
        {QStringLiteral("DELETE FROM RSSRecord WHERE CHANNEL_NAME IN "
                        "(SELECT CHANNEL_NAME FROM RSSCHRecord WHERE CATEGORY = '%1')")
             .arg(old),
         QStringLiteral("DELETE FROM RSSCHRecord WHERE CATEGORY = '%1'").arg(old)});
}

} // namespace tidebrook
