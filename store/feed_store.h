#pragma once

#include "platform/base/device_root.h"
#include "platform/sql/registry.h"
#include "platform/sql/sql.h"
#include "store/escape_sql.h"
#include "store/rows.h"
#include "store/settings_store.h"

#include <QString>
#include <QStringList>

#include <array>
#include <functional>
#include <memory>
#include <mutex>

namespace tidebrook {

/// A channel that is being inserted. Longer texts are cut to the capacities of the names: 40, 50
/// and 512 characters.
struct ChannelRecord {
    QString category;
    QString channelName;
    QString channelLink;
};

/// What is kept of an article besides its title.
struct ArticleDetail {
    QString publicationDate; // YYYY-MM-DD, or empty
    QString description;     // markup as the feed sent it
    QString itemLink;
};

/// The same, as it is saved and sent.
using ArticleExtract = ArticleDetail;

struct ReadFlagCounts {
    int unread = 0;
    int total = 0;
};

/// The orders of an article list.
enum class SortMode {
    Date = 12,       ///< newest first
    Status = 13,     ///< unread first, each group newest first
    UnreadOnly = 14, ///< only unread ones, newest first
};

/// The one database of the system, and the only way to it: every channel and article is read and
/// changed here. `docs/formats.md` describes the file.
///
/// Operations return whether they succeeded. The reason of a failure is kept as a code in
/// `error()`, until another failure or `clearError()`; an operation that names no code leaves it
/// as it is. No operation throws, shows anything, or waits for the network; one that writes waits
/// up to five seconds for another process that does.
///
/// A name is a category of 40, a channel of 50 or a title of 255 UTF-16 units at most; more is
/// cut. Quotes and any other character are welcome in names; a link with a quote is refused.
///
/// Thread-safe: every operation takes the store's lock. A caller that lists and then walks the
/// rows, or reads `error()` after an operation, holds `lock()` over both.
class FeedStore {
public:
    /// The parts outlive the store. `todayItemKey` is the registry key of the Today item.
    FeedStore(const DeviceRoot &device, Registry &registry, const QString &todayItemKey);
    ~FeedStore();
    FeedStore(const FeedStore &) = delete;
    FeedStore &operator=(const FeedStore &) = delete;

    quint32 error() const;
    void clearError();
    void recordError(quint32 code);

    [[nodiscard]] std::unique_lock<std::recursive_mutex> lock() const;

    // --- the file ---

    /// Opens the database, creating and seeding it first when there is none. A file that cannot
    /// be opened, or is no such database, stays as it is; the code is 1001. Without the seed file
    /// nothing is created; the code is 1006.
    bool Open();
    bool OpenExisting();
    /// Builds the database aside and puts it in place whole. False, with nothing left behind,
    /// when a part of it failed.
    bool CreateDatabase();
    /// Closes the file. An operation that ends by opening it anew does so all the same; every other
    /// one fails until the next Open. Always true.
    bool ReleaseSession();
    /// Ends the store for good: nothing opens it again. Always true.
    bool Close();

    // --- channels ---

    /// Inserts a channel. A name that exists, in any category, is stored with "-" and a random
    /// number from 0 to 9999 behind it if it is shorter than 45 characters. `storedName` is given
    /// the name under which it was stored. A name or link that is refused is none of the database's
    /// failures, and has no code.
    bool InsertChannel(const ChannelRecord &record, QString *storedName = nullptr);
    /// Lists a category's channels into the row buffer; `escapedCategory` has been through
    /// EscapeSql. At most 606 rows.
    bool ListChannels(const QString &escapedCategory);
    /// The category that a channel is in; null when there is no such channel.
    bool FindCategory(const QString &name, QString &category);
    /// Every category that any channel is in.
    bool ListChannelCategories(QStringList &categories);
    /// An empty link when there is no such channel.
    bool GetChannelLink(const QString &category, const QString &name, QString &link);
    bool SetChannelLink(const QString &name, const QString &link);
    /// A name that is taken fails, with the articles renamed already.
    bool RenameChannel(const QString &old, const QString &to);
    bool MoveChannel(const QString &name, const QString &category);
    bool DeleteChannel(const QString &name);
    /// Counts a channel's articles anew, and tells what it counted.
    bool RecountChannel(const QString &escapedName, ReadFlagCounts *counts = nullptr);
    /// Whether a channel's counts are right, and it has no article stamped before `oldestKept`:
    /// pruning and counting it would then change nothing. Tells what it counted.
    bool IsSettled(const QString &name, qint64 oldestKept, ReadFlagCounts &counts);
    /// Tells the Today item the sum of all unread counts.
    bool PublishTotalUnread();

