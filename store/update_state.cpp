#include "store/update_state.h"

#include <QFile>
#include <QFileInfo>

namespace tidebrook {

namespace {

constexpr QStringView fileName = u"UpdateState.db";

void removeDatabase(const QString &path) {
    for (const QStringView suffix : {u"", u"-wal", u"-shm"})
        QFile::remove(path + suffix);
}

qint64 secondsOf(const QDateTime &moment) {
    return moment.isValid() ? moment.toSecsSinceEpoch() : 0;
}

QDateTime momentOf(qint64 seconds) {
    return seconds == 0 ? QDateTime() : QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC);
}

// A validator is bytes of any kind, which must come back the same: each becomes one character.
QByteArray storedBytes(const QByteArray &validator) {
    return QString::fromLatin1(validator).toUtf8();
}

UpdateState stateOf(const SqliteStatement &row) {
    UpdateState state;
    state.lastAttempt = momentOf(row.integer(1));
    state.lastSuccess = momentOf(row.integer(2));
    state.lastError = static_cast<quint32>(row.integer(3));
    state.wasUnchanged = row.integer(4) != 0;
    state.storedCount = static_cast<int>(row.integer(5));
    state.failures = static_cast<int>(row.integer(6));
    state.leftAloneUntil = momentOf(row.integer(7));
    state.validators = {row.text(8).toLatin1(), row.text(9).toLatin1()};
    state.url = row.text(10);
    state.total = static_cast<int>(row.integer(11));
    return state;
}

} // namespace

UpdateStateStore::UpdateStateStore(const DeviceRoot &device) {
    const QString path = device.filePath(fileName);
    // A journal without its database belongs to none.
    if (!QFileInfo::exists(path))
        removeDatabase(path);
    if (open(path))
        return;
    removeDatabase(path);
    open(path);
}

bool UpdateStateStore::open(const QString &path) {
    database_ =
        SqliteDatabase::open(path, {.create = true, .syncEveryCommit = false, .busyTimeout = 2000});
    const bool hasTable =
        database_ &&
        (database_->prepare("SELECT total FROM update_states") ||
         database_->run("CREATE TABLE IF NOT EXISTS update_states (channel TEXT PRIMARY KEY, "
                        "last_attempt INTEGER, last_success INTEGER, last_error INTEGER, "
                        "was_unchanged INTEGER, stored_count INTEGER, failures INTEGER, "
                        "left_alone_until INTEGER, etag TEXT, last_modified TEXT, url TEXT, "
                        "total INTEGER)") == SqliteStep::Done);
    if (!hasTable || !database_->faults().isEmpty())
        database_.reset();
    return database_ != nullptr;
}

QHash<QString, UpdateState> UpdateStateStore::readAll() {
    QHash<QString, UpdateState> states;
    if (!database_)
        return states;
    SqliteStatement query = database_->prepare("SELECT * FROM update_states");
    while (query && query.step() == SqliteStep::Row)
        states.insert(query.text(0), stateOf(query));
    return states;
}

UpdateState UpdateStateStore::read(const QString &channelName) {
    if (!database_)
        return {};
    const QByteArray name = channelName.toUtf8();
    SqliteStatement query = database_->prepare("SELECT * FROM update_states WHERE channel = ?");
    if (!query)
        return {};
    query.bind(1, name);
    return query.step() == SqliteStep::Row ? stateOf(query) : UpdateState();
}

bool UpdateStateStore::write(const QString &channelName, const UpdateState &state) {
    if (!database_)
        return false;
    const QByteArray name = channelName.toUtf8();
    const QByteArray etag = storedBytes(state.validators.etag);
    const QByteArray lastModified = storedBytes(state.validators.lastModified);
    const QByteArray url = state.url.toUtf8();
    SqliteStatement insert = database_->prepare(
        "INSERT OR REPLACE INTO update_states VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
    if (!insert)
        return false;
    insert.bind(1, name);
    insert.bind(2, secondsOf(state.lastAttempt));
    insert.bind(3, secondsOf(state.lastSuccess));
    insert.bind(4, qint64{state.lastError});
    insert.bind(5, qint64{state.wasUnchanged});
    insert.bind(6, qint64{state.storedCount});
    insert.bind(7, qint64{state.failures});
    insert.bind(8, secondsOf(state.leftAloneUntil));
    insert.bind(9, etag);
    insert.bind(10, lastModified);
    insert.bind(11, url);
    insert.bind(12, qint64{state.total});
    return insert.step() == SqliteStep::Done;
}

} // namespace tidebrook
