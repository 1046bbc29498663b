#pragma once

#include "platform/base/device_root.h"
#include "platform/sql/registry.h"
#include "platform/sql/sql.h"
#include "store/escape_sql.h"
#include "store/records.h"
#include "store/settings_store.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <array>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>

namespace tidebrook {

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
/// Thread-safe: every operation takes the store's lock. A caller that reads `error()` after an
/// operation, or needs several operations as one, holds `lock()` over them.
class FeedStore {
public:
    /// The parts outlive the store. `todayItemKey` is the registry key of the Today item.
    FeedStore(const DeviceRoot &device, Registry &registry, const QString &todayItemKey);

    quint32 error() const;
    void clearError() { recordError(0); }
    void recordError(quint32 code);

    [[nodiscard]] std::unique_lock<std::recursive_mutex> lock() const;

    // --- the file ---

    /// Opens the database, creating and seeding it first when there is none. A file that cannot
    /// be opened, or is no such database, stays as it is; the code is 1001. Without the seed file
    /// nothing is created; the code is 1006.
    bool Open();
    /// The same for a database that is there.
    bool OpenExisting();
    /// Closes the file. Every operation fails until the next Open, or until one of those that
    /// `changeAtOnce` names has reopened the file.
    void ReleaseSession();
    /// Closes the file for good.
    void Close();
    /// Makes the file smaller when much of it is no longer used, in steps that keep no other
    /// process from writing for long. False, with no code, when that was cut short: the next call
    /// goes on.
    bool ReturnUnusedSpace();

    // --- channels ---

    /// Inserts a channel. A name that exists, in any category, is stored with "-" and a random
    /// number from 0 to 9999 behind it if it is shorter than 45 characters. `storedName` gets the
    /// name under which it was stored. There is no code for a name or link that is refused.
    bool InsertChannel(const ChannelRecord &record, QString *storedName = nullptr);
    /// The channels of a category, 606 at most; `escapedCategory` has been through EscapeSql.
    bool ListChannels(const QString &escapedCategory, QList<ChannelRow> &channels);
    /// The same in the order of `sortByName`, for people; `category` is not escaped.
    bool ListChannelsByName(const QString &category, QList<ChannelRow> &channels);
    /// The channels of a category, any number of them, in the order of the database.
    bool ListWholeCategory(const QString &category, QList<ListedChannel> &channels);
    /// Every channel of every category, with its address: any number of them.
    bool ListFeeds(QList<ChannelRecord> &feeds);
    /// The category that a channel is in; null when there is no such channel.
    bool FindCategory(const QString &name, QString &category);
    /// Every category that any channel is in.
    bool ListChannelCategories(QStringList &categories);
    /// An empty link when there is no such channel.
    bool GetChannelLink(const QString &category, const QString &name, QString &link);
    bool SetChannelLink(const QString &name, const QString &link);
    /// Fails for a name that is taken, with the articles renamed already.
    bool RenameChannel(const QString &old, const QString &to);
    bool MoveChannel(const QString &name, const QString &category);
    bool DeleteChannel(const QString &name);
    /// Counts a channel's articles anew, and stores the counts.
    bool RecountChannel(const QString &escapedName, ReadFlagCounts *counts = nullptr);
    /// Whether a channel's counts are right, and it has no article stamped before `oldestKept`:
    /// pruning and counting it would then change nothing. `counts` is what was counted.
    bool IsSettled(const QString &name, qint64 oldestKept, ReadFlagCounts &counts);
    /// Stores the sum of all unread counts for the Today item.
    bool PublishTotalUnread();

    /// Moves every channel of one category, with its articles, to another: all or none.
    bool MoveCategory(const QString &from, const QString &to);
    /// Deletes every channel of a category, with its articles: all or none.
    bool DeleteCategoryChannels(const QString &category);

    // --- articles ---

