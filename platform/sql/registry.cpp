#include "platform/sql/registry.h"

namespace tidebrook {

namespace {

constexpr int writerWait = 2000; // ms
constexpr int readerWait = 5;

enum StoredType { StoredDword = 4, StoredText = 1 };

// Of a row that begins with the type and the data.
RegistryValue valueOf(const SqliteStatement &row) {
    if (row.integer(0) == StoredDword)
        return static_cast<quint32>(row.integer(1));
    return row.text(1);
}

} // namespace

Registry::Registry(const DeviceRoot &device, Access access) : device_(device), access_(access) {
    open();
}

bool Registry::isOpen() {
    const std::lock_guard lock(mutex_);
    return open();
}

QString Registry::error() {
    const std::lock_guard lock(mutex_);
    return error_;
}

// An earlier attempt may have failed only because another process held the file.
bool Registry::open() {
    if (database_)
        return true;
    const bool isReader = access_ == Access::ReadOnly;
    const SqliteDatabase::Options options{.create = !isReader && device_.isDevice(),
                                          .readOnly = isReader,
                                          .syncEveryCommit = false,
                                          .busyTimeout = isReader ? readerWait : writerWait};
    database_ = SqliteDatabase::open(device_.registryPath(), options, &error_);
    if (!database_ || isReader)
        return database_ != nullptr;
    // Values are listed in the order of their ids, which count up.
    const bool hasTable =
        database_->run("CREATE TABLE IF NOT EXISTS registry_values ("
                       "id INTEGER PRIMARY KEY, path TEXT NOT NULL, name TEXT NOT NULL, "
                       "type INTEGER NOT NULL, data, UNIQUE (path, name))");
    if (!hasTable) {
        error_ = database_->lastError();
        database_.reset();
    }
    return hasTable;
}

std::optional<RegistryValue> Registry::read(QStringView key, QStringView name) {
    const std::lock_guard lock(mutex_);
    SqliteStatement query =
        prepare("SELECT type, data FROM registry_values WHERE path = ? AND name = ?",
                {key.toUtf8(), name.toUtf8()});
    return query.next() ? std::optional(valueOf(query)) : std::nullopt;
}

bool Registry::write(QStringView key, QStringView name, const RegistryValue &value) {
    return insert(key, name, value,
                  "ON CONFLICT (path, name) DO UPDATE SET type = excluded.type, "
                  "data = excluded.data");
}

bool Registry::create(QStringView key, QStringView name, const RegistryValue &value) {
    return insert(key, name, value, "ON CONFLICT (path, name) DO NOTHING");
}

bool Registry::insert(QStringView key, QStringView name, const RegistryValue &value,
                      const QByteArray &onConflict) {
    const std::lock_guard lock(mutex_);
    const quint32 *number = std::get_if<quint32>(&value);
    const SqliteValue data =
        number ? SqliteValue(qint64{*number}) : SqliteValue(std::get<QString>(value).toUtf8());
    return prepare("INSERT INTO registry_values (path, name, type, data) VALUES (?, ?, ?, ?) " +
                       onConflict,
                   {key.toUtf8(), name.toUtf8(), qint64{number ? StoredDword : StoredText}, data})
               .step() == SqliteStep::Done;
}

bool Registry::remove(QStringView key, QStringView name) {
    const std::lock_guard lock(mutex_);
    SqliteStatement statement =
        prepare("DELETE FROM registry_values WHERE path = ? AND name = ? RETURNING id",
                {key.toUtf8(), name.toUtf8()});
    return statement.next() && statement.step() == SqliteStep::Done;
}

std::optional<QList<Registry::NamedValue>> Registry::values(QStringView key) {
    const std::lock_guard lock(mutex_);
    SqliteStatement query = prepare(
        "SELECT type, data, name FROM registry_values WHERE path = ? ORDER BY id", {key.toUtf8()});
    QList<NamedValue> found;
    while (query.next())
        found.append({query.text(2), valueOf(query)});
    return query.failed() ? std::nullopt : std::optional(found);
}

SqliteStatement Registry::prepare(const QByteArray &statement, std::vector<SqliteValue> values) {
    return open() ? database_->prepare(statement, std::move(values)) : SqliteStatement();
}

bool Registry::flush() {
    const std::lock_guard lock(mutex_);
    return open() && (database_->inTransaction() || database_->flush());
}

QStringList Registry::faults() {
    const std::lock_guard lock(mutex_);
    return open() ? database_->faults() : QStringList{error_};
}

Registry::Batch::Batch(Registry &registry) : lock_(registry.mutex_) {
    if (registry.open())
        transaction_ = std::make_unique<SqliteTransaction>(*registry.database_);
}

bool Registry::Batch::commit() { return transaction_ && transaction_->commit(); }

} // namespace tidebrook
