#include "platform/sql/sqlite_database.h"

#include "platform/base/descriptor.h"
#include "platform/base/plain_file.h"

#include <QFile>

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace tidebrook {

namespace {

// Far more than the system has statements.
constexpr std::size_t keptStatementLimit = 64;

// Of a journal that is in use for months, or stays when it is closed: the next one to open the
// file reads all of it.
constexpr int keptJournalPages = 64;

constexpr char blanks[] = " \t\r\n";

constexpr QStringView journalEndings[]{u"-wal", u"-shm", u"-journal"};

QByteArray withParameters(const QByteArray &format) {
    QByteArray text = format;
    for (const char *hole : {"'%s'", "'%d'", "'%I64d'", "%d", "%lu"})
        text.replace(hole, "?");
    return text;
}

bool isOneStatement(const char *tail) { return tail[std::strspn(tail, blanks)] == '\0'; }

} // namespace

void SqliteStatement::GiveBack::operator()(sqlite3_stmt *statement) const {
    if (!place || *place) {
        sqlite3_finalize(statement);
        return;
    }
    sqlite3_reset(statement);
    sqlite3_clear_bindings(statement);
    *place = statement;
}

SqliteStatement::SqliteStatement(sqlite3_stmt *statement, const GiveBack &giveBack,
                                 std::vector<SqliteValue> values)
    : values_(std::move(values)), statement_(statement, giveBack) {
    int position = 0;
    for (const SqliteValue &value : values_) {
        ++position;
        if (const qint64 *number = std::get_if<qint64>(&value)) {
            sqlite3_bind_int64(statement, position, *number);
            continue;
        }
        const QByteArray &text = std::get<QByteArray>(value);
        sqlite3_bind_text64(statement, position, text.constData(),
                            static_cast<sqlite3_uint64>(text.size()), SQLITE_STATIC, SQLITE_UTF8);
    }
}

SqliteStep SqliteStatement::step() {
    if (!statement_)
        return SqliteStep::Failed;
    switch (sqlite3_step(statement_.get()) & 0xFF) {
    case SQLITE_ROW:
        return SqliteStep::Row;
    case SQLITE_DONE:
        return SqliteStep::Done;
    case SQLITE_CONSTRAINT:
        return SqliteStep::IntegrityViolation;
    default:
        return SqliteStep::Failed;
    }
}

bool SqliteStatement::next() {
    const SqliteStep ended = step();
    failed_ = ended != SqliteStep::Row && ended != SqliteStep::Done;
    return ended == SqliteStep::Row;
}

QString SqliteStatement::text(int column) const { return QString::fromUtf8(utf8(column)); }

QByteArrayView SqliteStatement::utf8(int column) const {
    sqlite3_stmt *row = statement_.get();
    const auto *text = reinterpret_cast<const char *>(sqlite3_column_text(row, column));
    return {text, sqlite3_column_bytes(row, column)};
}

qint64 SqliteStatement::integer(int column) const {
    return sqlite3_column_int64(statement_.get(), column);
}

int SqliteStatement::declaredLength(int column) const {
    const QByteArrayView type(sqlite3_column_decltype(statement_.get(), column));
    const qsizetype bracket = type.indexOf('(');
    const QByteArrayView name = type.first(qMax(bracket, 0));
    const bool isText = name.compare("NCHAR", Qt::CaseInsensitive) == 0 ||
                        name.compare("NVARCHAR", Qt::CaseInsensitive) == 0;
    return isText ? type.sliced(bracket + 1).chopped(1).toInt() : 0;
}

std::unique_ptr<SqliteDatabase> SqliteDatabase::open(const QString &path, const Options &options,
                                                     QString *error) {
    if (!isUsablePlace(path)) {
        if (error)
            *error = QStringLiteral("it is no plain file");
        return nullptr;
    }
    // Not by open(2): closing a descriptor would release the locks of this process's connections.
    if (options.create)
        mknod(QFile::encodeName(path).constData(), S_IFREG | 0600, 0);
    sqlite3 *handle = nullptr;
    const int flags = (options.readOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE) |
                      SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE |
                      (options.create ? SQLITE_OPEN_CREATE : 0);
    const int code = sqlite3_open_v2(QFile::encodeName(path).constData(), &handle, flags, nullptr);
    std::unique_ptr<SqliteDatabase> database(new SqliteDatabase(handle));
    if (code == SQLITE_OK && database->configure(options))
        return database;
    if (error)
        *error = sqlite3_errcode(handle) == SQLITE_OK ? QStringLiteral("the file is empty")
                                                      : database->lastError();
    return nullptr;
}

SqliteDatabase::~SqliteDatabase() {
    for (const auto &kept : statements_)
        sqlite3_finalize(kept.second);
    sqlite3_close(handle_);
}

bool SqliteDatabase::configure(const Options &options) {
    sqlite3_busy_timeout(handle_, options.busyTimeout);
    // The schema of a file that another program made must not run code.
    sqlite3_db_config(handle_, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_db_config(handle_, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    if (!options.create && !hasSchema())
        return false;
    if (options.readOnly)
        return true;
    if (options.isCache)
        run("PRAGMA synchronous = OFF");
    // Fails for a read-only file, which keeps its journal mode.
    run("PRAGMA journal_mode = WAL");
    if (options.isCache)
        sqlite3_db_config(handle_, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
    if (!options.syncEveryCommit)
        sqlite3_wal_autocheckpoint(handle_, keptJournalPages);
    return run(options.syncEveryCommit ? "PRAGMA synchronous = FULL"
                                       : "PRAGMA synchronous = NORMAL");
}

// SQLite opens a file lazily: only reading the schema finds out that it is damaged or empty.
bool SqliteDatabase::hasSchema() {
    SqliteStatement query = prepare("SELECT count(*) FROM sqlite_master");
    return query.next() && query.integer(0) > 0;
}

sqlite3_stmt *SqliteDatabase::compile(const QByteArray &utf8) {
    sqlite3_stmt *statement = nullptr;
    const char *tail = nullptr;
    const int size = static_cast<int>(utf8.size()) + 1;
    const int code = sqlite3_prepare_v3(handle_, utf8.constData(), size, SQLITE_PREPARE_PERSISTENT,
                                        &statement, &tail);
    if (code == SQLITE_OK && statement && isOneStatement(tail))
        return statement;
    sqlite3_finalize(statement);
    return nullptr;
}

SqliteStatement SqliteDatabase::prepare(const QByteArray &utf8, std::vector<SqliteValue> values) {
    return lend(utf8, false, std::move(values));
}

SqliteStatement SqliteDatabase::prepareFormat(const QByteArray &format,
                                              std::vector<SqliteValue> values) {
    return lend(format, true, std::move(values));
}

SqliteStatement SqliteDatabase::lend(const QByteArray &text, bool isFormat,
                                     std::vector<SqliteValue> values) {
    auto kept = statements_.find(text);
    if (kept == statements_.end() && statements_.size() < keptStatementLimit)
        kept = statements_.emplace(text, nullptr).first;
    sqlite3_stmt **place = kept == statements_.end() ? nullptr : &kept->second;
    sqlite3_stmt *statement = place ? std::exchange(*place, nullptr) : nullptr;
    if (!statement)
        statement = compile(isFormat ? withParameters(text) : text);
    return statement ? SqliteStatement(statement, {place}, std::move(values)) : SqliteStatement();
}

bool SqliteDatabase::run(const QByteArray &utf8, std::vector<SqliteValue> values) {
    return prepare(utf8, std::move(values)).step() == SqliteStep::Done;
}

bool SqliteDatabase::inTransaction() const { return sqlite3_get_autocommit(handle_) == 0; }

bool SqliteDatabase::flush() {
    // What was committed is in the journal. A checkpoint would sync it too, but fails while another
    // connection makes one.
    sqlite3_file *journal = nullptr;
    const int code = sqlite3_file_control(handle_, "main", SQLITE_FCNTL_JOURNAL_POINTER, &journal);
    if (code != SQLITE_OK)
        return false;
    const bool isThere = journal && journal->pMethods;
    return !isThere || journal->pMethods->xSync(journal, SQLITE_SYNC_NORMAL) == SQLITE_OK;
}

QString SqliteDatabase::lastError() const { return QString::fromUtf8(sqlite3_errmsg(handle_)); }

bool SqliteDatabase::isUsablePlace(const QString &path) {
    return fileKindAt(path, Links::Followed) != FileKind::Other &&
           std::none_of(
               std::begin(journalEndings), std::end(journalEndings),
               [&](QStringView ending) { return fileKindAt(path + ending) == FileKind::Other; });
}

bool SqliteDatabase::settle(const QString &path) {
    {
        const std::unique_ptr<SqliteDatabase> database = open(path, {});
        const bool isWhole = database && sqlite3_wal_checkpoint_v2(database->handle_, nullptr,
                                                                   SQLITE_CHECKPOINT_TRUNCATE,
                                                                   nullptr, nullptr) == SQLITE_OK;
        if (!isWhole)
            return false;
    }
    const bool isAlone =
        std::all_of(std::begin(journalEndings), std::end(journalEndings), [&](QStringView ending) {
            return fileKindAt(path + ending) == FileKind::Missing;
        });
    const Descriptor file(openPlainFile(path, O_RDONLY));
    return isAlone && file.isOpen() && fsync(file.number()) == 0;
}

bool SqliteDatabase::remove(const QString &path) {
    if (!isUsablePlace(path) || fileKindAt(path) == FileKind::Other)
        return false;
    for (const QStringView ending : journalEndings)
        QFile::remove(path + ending);
    return QFile::remove(path) || fileKindAt(path) == FileKind::Missing;
}

bool SqliteDatabase::isDamaged(const QString &path) {
    if (!isUsablePlace(path))
        return false;
    sqlite3 *handle = nullptr;
    sqlite3_open_v2(QFile::encodeName(path).constData(), &handle, SQLITE_OPEN_READONLY, nullptr);
    SqliteDatabase database(handle);
    SqliteStatement check = database.prepare("PRAGMA integrity_check");
    const bool isChecked = check.next();
    const int code = sqlite3_errcode(handle) & 0xFF;
    return isChecked ? check.text(0) != u"ok" : code == SQLITE_CORRUPT || code == SQLITE_NOTADB;
}

QStringList SqliteDatabase::faults() {
    QStringList found;
    SqliteStatement check = prepare("PRAGMA integrity_check");
    while (check.next()) {
        if (check.text(0) != u"ok")
            found.append(check.text(0));
    }
    if (check.failed())
        found.append(lastError());
    return found;
}

SqliteTransaction::SqliteTransaction(SqliteDatabase &database)
    : database_(database), isOuter_(!database.inTransaction()),
      isOpen_(!isOuter_ || database.run("BEGIN IMMEDIATE")) {}

SqliteTransaction::~SqliteTransaction() {
    if (isOuter_ && isOpen_ && database_.inTransaction())
        database_.run("ROLLBACK");
}

bool SqliteTransaction::commit() { return isOpen_ && (!isOuter_ || database_.run("COMMIT")); }

} // namespace tidebrook
