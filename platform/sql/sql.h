#pragma once

#include "platform/sql/sqlite_database.h"

#include <QByteArray>
#include <QString>

namespace tidebrook {

/// Runs statements given as text, one statement at a time. Statements that differ only in their
/// literals are prepared once in the life of the session. It must not outlive its session, and the
/// rows of a query must not either. Not thread-safe.
class SqlCommand {
public:
    explicit SqlCommand(SqliteDatabase &session) : session_(session) {}

    /// Runs a statement and ignores its rows; never ends with `Row`.
    SqliteStep execute(const QString &statement);

    /// Begins a query. `orderOfEquals`, columns as they stand in a statement, orders the rows that
    /// the ORDER BY at the statement's end leaves equal.
    SqliteStatement query(const QString &statement, const QByteArray &orderOfEquals = {});

private:
    SqliteDatabase &session_;
};

} // namespace tidebrook
