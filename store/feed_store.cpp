#include "store/feed_store.h"

#include "platform/base/plain_file.h"
#include "platform/sync/file_lock.h"
#include "store/error_codes.h"
#include "store/seeding.h"
#include "store/tables.h"

#include <QDir>
#include <QFile>

#include <cstdio>

namespace tidebrook {

namespace {

constexpr QStringView databaseName = u"RSSVault.sdf";
constexpr QStringView unfinishedName = u"\\Temp\\RSSVault-new.sdf";
constexpr QStringView creationLock = u"\\run\\create.lock";

constexpr char articleTable[] =
    "CREATE TABLE RSSRecord (CHANNEL_NAME NCHAR(51), GUID NCHAR(256) UNIQUE, TITLE NCHAR(256), "
    "ITEM_LINK NVARCHAR(513), DESCRIPTION NVARCHAR(3999), PUBDATE NCHAR(40), READ_UNREAD BIT, "
    "TIMESTAMP BIGINT, CATEGORY NCHAR(40))";
constexpr char channelTable[] =
    "CREATE TABLE RSSCHRecord (CATEGORY NCHAR(40), CHANNEL_NAME NCHAR(51)  PRIMARY KEY, "
    "NUM_OF_UNREAD SMALLINT, TOTAL_ITEMS SMALLINT, CHANNEL_LINK NVARCHAR(513), "
    "IMAGE_TITLE NVARCHAR(40), IMAGE_URL NVARCHAR(256), IMAGE_LINK NVARCHAR(513))";
constexpr char articleIndex[] =
    "CREATE UNIQUE INDEX PK_RECORD on RSSRecord (CHANNEL_NAME ASC, TITLE ASC)";
constexpr char channelIndex[] =
    "CREATE UNIQUE INDEX PK_CHRD on RSSCHRecord (CATEGORY ASC, CHANNEL_NAME ASC)";

// Removes what a killed process was building. Needs the lock of the creation.
void removeUnfinished(const DeviceRoot &device) {
    QDir temp(device.filePath(u"\\Temp"));
    const auto all = QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot;
    for (const QFileInfo &left : temp.entryInfoList({QStringLiteral("RSSVault-*")}, all)) {
        if (left.isDir() && !left.isSymLink())
            QDir(left.filePath()).removeRecursively();
        else
            QFile::remove(left.filePath());
    }
}

// Opens the file again, to see what was stored.
bool isStoredWhole(const QString &path) {
    const auto database = SqliteDatabase::open(path, {});
    return database && hasTables(*database);
}

// Removes also a journal in the database's place, which SQLite would apply to the new one.
bool putInPlace(const QString &built, const DeviceRoot &device) {
    const QString path = device.filePath(databaseName);
    return isStoredWhole(built) && SqliteDatabase::settle(built) && SqliteDatabase::remove(path) &&
           std::rename(QFile::encodeName(built).constData(), QFile::encodeName(path).constData()) ==
               0 &&
           syncFolder(device.path());
}

} // namespace

FeedStore::FeedStore(const DeviceRoot &device, Registry &registry, const QString &todayItemKey)
    : device_(device), settings_(registry), todayItemKey_(todayItemKey) {}

quint32 FeedStore::error() const {
    const auto guard = lock();
    return error_;
}

void FeedStore::recordError(quint32 code) {
    const auto guard = lock();
    error_ = code;
}

std::unique_lock<std::recursive_mutex> FeedStore::lock() const { return std::unique_lock(mutex_); }

bool FeedStore::Open() {
    const auto guard = lock();
    if (isEnded_)
        return recordFailure(false);
    if (fileKindAt(device_.filePath(databaseName)) != FileKind::Missing)
        return OpenExisting();
    return CreateDatabase() && OpenExisting();
}

bool FeedStore::OpenExisting() {
    const auto guard = lock();
    session_ = SqliteDatabase::open(device_.filePath(databaseName), {});
    if (session_ && !hasTables(*session_))
        session_.reset();
    return recordFailure(session_ != nullptr);
}

// Builds the database aside and puts it in place whole. Nothing is left behind after a failure.
bool FeedStore::CreateDatabase() {
    session_.reset();
    const QString path = device_.filePath(databaseName);
    if (!device_.isDevice() || !device_.makeFolders())
        return recordFailure(false);
    const FileLock creation(device_.filePath(creationLock));
    if (!creation.isHeld())
        return recordFailure(false);
    if (fileKindAt(path) != FileKind::Missing) // another process was first
        return true;
    removeUnfinished(device_);
    const QString built = device_.filePath(unfinishedName);
    auto database = SqliteDatabase::open(built, {.create = true});
    bool isBuilt = database ? buildDatabase(*database) : recordFailure(false);
    database.reset();
    isBuilt = isBuilt && recordFailure(putInPlace(built, device_));
    if (!isBuilt)
        SqliteDatabase::remove(built);
    return isBuilt;
}

bool FeedStore::buildDatabase(SqliteDatabase &database) {
    if (!makeReturnable(database))
        return recordFailure(false);
    SqliteTransaction transaction(database);
    SqlCommand command(database);
    if (!command.define(articleTable) || !command.define(channelTable))
        return recordFailure(false);
    const std::optional<QList<ChannelRecord>> seed = readSeedChannels(device_);
    if (!seed) {
        error_ = SeedFileMissing;
        return false;
    }
    for (const ChannelRecord &channel : *seed) {
        if (!insertChannel(command, channel, nullptr))
            return recordFailure(false);
    }
    // Only now: the seed must satisfy the columns' own constraints alone.
    return recordFailure(command.define(articleIndex) && command.define(channelIndex) &&
                         transaction.commit());
}

void FeedStore::ReleaseSession() {
    const auto guard = lock();
    session_.reset();
}

void FeedStore::Close() {
    const auto guard = lock();
    isEnded_ = true;
    session_.reset();
}

bool FeedStore::recordFailure(bool isDone) {
    if (!isDone)
        error_ = DatabaseFailed;
    return isDone;
}

bool FeedStore::changeAndReopen(const std::function<bool()> &work) {
    const auto guard = lock();
    bool isDone = false;
    if (session_) {
        // The statements before one that fails are kept.
        SqliteTransaction transaction(*session_);
        isDone = transaction.isOpen() && work();
        isDone = transaction.commit() && isDone;
    }
    recordFailure(isDone);
    // The old session is closed last: the journal is written back and removed with the last one.
    const std::unique_ptr<SqliteDatabase> old = std::move(session_);
    Open();
    return isDone;
}

// Stores all that `work` changes, or nothing.
bool FeedStore::changeWhole(const std::function<bool()> &work) {
    const auto guard = lock();
    if (!session_)
        return recordFailure(false);
    SqliteTransaction transaction(*session_);
    return recordFailure(transaction.isOpen() && work() && transaction.commit());
}

bool FeedStore::changeAtOnce(const std::function<void(SqlCommand &)> &work) {
    return changeWhole([&] {
        SqlCommand command(*session_);
        work(command);
        return true;
    });
}

} // namespace tidebrook
