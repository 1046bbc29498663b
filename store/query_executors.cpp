#include "store/feed_store.h"

#include "platform/base/text.h"

#include <algorithm>
#include <cstring>

namespace tidebrook {

namespace {

constexpr qsizetype untypedCapacity = 40; // of a column that is declared as no text

// A value that fills its column loses its last character on the way out, and so fits the
// callers' buffers.
QString columnText(const SqlRowset &rows, int column) {
    const SqlColumn &type = rows.columns()[static_cast<std::size_t>(column)];
    const qsizetype capacity =
        type.type == SqlColumn::Type::Text ? type.declaredSize - 1 : untypedCapacity;
    const QString text = rows.text(column);
    return TrimTrailingBlanks(cutText(text, capacity)).toString();
}

template <std::size_t capacity> void copyText(const QString &text, char16_t (&out)[capacity]) {
    const QStringView fitting = cutText(text, capacity);
    std::copy_n(fitting.utf16(), fitting.size(), out);
}

} // namespace

bool FeedStore::ExecuteNonQuery(SqlCommand &command) {
    if (statement_.isEmpty())
        return false;
    command.setText(statement_);
    return command.execute() == ExecuteStatus::Done;
}

bool FeedStore::runStatement(const QString &statement) {
    if (!session_)
        return recordFailure(false);
    statement_ = statement;
    SqlCommand command = newCommand();
    return ExecuteNonQuery(command);
}

// All of them, or none.
bool FeedStore::runStatements(const QStringList &statements) {
    const auto guard = lock();
    if (!session_)
        return recordFailure(false);
    SqliteTransaction transaction(*session_);
    const bool isDone = transaction.isOpen() &&
                        std::all_of(statements.begin(), statements.end(),
                                    [this](const QString &one) { return runStatement(one); });
    return recordFailure(isDone && transaction.commit());
}

bool FeedStore::query(const QString &statement, const std::function<bool(SqlCommand &)> &executor) {
    if (!session_)
        return recordFailure(false);
    statement_ = statement;
    SqlCommand command = newCommand();
    return executor(command);
}

// `takeRow` answers whether it wants another row.
bool FeedStore::readRows(SqlCommand &command,
                         const std::function<bool(const SqlRowset &)> &takeRow) {
    if (statement_.isEmpty())
        return false;
    command.setText(statement_);
    SqlRowset rows;
    if (command.execute(rows) != ExecuteStatus::Done)
        return false;
    while (rows.next()) {
        if (!takeRow(rows))
            return true;
    }
    return !rows.failed();
}

void FeedStore::beginList(quint32 rowWidth) {
    rowCursor_ = 0;
    rowWidth_ = rowWidth;
    rowsFilled_ = 0;
    rows_.fill(0);
}

bool FeedStore::putRow(const void *row) {
    if ((rowsFilled_ + 1) * rowWidth_ >= rowBufferSize)
        return false;
    std::memcpy(rows_.data() + rowsFilled_ * rowWidth_, row, rowWidth_);
    ++rowsFilled_;
    return true;
}

bool FeedStore::ReadChannelRows(SqlCommand &command) {
    return readRows(command, [this](const SqlRowset &rows) {
        ChannelRow row{};
        copyText(columnText(rows, 0), row.name);
        row.unread = static_cast<qint32>(rows.integer(1));
        row.total = static_cast<qint32>(rows.integer(2));
        return putRow(&row);
    });
}

bool FeedStore::ReadArticleRows(SqlCommand &command) {
    // Column 0 is the timestamp, which no list shows.
    return readRows(command, [this](const SqlRowset &rows) {
        ArticleRow row{};
        copyText(columnText(rows, 1), row.title);
        copyText(columnText(rows, 2), row.publicationDate);
        row.read = static_cast<quint16>(rows.integer(3) & 1);
        return putRow(&row);
    });
}

bool FeedStore::ReadArticleDetail(SqlCommand &command, ArticleDetail &detail, bool &isFound) {
    isFound = false;
    return readRows(command, [&](const SqlRowset &rows) {
        isFound = true;
        detail = {columnText(rows, 0), columnText(rows, 1), columnText(rows, 2)};
        return false;
    });
}

bool FeedStore::ReadChannelLink(SqlCommand &command, QString &link) {
    return readRows(command, [&link](const SqlRowset &rows) {
        link = columnText(rows, 0);
        return false;
    });
}

bool FeedStore::CountRows(SqlCommand &command, int &count) {
    count = 0;
    return readRows(command, [&count](const SqlRowset &) {
        ++count;
        return true;
    });
}

bool FeedStore::SumUnread(SqlCommand &command, qint64 &sum) {
    sum = 0;
    return readRows(command, [&sum](const SqlRowset &rows) {
        sum += rows.integer(0);
        return true;
    });
}

bool FeedStore::CountReadFlags(SqlCommand &command, ReadFlagCounts &counts) {
    counts = {};
    return readRows(command, [&counts](const SqlRowset &rows) {
        ++counts.total;
        counts.unread += (rows.integer(0) & 1) == 0 ? 1 : 0;
        return true;
    });
}

bool FeedStore::NextRow(void *out, int index) {
    const auto guard = lock();
    if (!out || index < -1 || rowWidth_ == 0)
        return false;
    const quint64 row = index == -1 ? rowCursor_ : static_cast<quint64>(index);
    if ((row + 1) * rowWidth_ >= rowBufferSize)
        return false;
    const char *begin = rows_.data() + row * rowWidth_;
    const bool isEnd = std::all_of(begin, begin + rowWidth_, [](char byte) { return byte == 0; });
    if (isEnd)
        return false;
    std::memcpy(out, begin, rowWidth_);
    if (index == -1)
        ++rowCursor_;
    return true;
}

template <class Row> QList<Row> FeedStore::takeRows() {
    const auto guard = lock();
    QList<Row> rows;
    for (; rowWidth_ == sizeof(Row) && rowCursor_ < rowsFilled_; ++rowCursor_) {
        // A row of zeros is none to NextRow; among the filled ones it is a channel without a name.
        Row row{};
        NextRow(&row, static_cast<int>(rowCursor_));
        rows.append(row);
    }
    return rows;
}

QList<ChannelRow> FeedStore::takeChannelRows() { return takeRows<ChannelRow>(); }

QList<ArticleRow> FeedStore::takeArticleRows() { return takeRows<ArticleRow>(); }

} // namespace tidebrook
