#pragma once

#include "platform/sql/sqlite_database.h"

#include <QByteArray>
#include <QString>

#include <memory>
#include <vector>

namespace tidebrook {

/// How the execution of a statement ended. A refused key is told apart from every other failure,
/// because to some callers it is the expected answer.
enum class ExecuteStatus { Done, IntegrityViolation, Failed };

/// The type that a table's definition gives a column.
struct SqlColumn {
    enum class Type { Text, Int64, Int16, Boolean, Other };
    Type type = Type::Other;
    int declaredSize = 0; // characters of a text, bytes of a number
};

/// The rows that a query answers, one at a time. It must not outlive its session.
class SqlRowset {
public:
    /// Moves to the next row, the first at first. False at the end and on failure; `failed` then
    /// tells which.
    bool next();
    bool failed() const { return failed_; }

    const std::vector<SqlColumn> &columns() const { return columns_; }
    QString text(int column) const { return statement_.text(column); }
    qint64 integer(int column) const { return statement_.integer(column); }

private:
    friend class SqlCommand;
    SqliteStatement statement_;
    std::vector<QByteArray> texts_; // bound to the statement, so they live as long as it
    std::vector<SqlColumn> columns_;
    bool failed_ = false;
};

/// Runs statements given as text, one statement per execution. Statements of one shape are
/// prepared once in the life of the session, whatever literals they carry. It must not outlive
/// its session. Not thread-safe.
class SqlCommand {
public:
    explicit SqlCommand(SqliteDatabase &session) : session_(&session) {}

    void setText(const QString &statement) { text_ = statement; }

    /// Columns that order the rows which the ORDER BY at the statement's end leaves equal, as they
    /// stand there; none at first.
    void setOrderOfEquals(const QByteArray &columns) { orderOfEquals_ = columns; }

    /// Runs the statement, ignoring any rows.
    ExecuteStatus execute();

    /// Runs the statement as a query; `rows` stands before the first row.
    ExecuteStatus execute(SqlRowset &rows);

private:
    bool prepare(SqlRowset &rows);

    SqliteDatabase *session_;
    QString text_;
    QByteArray orderOfEquals_;
};

} // namespace tidebrook
