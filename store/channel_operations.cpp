#include "store/feed_store.h"

#include "platform/base/name_order.h"
#include "platform/base/text.h"

#include <QRandomGenerator>

namespace tidebrook {

namespace {

constexpr qsizetype suffixableNameLength = 45;
constexpr int suffixLimit = 10'000;

// Links are not escaped, and so no statement takes one with a quote.
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
        return command.execute(
            {"INSERT INTO RSSCHRecord VALUES ('%s', '%s', 0, 0, '%s', NULL, NULL, NULL)", category,
             escapedChannelName(name), link});
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
        {"SELECT CHANNEL_NAME, NUM_OF_UNREAD, TOTAL_ITEMS FROM RSSCHRecord WHERE CATEGORY = '%s'",
         escapedCategory},
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
        {"SELECT CHANNEL_NAME, NUM_OF_UNREAD, TOTAL_ITEMS, CHANNEL_LINK FROM RSSCHRecord "
         "WHERE CATEGORY = '%s'",
         escapedCategory(category)},
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
    return readRows("SELECT CATEGORY, CHANNEL_NAME, CHANNEL_LINK FROM RSSCHRecord",
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
    return readRows(
        {"SELECT CATEGORY FROM RSSCHRecord WHERE CHANNEL_NAME='%s'", escapedChannelName(name)},
        [&](const SqliteStatement &row) {
            category = TrimTrailingBlanks(row.text(0)).toString();
            return false;
        });
}

bool FeedStore::ListChannelCategories(QStringList &categories) {
    const auto guard = lock();
    categories.clear();
    return readRows("SELECT DISTINCT CATEGORY FROM RSSCHRecord", [&](const SqliteStatement &row) {
        categories.append(TrimTrailingBlanks(row.text(0)).toString());
        return true;
    });
}

bool FeedStore::GetChannelLink(const QString &category, const QString &name, QString &link) {
    const auto guard = lock();
    link.clear();
    return ReadText(
        {"SELECT CHANNEL_LINK FROM RSSCHRecord WHERE CATEGORY = '%s' and CHANNEL_NAME='%s'",
         escapedCategory(category), escapedChannelName(name)},
        link);
}

bool FeedStore::SetChannelLink(const QString &name, const QString &link) {
    return changeAndReopen([&] {
        const QStringView trimmed = TrimTrailingBlanks(cutText(link, linkCapacity));
        return isSafeLink(link) &&
               ExecuteNonQuery(
                   {"UPDATE RSSCHRecord SET CHANNEL_LINK = '%s' WHERE CHANNEL_NAME='%s'", trimmed,
                    escapedChannelName(name)});
    });
}

// The articles first: they are renamed also when the channel's new name is taken.
bool FeedStore::RenameChannel(const QString &old, const QString &to) {
    const QString name = escapedChannelName(old);
    const QString renamed = escapedChannelName(to);
    return changeAndReopen([&] {
        return ExecuteNonQuery({"UPDATE RSSRecord SET CHANNEL_NAME = '%s' WHERE CHANNEL_NAME='%s'",
                                renamed, name}) &&
               ExecuteNonQuery(
                   {"UPDATE RSSCHRecord SET CHANNEL_NAME = '%s' WHERE CHANNEL_NAME='%s'", renamed,
                    name});
    });
}

bool FeedStore::MoveChannel(const QString &name, const QString &category) {
    const QString channel = escapedChannelName(name);
    const QString moved = escapedCategory(category);
    return changeAndReopen([&] {
        return ExecuteNonQuery({"UPDATE RSSRecord SET CATEGORY = '%s' WHERE CHANNEL_NAME='%s'",
                                moved, channel}) &&
               ExecuteNonQuery({"UPDATE RSSCHRecord SET CATEGORY = '%s' WHERE CHANNEL_NAME='%s'",
                                moved, channel});
    });
}

bool FeedStore::DeleteChannel(const QString &name) {
    const QString channel = escapedChannelName(name);
    return executeAll({{"DELETE FROM RSSCHRecord WHERE CHANNEL_NAME='%s'", channel},
                       {"DELETE FROM RSSRecord WHERE CHANNEL_NAME='%s'", channel}});
}

bool FeedStore::RecountChannel(const QString &escapedName, ReadFlagCounts *counts) {
    ReadFlagCounts counted;
    const bool isDone = changeWhole([&] {
        return CountRows({"SELECT READ_UNREAD FROM RSSRecord WHERE CHANNEL_NAME='%s' "
                          "and READ_UNREAD = 0",
                          escapedName},
                         counted.unread) &&
               CountRows({"SELECT READ_UNREAD FROM RSSRecord WHERE CHANNEL_NAME='%s'", escapedName},
                         counted.total) &&
               ExecuteNonQuery({"UPDATE RSSCHRecord SET NUM_OF_UNREAD='%d', TOTAL_ITEMS='%d' "
                                "WHERE CHANNEL_NAME='%s'",
                                counted.unread, counted.total, escapedName});
    });
    if (isDone && counts)
        *counts = counted;
    return isDone;
}

bool FeedStore::IsSettled(const QString &name, qint64 oldestKept, ReadFlagCounts &counts) {
    const auto guard = lock();
    counts = {};
    std::optional<ReadFlagCounts> stored; // nothing where there is no such channel
    bool isYoung = true;
    const auto tally = [&](const SqliteStatement &row) {
        stored = {static_cast<int>(row.integer(2)), static_cast<int>(row.integer(3))};
        if (row.integer(4) == 0) // no article
            return true;
        ++counts.total;
        counts.unread += row.integer(0) == 0 ? 1 : 0;
        isYoung = isYoung && row.integer(1) >= oldestKept;
        return true;
    };
    const bool isRead =
        readRows({"SELECT READ_UNREAD, TIMESTAMP, NUM_OF_UNREAD, TOTAL_ITEMS, a.rowid "
                  "FROM RSSCHRecord c LEFT JOIN RSSRecord a ON a.CHANNEL_NAME = c.CHANNEL_NAME "
                  "WHERE c.CHANNEL_NAME = '%s'",
                  escapedChannelName(name)},
                 tally);
    return isRead && isYoung && stored && stored->unread == counts.unread &&
           stored->total == counts.total;
}

bool FeedStore::PublishTotalUnread() {
    qint64 sum = 0;
    {
        const auto guard = lock();
        if (!SumUnread("SELECT NUM_OF_UNREAD FROM RSSCHRecord", sum))
            return false;
    }
    // Without the store's lock, since the registry may be busy.
    return settings_.setDword(todayItemKey_, u"UnreadItems", static_cast<quint32>(sum));
}

bool FeedStore::MoveCategory(const QString &from, const QString &to) {
    const QString old = escapedCategory(from);
    const QString category = escapedCategory(to);
    return executeAll(
        {{"UPDATE RSSRecord SET CATEGORY = '%s' WHERE CHANNEL_NAME IN "
          "(SELECT CHANNEL_NAME FROM RSSCHRecord WHERE CATEGORY = '%s')",
          category, old},
         {"UPDATE RSSCHRecord SET CATEGORY = '%s' WHERE CATEGORY = '%s'", category, old}});
}

bool FeedStore::DeleteCategoryChannels(const QString &category) {
    const QString old = escapedCategory(category);
    return executeAll({{"DELETE FROM RSSRecord WHERE CHANNEL_NAME IN "
                        "(SELECT CHANNEL_NAME FROM RSSCHRecord WHERE CATEGORY = '%s')",
                        old},
                       {"DELETE FROM RSSCHRecord WHERE CATEGORY = '%s'", old}});
}

} // namespace tidebrook
