#include "store/feed_store.h"

#include "platform/base/text.h"

#include <algorithm>
#include <cstring>

namespace tidebrook {

namespace {

constexpr int untypedCapacity = 40; // of a column that is declared as no text

// A row of the row buffer. A shorter text is padded with zeros.
struct StoredChannel {
    char16_t name[channelNameCapacity];
    qint32 unread;
    qint32 total;
};
static_assert(sizeof(StoredChannel) == 108);

struct StoredArticle {
    char16_t title[titleCapacity];
    char16_t publicationDate[40];
    quint16 read;
};
static_assert(sizeof(StoredArticle) == 592);

// A value that fills its column loses its last character, and so fits the row buffer.
QString columnText(const SqliteStatement &row, int column) {
    const int length = row.declaredLength(column);
    const QString text = row.text(column);
    return TrimTrailingBlanks(cutText(text, length > 0 ? length - 1 : untypedCapacity)).toString();
}

template <std::size_t capacity> void copyText(const QString &text, char16_t (&out)[capacity]) {
    const QStringView fitting = cutText(text, capacity);
    std::copy_n(fitting.utf16(), fitting.size(), out);
}

template <std::size_t capacity> QString textOf(const char16_t (&stored)[capacity]) {
    return QStringView(stored).toString(); // ends at a zero
}

} // namespace

bool FeedStore::ExecuteNonQuery(const SqlText &statement) {
    return session_ ? SqlCommand(*session_).execute(statement) == SqliteStep::Done
                    : recordFailure(false);
}

// Runs all of them, or none.
bool FeedStore::executeAll(const std::vector<SqlText> &statements) {
    return changeWhole([&] {
        return std::all_of(statements.begin(), statements.end(),
                           [this](const SqlText &one) { return ExecuteNonQuery(one); });
    });
}

// `takeRow` returns whether it wants another row.
bool FeedStore::readRows(const SqlText &statement,
                         const std::function<bool(const SqliteStatement &)> &takeRow) {
    if (!session_)
        return recordFailure(false);
    SqliteStatement rows = SqlCommand(*session_).query(statement);
    while (rows.next()) {
        if (!takeRow(rows))
            return true;
    }
    return !rows.failed();
}

void FeedStore::beginList(std::size_t rowWidth) {
    rowWidth_ = rowWidth;
    rowsFilled_ = 0;
    rowCursor_ = 0;
    rows_.fill(0);
}

bool FeedStore::putRow(const void *row) {
    if ((rowsFilled_ + 1) * rowWidth_ >= rowBufferSize)
        return false;
    std::memcpy(rows_.data() + rowsFilled_ * rowWidth_, row, rowWidth_);
    ++rowsFilled_;
    return true;
}

bool FeedStore::NextRow(void *out, int index) {
    if (out == nullptr || index < -1 || rowWidth_ == 0)
        return false;
    const std::size_t row = index == -1 ? rowCursor_ : static_cast<std::size_t>(index);
    if ((row + 1) * rowWidth_ >= rowBufferSize)
        return false;
    const char *begin = rows_.data() + row * rowWidth_;
    if (std::all_of(begin, begin + rowWidth_, [](char byte) { return byte == 0; }))
        return false;
    std::memcpy(out, begin, rowWidth_);
    if (index == -1)
        ++rowCursor_;
    return true;
}

template <class Row> QList<Row> FeedStore::storedRows() {
    QList<Row> rows(static_cast<qsizetype>(rowsFilled_));
    // A row of zeros, which NextRow takes for the end, is a channel without a name here.
    for (qsizetype i = 0; i < rows.size(); ++i)
        NextRow(&rows[i], static_cast<int>(i));
    return rows;
}

bool FeedStore::ReadChannelRows(const SqlText &statement, QList<ChannelRow> &channels) {
    beginList(sizeof(StoredChannel));
    const bool isRead = readRows(statement, [this](const SqliteStatement &row) {
        StoredChannel channel{};
        copyText(columnText(row, 0), channel.name);
        channel.unread = static_cast<qint32>(row.integer(1));
        channel.total = static_cast<qint32>(row.integer(2));
        return putRow(&channel);
    });
    channels.clear();
    for (const StoredChannel &channel : storedRows<StoredChannel>())
        channels.append({textOf(channel.name), channel.unread, channel.total});
    return isRead;
}

bool FeedStore::ReadArticleRows(const SqlText &statement, QList<ArticleRow> &articles) {
    beginList(sizeof(StoredArticle));
    // Column 0 is the timestamp, which no list shows.
    const auto putArticle = [this](const SqliteStatement &row) {
        StoredArticle article{};
        copyText(columnText(row, 1), article.title);
        copyText(columnText(row, 2), article.publicationDate);
        article.read = static_cast<quint16>(row.integer(3) & 1);
        return putRow(&article);
    };
    const bool isRead = readRows(statement, putArticle);
    articles.clear();
    for (const StoredArticle &article : storedRows<StoredArticle>())
        articles.append(
            {textOf(article.title), textOf(article.publicationDate), article.read == 1});
    return isRead;
}

// An article of a row that was found in the same query cannot be gone.
bool FeedStore::ReadListedArticle(qint64 id, bool withDescription, ListedArticle &article) {
    SqliteStatement row = session_->prepare(
        "SELECT a.GUID, a.TITLE, a.CHANNEL_NAME, c.CATEGORY, a.PUBDATE, a.ITEM_LINK, "
        "a.READ_UNREAD, a.DESCRIPTION FROM RSSRecord a LEFT JOIN RSSCHRecord c ON "
        "c.CHANNEL_NAME = a.CHANNEL_NAME WHERE a.rowid = ?",
        {id});
    if (!row.next())
        return false;
    // Guids are stored whole, also longer ones than the column is declared for.
    article = {TrimTrailingBlanks(row.text(0)).toString(),
               columnText(row, 1),
               columnText(row, 2),
               columnText(row, 3),
               columnText(row, 4),
               columnText(row, 5),
               withDescription ? columnText(row, 7) : QString(),
               (row.integer(6) & 1) == 1};
    return true;
}

bool FeedStore::ReadArticleDetail(const SqlText &statement,
                                  std::optional<ArticleExtract> &article) {
    return readRows(statement, [&](const SqliteStatement &row) {
        article = {columnText(row, 0), columnText(row, 1), columnText(row, 2)};
        return false;
    });
}

bool FeedStore::ReadText(const SqlText &statement, QString &text) {
    return readRows(statement, [&](const SqliteStatement &row) {
        text = columnText(row, 0);
        return false;
    });
}

bool FeedStore::CountRows(const SqlText &statement, int &count) {
    count = 0;
    return readRows(statement, [&](const SqliteStatement &) {
        ++count;
        return true;
    });
}

bool FeedStore::SumUnread(const SqlText &statement, qint64 &sum) {
    sum = 0;
    return readRows(statement, [&](const SqliteStatement &row) {
        sum += row.integer(0);
        return true;
    });
}

bool FeedStore::CountReadFlags(const SqlText &statement, ReadFlagCounts &counts) {
    counts = {};
    return readRows(statement, [&](const SqliteStatement &row) {
        ++counts.total;
        counts.unread += (row.integer(0) & 1) == 0 ? 1 : 0;
        return true;
    });
}

} // namespace tidebrook
