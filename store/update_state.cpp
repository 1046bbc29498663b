#include "store/update_state.h"

namespace tidebrook {

namespace {

constexpr QStringView fileName = u"UpdateState.db";

qint64 secondsOf(const QDateTime &moment) {
    return moment.isValid() ? moment.toSecsSinceEpoch() : 0;
}

QDateTime momentOf(qint64 seconds) {
    return seconds == 0 ? QDateTime() : QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC);
}

// A validator may have any bytes: each is stored as one character.
QByteArray storedBytes(const QByteArray &validator) {
    return QString::fromLatin1(validator).toUtf8();
}

UpdateState stateOf(const SqliteStatement &row) {
    UpdateState state;
    state.url = row.text(1);
    state.lastAttempt = momentOf(row.integer(2));
    state.lastTurn = momentOf(row.integer(3));
    state.lastSuccess = momentOf(row.integer(4));
    state.lastError = static_cast<quint32>(row.integer(5));
    state.wasUnchanged = row.integer(6) != 0;
    state.storedCount = static_cast<int>(row.integer(7));
    state.failures = static_cast<int>(row.integer(8));
    state.leftAloneUntil = momentOf(row.integer(9));
    state.validators = {row.text(10).toLatin1(), row.text(11).toLatin1()};
    state.total = static_cast<int>(row.integer(12));
    state.shared = {static_cast<int>(row.integer(13)), row.text(14)};
    return state;
}

constexpr char creation[] =
    "CREATE TABLE IF NOT EXISTS update_states ("
    "channel TEXT PRIMARY KEY, url TEXT, last_attempt INTEGER, last_turn INTEGER, "
    "last_success INTEGER, last_error INTEGER, was_unchanged INTEGER, stored_count INTEGER, "
    "failures INTEGER, left_alone_until INTEGER, etag TEXT, last_modified TEXT, total INTEGER, "
    "shared INTEGER, shared_with TEXT"
    ") WITHOUT ROWID";
constexpr char insertion[] =
    "INSERT OR REPLACE INTO update_states VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)";

} // namespace

UpdateStateStore::UpdateStateStore(const DeviceRoot &device) : path_(device.filePath(fileName)) {
    if (!open())
        recover();
}

bool UpdateStateStore::open() {
    database_ = SqliteDatabase::open(
        path_, {.create = true, .syncEveryCommit = false, .isCache = true, .busyTimeout = 2000});
    return database_ && database_->run(creation) && database_->prepare(insertion);
}

// Opening also fails while another process uses the file, which then must stay.
void UpdateStateStore::recover() {
    const bool isOtherLayout = database_ && database_->prepare("SELECT * FROM update_states") &&
                               !database_->prepare(insertion);
    database_.reset();
    if (isOtherLayout || SqliteDatabase::isDamaged(path_))
        SqliteDatabase::remove(path_);
    if (!open())
        database_.reset();
}

QHash<QString, UpdateState> UpdateStateStore::readAll() {
    QHash<QString, UpdateState> states;
    if (!database_)
        return states;
    SqliteStatement query = database_->prepare("SELECT * FROM update_states");
    while (query.next())
        states.insert(query.text(0), stateOf(query));
    return states;
}

bool UpdateStateStore::change(const QString &channelName,
                              const std::function<void(UpdateState &)> &work) {
    if (!database_)
        return false;
    bool isDone = false;
    {
        SqliteTransaction transaction(*database_);
        const QByteArray name = channelName.toUtf8();
        UpdateState state = read(name);
        work(state);
        isDone = transaction.isOpen() && write(name, state) && transaction.commit();
    }
    if (!isDone)
        recover();
    return isDone;
}

UpdateState UpdateStateStore::read(const QByteArray &channelName) {
    SqliteStatement query =
        database_->prepare("SELECT * FROM update_states WHERE channel = ?", {channelName});
    return query.next() ? stateOf(query) : UpdateState();
}

bool UpdateStateStore::write(const QByteArray &channelName, const UpdateState &state) {
    return database_->run(
        insertion,
        {channelName, state.url.toUtf8(), secondsOf(state.lastAttempt), secondsOf(state.lastTurn),
         secondsOf(state.lastSuccess), qint64{state.lastError}, qint64{state.wasUnchanged},
         qint64{state.storedCount}, qint64{state.failures}, secondsOf(state.leftAloneUntil),
         storedBytes(state.validators.etag), storedBytes(state.validators.lastModified),
         qint64{state.total}, qint64{state.shared.count}, state.shared.owner.toUtf8()});
}

} // namespace tidebrook
