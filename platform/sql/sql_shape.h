#pragma once

#include "platform/sql/sqlite_database.h"

#include <QByteArray>
#include <QStringView>

#include <optional>
#include <vector>

namespace tidebrook {

/// A statement's text taken apart: its shape, in which a `?` stands for each literal, and the
/// literals in order. Statements that differ only in their literals share one shape, so the
/// shape is what is worth preparing once.
struct SqlShape {
    QByteArray shape; // UTF-8
    std::vector<SqliteValue> literals;
};

/// Takes one statement apart. Only the literals of a SELECT, INSERT, UPDATE or DELETE are taken
/// out. In a CREATE TABLE every `NCHAR(n)` column is made to ignore trailing blanks when it is
/// compared, and nothing else is looked at. For the others nothing comes back when a literal is
/// unfinished, when there is a comment, or when anything but blanks stands behind the statement's
/// end: a second statement is never run.
std::optional<SqlShape> takeSqlApart(QStringView statement);

} // namespace tidebrook
