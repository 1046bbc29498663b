#pragma once

#include "platform/sql/sqlite_database.h"

#include <QByteArray>
#include <QStringView>

#include <concepts>
#include <vector>

namespace tidebrook {

/// A text that goes into a hole as it is, quotes and all.
struct PlainText {
    QByteArray utf8; ///< may refer to bytes that outlive the statement
};

/// One statement: a format and what goes into its holes. A `'%s'` takes a text as it would stand
/// between the quotes, in which each quote is doubled, or a `PlainText`. A `%d`, `%lu`, `'%d'` or
/// `'%I64d'` takes a whole number. The values are bound, so that no text of a hole can become SQL:
/// one with a quote that is not doubled makes the statement fail.
class SqlText {
public:
    /// The format is a literal of the source.
    template <std::size_t size, typename... Values>
    SqlText(const char (&format)[size], const Values &...values)
        : format_(QByteArray::fromRawData(format, size - 1)) {
        values_.reserve(sizeof...(values));
        (take(values), ...);
    }

    /// Continues the statement.
    template <std::size_t size, typename... Values>
    SqlText &add(const char (&format)[size], const Values &...values) {
        format_ += format;
        (take(values), ...);
        return *this;
    }

private:
    friend class SqlCommand;
    void take(QStringView text);
    void take(const PlainText &text) { values_.emplace_back(text.utf8); }
    void take(std::integral auto number) { values_.emplace_back(static_cast<qint64>(number)); }

    QByteArray format_;
    std::vector<SqliteValue> values_;
    bool isSafe_ = true; // no text has a lone quote
};

/// Runs statements, one at a time. Each format is prepared once in the life of the session. It must
/// not outlive its session, and the rows of a query must not either. Not thread-safe.
class SqlCommand {
public:
    explicit SqlCommand(SqliteDatabase &session) : session_(session) {}

    /// Runs a statement and ignores its rows; never ends with `Row`.
    SqliteStep execute(SqlText statement);

    /// Begins a query.
    SqliteStatement query(SqlText statement);

    /// Creates a table or an index. Every `NCHAR(n)` column gets a collation that ignores trailing
    /// blanks.
    bool define(const char *definition);

private:
    SqliteDatabase &session_;
};

} // namespace tidebrook
