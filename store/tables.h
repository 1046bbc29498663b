#pragma once

#include "platform/sql/sqlite_database.h"

namespace tidebrook {

/// Whether a database is one of this system: it has its two tables.
inline bool hasTables(SqliteDatabase &database) {
    return database.prepare("SELECT CHANNEL_NAME, CATEGORY FROM RSSCHRecord") &&
           database.prepare("SELECT CHANNEL_NAME, TITLE FROM RSSRecord");
}

} // namespace tidebrook
