#include "store/feed_store.h"

namespace tidebrook {

namespace {

// What comes and goes with the articles of a day is left, and used again.
constexpr qint64 usualPart = 5; // one of so many pages
constexpr qint64 usualPages = 64;
// Other processes write between two steps.
constexpr qint64 stepPages = 256;
constexpr char step[] = "PRAGMA incremental_vacuum(256)";
// Building the file anew keeps other processes from writing: half a second for so many pages.
constexpr qint64 rebuiltPages = 8192;

qint64 numberOf(SqliteDatabase &database, const char *pragma) {
    SqliteStatement query = database.prepare(pragma);
    return query.next() ? query.integer(0) : 0;
}

} // namespace

// The file is built anew: it has to note where each page belongs.
bool FeedStore::makeReturnable(SqliteDatabase &database) {
    return database.run("PRAGMA auto_vacuum = INCREMENTAL") && database.run("VACUUM");
}

bool FeedStore::ReturnUnusedSpace() {
    const auto guard = lock();
    if (!session_)
        return false;
    const qint64 pages = numberOf(*session_, "PRAGMA page_count");
    const qint64 unused = numberOf(*session_, "PRAGMA freelist_count");
    if (unused < usualPages || unused * usualPart < pages)
        return true;
    if (numberOf(*session_, "PRAGMA auto_vacuum") == 0) // a file of an earlier version
        return pages - unused > rebuiltPages || makeReturnable(*session_);
    bool isDone = true;
    for (qint64 left = unused; isDone && left > 0; left -= stepPages) {
        SqliteStatement query = session_->prepare(step);
        while (query.next()) {
        }
        isDone = !query.failed();
    }
    return isDone;
}

} // namespace tidebrook
