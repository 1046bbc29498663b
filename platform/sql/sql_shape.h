#pragma once

#include "platform/sql/sqlite_database.h"

#include <QByteArray>
#include <QStringView>

#include <optional>
#include <vector>

namespace tidebrook {

/// A statement's text taken apart: its shape, in which a `?` stands for each literal, and the
/// literals in order. Statements that differ only in their literals have the same shape.
struct SqlShape {
    QByteArray shape; // UTF-8
    std::vector<SqliteValue> literals;
};

/// Takes one statement apart. Only the literals of a SELECT, INSERT, UPDATE or DELETE are taken
/// out. In a CREATE TABLE every `NCHAR(n)` column gets a collation that ignores trailing blanks,
/// and nothing else is looked at. Any other statement is refused when a literal is unfinished, when
/// it has a comment, or when anything but blanks follows its end: a second statement never runs.
std::optional<SqlShape> takeSqlApart(QStringView statement);

} // namespace tidebrook
