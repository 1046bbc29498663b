#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <map>
#include <memory>
#include <variant>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace tidebrook {

class SqliteDatabase;

/// How a step of a statement ended. A refused key is apart from every other failure, because some
/// callers expect it.
enum class SqliteStep { Row, Done, IntegrityViolation, Failed };

/// What is bound to a statement: a text in UTF-8, or a whole number.
using SqliteValue = std::variant<QByteArray, qint64>;

/// A prepared statement on loan from its database, to which it goes back, reset, when this object
/// ends. It must not outlive the database. One that could not be prepared is false, and each of
/// its steps fails.
class SqliteStatement {
public:
    SqliteStatement() = default;

    explicit operator bool() const { return statement_ != nullptr; }

    SqliteStep step();

    /// Steps to the next row, the first at first. False at the end and after a failure; `failed`
    /// then says which.
    bool next();
    bool failed() const { return failed_; }

    /// The columns of the row, counted from 0.
    QString text(int column) const;
    /// In UTF-8; valid until the next step.
    QByteArrayView utf8(int column) const;
    qint64 integer(int column) const;
    /// The characters that the table declares a text column for; 0 for a column of another type.
    int declaredLength(int column) const;

private:
    friend class SqliteDatabase;
    struct GiveBack {
        void operator()(sqlite3_stmt *statement) const;
        sqlite3_stmt **place; // in the database's list, null while on loan; none if not kept
    };
    SqliteStatement(sqlite3_stmt *statement, const GiveBack &giveBack,
                    std::vector<SqliteValue> values);

    std::vector<SqliteValue> values_; // bound, so they live as long as the statement
    std::unique_ptr<sqlite3_stmt, GiveBack> statement_;
    bool failed_ = false;
};

/// One SQLite file in WAL mode, with the statements that were prepared on it. Not thread-safe:
/// its owner locks.
class SqliteDatabase {
public:
    struct Options {
        /// Make the file when it is missing.
        bool create = false;
        /// Nothing is written to the file; SQLite may still make its journal. It excludes `create`.
        bool readOnly = false;
        /// Sync at every commit. Without it a power cut may undo the last ones, each as a whole,
        /// unless `flush` was called.
        bool syncEveryCommit = true;
        /// What is in the file can be had again, and is seldom worth a sync: a power cut while the
        /// file is made may damage it, and its journal stays when it is closed.
        bool isCache = false;
        /// How long a statement waits for another process's lock, in milliseconds.
        int busyTimeout = 5000;
    };

    /// Null when the file cannot be opened, is no database or (unless it may be made) is empty;
    /// `error` then says why. A file that is made, and its journal, can be read by their owner
    /// alone.
    static std::unique_ptr<SqliteDatabase> open(const QString &path, const Options &options,
                                                QString *error = nullptr);
    /// Whether a database may be opened or made at a path: nothing lies there but a plain file or a
    /// link to one, and in its journal's place nothing but a plain file.
    static bool isUsablePlace(const QString &path);
    /// Writes the journal of a database that no process has open into its file, and syncs that.
    /// True when the file alone is the whole database.
    static bool settle(const QString &path);
    /// Removes a database that no process has open, with its journal, but only plain files.
    static bool remove(const QString &path);
    /// Whether a file is damaged, or is no database; false also when it cannot be read, as while
    /// another process locks it.
    static bool isDamaged(const QString &path);

    ~SqliteDatabase();
    SqliteDatabase(const SqliteDatabase &) = delete;
    SqliteDatabase &operator=(const SqliteDatabase &) = delete;

    /// Prepares one statement, or takes the one prepared earlier for the same text, and binds the
    /// values to its parameters, in order. False when the text is no statement, or more than one.
    SqliteStatement prepare(const QByteArray &utf8, std::vector<SqliteValue> values = {});

    /// The same for a text whose parameters are written `'%s'`, `%d`, `%lu`, `'%d'` or `'%I64d'`.
    SqliteStatement prepareFormat(const QByteArray &format, std::vector<SqliteValue> values);

    /// Runs one statement that has no rows.
    bool run(const QByteArray &utf8, std::vector<SqliteValue> values = {});

    bool inTransaction() const;
    /// Makes everything that was committed outlive a power cut. Does not wait for other users.
    bool flush();
    QString lastError() const;

    /// What is damaged in the file, a line each; none when it is sound.
    QStringList faults();

private:
    explicit SqliteDatabase(sqlite3 *handle) : handle_(handle) {}
    bool configure(const Options &options);
    bool hasSchema();
    sqlite3_stmt *compile(const QByteArray &utf8);
    SqliteStatement lend(const QByteArray &text, bool isFormat, std::vector<SqliteValue> values);

    sqlite3 *handle_;
    // By the text or the format; null while on loan.
    std::map<QByteArray, sqlite3_stmt *> statements_;
};

/// A write transaction, rolled back unless it is committed. Inside another one it does nothing:
/// the outer one decides.
class SqliteTransaction {
public:
    explicit SqliteTransaction(SqliteDatabase &database);
    ~SqliteTransaction();
    SqliteTransaction(const SqliteTransaction &) = delete;
    SqliteTransaction &operator=(const SqliteTransaction &) = delete;

    /// False when the file could not be locked for writing.
    bool isOpen() const { return isOpen_; }
    bool commit();

private:
    SqliteDatabase &database_;
    const bool isOuter_;
    const bool isOpen_;
};

} // namespace tidebrook
