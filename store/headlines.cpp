#include "store/headlines.h"

#include "platform/base/text.h"
#include "platform/sql/sqlite_database.h"
#include "store/escape_sql.h"

namespace tidebrook {

namespace {

constexpr int longestWait = 5; // ms

// The order of the article lists.
constexpr char newestUnread[] =
    "SELECT c.CATEGORY, a.CHANNEL_NAME, a.TITLE FROM RSSRecord a "
    "JOIN RSSCHRecord c ON c.CHANNEL_NAME = a.CHANNEL_NAME WHERE a.READ_UNREAD = 0 "
    "ORDER BY a.PUBDATE DESC, a.TIMESTAMP DESC, a.rowid LIMIT ?";

QString columnText(const SqliteStatement &row, int column, qsizetype capacity) {
    return TrimTrailingBlanks(cutText(row.text(column), capacity)).toString();
}

} // namespace

std::optional<Headlines> readHeadlines(const DeviceRoot &device, int limit) {
    const auto database = SqliteDatabase::open(device.filePath(u"RSSVault.sdf"),
                                               {.readOnly = true, .busyTimeout = longestWait});
    if (!database)
        return std::nullopt;
    // Each page is read once, and the memory of a usual cache would stay with the program.
    database->run("PRAGMA cache_size = -100");
    Headlines found;
    SqliteStatement channels = database->prepare("SELECT 1 FROM RSSCHRecord LIMIT 1");
    found.hasChannels = channels.next();
    SqliteStatement rows = database->prepare(newestUnread, {qint64{limit}});
    while (rows.next()) {
        const Headline headline{columnText(rows, 0, categoryCapacity),
                                columnText(rows, 1, channelNameCapacity),
                                columnText(rows, 2, titleCapacity)};
        if (!headline.category.isEmpty() && !headline.channel.isEmpty() &&
            !headline.title.isEmpty())
            found.unread.append(headline);
    }
    return channels.failed() || rows.failed() ? std::nullopt : std::optional(found);
}

} // namespace tidebrook