    /// A channel's articles, 110 at most.
    bool ListArticles(const QString &channel, SortMode mode, QList<ArticleRow> &articles);
    /// Reads an article and marks it read. `detail` is empty when there is no such article. It is
    /// filled also when only the marking failed.
    bool GetArticleDetail(const QString &channel, const QString &title, ArticleExtract &detail);
    /// Reads an article and leaves it as it is. False when there is no such article.
    bool GetArticleExtract(const QString &channel, const QString &title, ArticleExtract &extract);
    bool MarkArticleRead(const QString &escapedChannel, const QString &escapedTitle);
    /// Calls `visit` with each chosen article, any number of them, of which one at a time is in
    /// memory, until it returns false. Holds the store's lock meanwhile; `visit` may read, but
    /// not change the store. False when the articles could not be read to the end.
    bool VisitArticles(const ArticleChoice &choice,
                       const std::function<bool(const ListedArticle &)> &visit);
    /// The description of an article, as the feed sent it; empty when there is no such article.
    bool ReadDescription(const QString &guid, QString &description);
    /// Marks an article and recounts its channel: both or neither. True also when there is no such
    /// article.
    bool MarkArticle(const QString &channel, const QString &guid, bool isRead);
    bool MarkChannelRead(const QString &channel);
    bool MarkChannelUnread(const QString &channel);
    bool CountReadFlags(const QString &category, const QString &channel, ReadFlagCounts &counts);

    // --- several changes as one ---

    /// Runs `work` as one change of the database, under the store's lock. False, with nothing
    /// changed, when the change could not be begun or stored (the code is 1001). `work` may call
    /// operations of the store, but none that reopens the file: SetChannelLink, RenameChannel,
    /// MoveChannel, GetArticleDetail.
    bool changeAtOnce(const std::function<void(SqlCommand &)> &work);

private:
    static constexpr std::size_t rowBufferSize = 65536;

    bool CreateDatabase();
    bool buildDatabase(SqliteDatabase &database);
    static bool makeReturnable(SqliteDatabase &database);
    bool recordFailure(bool isDone);

    bool ExecuteNonQuery(const SqlText &statement);
    bool executeAll(const std::vector<SqlText> &statements);
    bool changeWhole(const std::function<bool()> &work);
    bool changeAndReopen(const std::function<bool()> &work);
    bool insertChannel(SqlCommand &command, const ChannelRecord &record, QString *storedName);
    bool markChannel(const QString &channel, int readFlag);

    bool readRows(const SqlText &statement,
                  const std::function<bool(const SqliteStatement &)> &takeRow);
    bool ReadChannelRows(const SqlText &statement, QList<ChannelRow> &channels);
    bool ReadArticleRows(const SqlText &statement, QList<ArticleRow> &articles);
    bool ReadListedArticle(qint64 id, bool withDescription, ListedArticle &article);
    bool ReadArticleDetail(const SqlText &statement, std::optional<ArticleExtract> &article);
    bool selectArticle(const QString &escapedChannel, const QString &escapedTitle,
                       std::optional<ArticleExtract> &article);
    bool ReadText(const SqlText &statement, QString &text);
    bool CountRows(const SqlText &statement, int &count);
    bool SumUnread(const SqlText &statement, qint64 &sum);
    bool CountReadFlags(const SqlText &statement, ReadFlagCounts &counts);

    void beginList(std::size_t rowWidth);
    bool putRow(const void *row);
    /// Copies a row of the list into `out`, which has the size of such a row: the next one for
    /// index -1, else the one of that index. False behind the last row.
    bool NextRow(void *out, int index = -1);
    template <class Row> QList<Row> storedRows();

    mutable std::recursive_mutex mutex_; // guards everything below
    const DeviceRoot device_;
    SettingsStore settings_;
    const QString todayItemKey_;

    quint32 error_ = 0;
    bool isEnded_ = false;
    std::unique_ptr<SqliteDatabase> session_; // null while closed
    std::array<char, rowBufferSize> rows_{};  // of the list that is being read
    std::size_t rowWidth_ = 0;                // bytes
    std::size_t rowsFilled_ = 0;
    std::size_t rowCursor_ = 0; // index of the next row to hand out
};

} // namespace tidebrook