    /// Moves every channel of one category, with its articles, to another: all or none.
    bool MoveCategory(const QString &from, const QString &to);
    /// Deletes every channel of a category, with its articles: all or none.
    bool DeleteCategoryChannels(const QString &category);

    // --- articles ---

    /// Lists a channel's articles into the row buffer. At most 110 rows.
    bool ListArticles(const QString &channel, SortMode mode);
    /// Reads an article and marks it read. `detail` is empty when there is no such article. It is
    /// filled also when only the marking failed.
    bool GetArticleDetail(const QString &channel, const QString &title, ArticleDetail &detail);
    /// Reads an article and leaves it as it is. False when there is no such article.
    bool GetArticleExtract(const QString &channel, const QString &title, ArticleExtract &extract);
    bool MarkArticleRead(const QString &escapedChannel, const QString &escapedTitle);
    bool MarkChannelRead(const QString &channel);
    bool MarkChannelUnread(const QString &channel);
    bool CountReadFlags(const QString &category, const QString &channel, ReadFlagCounts &counts);

    // --- rows ---

    /// Copies a row of the last list into `out`, which has the size of such a row: the next one
    /// for index -1, else the one of that index. False behind the last row.
    bool NextRow(void *out, int index = -1);

    /// The rows of the last list, from the cursor to the end.
    QList<ChannelRow> takeChannelRows();
    QList<ArticleRow> takeArticleRows();

    // --- for those who bring articles in ---

    /// Runs `work` as one change of the database: all that it wrote is there when this returns
    /// true. False, with nothing changed, when the change could not be begun or stored (the code
    /// is 1001). The store is locked meanwhile. `work` may call operations of the store, but none
    /// that opens the file anew: SetChannelLink, RenameChannel, MoveChannel, GetArticleDetail.
    bool changeAtOnce(const std::function<void(SqlCommand &)> &work);

private:
    static constexpr std::size_t rowBufferSize = 65536;

    bool ExecuteNonQuery(SqlCommand &command);
    bool ReadChannelRows(SqlCommand &command);
    bool ReadArticleRows(SqlCommand &command);
    bool ReadArticleDetail(SqlCommand &command, ArticleDetail &detail, bool &isFound);
    bool selectArticle(const QString &escapedChannel, const QString &escapedTitle,
                       ArticleDetail &detail, bool &isFound);
    bool ReadChannelLink(SqlCommand &command, QString &link);
    bool CountRows(SqlCommand &command, int &count);
    bool SumUnread(SqlCommand &command, qint64 &sum);
    bool CountReadFlags(SqlCommand &command, ReadFlagCounts &counts);
    bool readRows(SqlCommand &command, const std::function<bool(const SqlRowset &)> &takeRow);

    template <class Row> QList<Row> takeRows();
    void beginList(quint32 rowWidth);
    bool putRow(const void *row);
    SqlCommand newCommand();
    bool query(const QString &statement, const std::function<bool(SqlCommand &)> &executor);
    bool runStatement(const QString &statement);
    bool recordFailure(bool isDone);
    void reopen();
    bool changeAndReopen(const std::function<bool()> &work);
    bool insertChannel(SqlCommand &command, const ChannelRecord &record, QString *storedName);
    quint32 buildDatabase(SqliteDatabase &database);
    bool runStatements(const QStringList &statements);
    bool markChannel(const QString &channel, int readFlag);

    mutable std::recursive_mutex mutex_; // guards everything below
    const DeviceRoot device_;
    SettingsStore settings_;
    const QString todayItemKey_;

    quint32 error_ = 0;
    bool isEnded_ = false;
    std::unique_ptr<SqliteDatabase> session_; // null while closed
    QString statement_;                       // the one being run
    std::array<char, rowBufferSize> rows_{};
    quint32 rowCursor_ = 0; // index of the next row to hand out
    quint32 rowWidth_ = 0;  // bytes
    quint32 rowsFilled_ = 0;
};

} // namespace tidebrook
