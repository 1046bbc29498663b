#include "platform/sql/registry.h"

namespace tidebrook {

namespace {

enum StoredType { StoredDword = 4, StoredText = 1 };

RegistryValue valueOf(const SqliteStatement &row, int typeColumn, int dataColumn) {
    if (row.integer(typeColumn) == StoredDword)
        return static_cast<quint32>(row.integer(dataColumn));
    return row.text(dataColumn);
}

} // namespace

Registry::Registry(const DeviceRoot &device) : device_(device) { open(); }

bool Registry::isOpen() {
    const std::lock_guard lock(mutex_);
    return open();
}

// One that was not to be had, as while another process held it for itself, may be had by now.
bool Registry::open() {
    if (database_)
        return true;
    const SqliteDatabase::Options options{
        .create = device_.isDevice(), .syncEveryCommit = false, .busyTimeout = 2000};
    database_ = SqliteDatabase::open(device_.registryPath(), options, &error_);
    if (!database_)
        return false;
    // The row id counts up with each new value, which is the order that values are listed in.
    const bool hasTable =
        database_->prepare("SELECT path, name, type, data FROM registry_values") ||
        database_->run("CREATE TABLE IF NOT EXISTS registry_values ("
                       "id INTEGER PRIMARY KEY, path TEXT NOT NULL, name TEXT NOT NULL, "
                       "type INTEGER NOT NULL, data, UNIQUE (path, name))") == SqliteStep::Done;
    if (!hasTable) {
        error_ = database_->lastError();
        database_.reset();
    }
    return hasTable;
}

Registry::~Registry() = default;

std::optional<RegistryValue> Registry::read(QStringView key, QStringView name) {
    const std::lock_guard lock(mutex_);
    if (!open())
        return std::nullopt;
    const QByteArray path = key.toUtf8();
    const QByteArray valueName = name.toUtf8();
    SqliteStatement query =
        database_->prepare("SELECT type, data FROM registry_values WHERE path = ? AND name = ?");
    if (!query)
        return std::nullopt;
    query.bind(1, path);
    query.bind(2, valueName);
    if (query.step() != SqliteStep::Row)
        return std::nullopt;
    return valueOf(query, 0, 1);
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
    if (!open())
        return false;
    const QByteArray path = key.toUtf8();
    const QByteArray valueName = name.toUtf8();
    SqliteStatement statement = database_->prepare(
        "INSERT INTO registry_values (path, name, type, data) VALUES (?, ?, ?, ?) " + onConflict);
    if (!statement)
        return false;
    statement.bind(1, path);
    statement.bind(2, valueName);
    QByteArray text;
    if (const quint32 *number = std::get_if<quint32>(&value)) {
        statement.bind(3, StoredDword);
        statement.bind(4, qint64{*number});
    } else {
        text = std::get<QString>(value).toUtf8();
        statement.bind(3, StoredText);
        statement.bind(4, text);
    }
    return statement.step() == SqliteStep::Done;
}

bool Registry::remove(QStringView key, QStringView name) {
    const std::lock_guard lock(mutex_);
    if (!open())
        return false;
    const QByteArray path = key.toUtf8();
    const QByteArray valueName = name.toUtf8();
    SqliteStatement statement =
        database_->prepare("DELETE FROM registry_values WHERE path = ? AND name = ? RETURNING id");
    if (!statement)
        return false;
    statement.bind(1, path);
    statement.bind(2, valueName);
    return statement.step() == SqliteStep::Row && statement.step() == SqliteStep::Done;
}

std::optional<QList<Registry::NamedValue>> Registry::values(QStringView key) {
    const std::lock_guard lock(mutex_);
    if (!open())
        return std::nullopt;
    const QByteArray path = key.toUtf8();
    SqliteStatement query = database_->prepare(
        "SELECT name, type, data FROM registry_values WHERE path = ? ORDER BY id");
    if (!query)
        return std::nullopt;
    query.bind(1, path);
    QList<NamedValue> found;
    SqliteStep step = query.step();
    for (; step == SqliteStep::Row; step = query.step())
        found.append({query.text(0), valueOf(query, 1, 2)});
    return step == SqliteStep::Done ? std::optional(found) : std::nullopt;
}

bool Registry::flush() {
    const std::lock_guard lock(mutex_);
    return open() && (database_->inTransaction() || database_->flush());
}

QStringList Registry::faults() {
    const std::lock_guard lock(mutex_);
    if (!open())
        return {error_};
    return database_->faults();
}

Registry::Batch::Batch(Registry &registry) : lock_(registry.mutex_) {
    if (registry.open())
        transaction_ = std::make_unique<SqliteTransaction>(*registry.database_);
}

bool Registry::Batch::commit() { return transaction_ && transaction_->commit(); }

} // namespace tidebrook
