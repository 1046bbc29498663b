#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>
#include <QStringView>

#include <memory>

struct sqlite3;
struct sqlite3_stmt;

namespace tidebrook {

class SqliteDatabase;

/// How a step of a statement ended.
enum class SqliteStep { Row, Done, IntegrityViolation, Failed };

/// A prepared statement on loan from its database, to which it goes back, reset, when this
/// object ends. It must not outlive the database. Texts that are bound must live until the last
/// step.
class SqliteStatement {
public:
    SqliteStatement() = default;
    SqliteStatement(SqliteDatabase &database, sqlite3_stmt *statement, const QByteArray &text);
    SqliteStatement(SqliteStatement &&other) noexcept;
    SqliteStatement &operator=(SqliteStatement &&other) noexcept;
    ~SqliteStatement();

    explicit operator bool() const { return statement_ != nullptr; }

    /// Positions count from 1, columns from 0.
    void bind(int position, const QByteArray &utf8);
    void bind(int position, qint64 number);
    void bind(int position, QByteArray &&) = delete;

    SqliteStep step();

    int columnCount() const;
    QByteArray declaredType(int column) const;
    QString text(int column) const;
    qint64 integer(int column) const;

private:
    SqliteDatabase *database_ = nullptr;
    sqlite3_stmt *statement_ = nullptr;
    QByteArray text_;
};

/// One SQLite file in WAL mode, with the statements that were prepared on it. Not thread-safe:
/// its owner locks.
class SqliteDatabase {
public:
    struct Options {
        /// Make the file when it is missing.
        bool create = false;
        /// Sync at every commit, so that what was committed survives a power cut. Without it a
        /// commit still is whole or absent after one, and `flush` makes it last.
        bool syncEveryCommit = true;
        /// How long a statement waits for another process's lock, in milliseconds.
        int busyTimeout = 5000;
    };

    /// Null when the file cannot be opened, is no database or (unless it may be made) an empty
    /// one; `error` then says why. A file that is made can be read by its owner alone, and so
    /// can its journal.
    static std::unique_ptr<SqliteDatabase> open(const QString &path, const Options &options,
                                                QString *error = nullptr);
    /// Whether a database may lie at a path: what is there is a plain file or a link to one, and
    /// no other thing lies in the place of its journal. Nothing but that is ever opened.
    static bool isUsablePlace(const QString &path);
    /// Writes all that is in the journal of a database that no process has open into its file, and
    /// syncs that. True when the file alone is the whole database, and outlives a power cut.
    static bool settle(const QString &path);
    /// Removes a database that no process has open, with its journal; never what is no plain file.
    static bool remove(const QString &path);
    /// Whether a file is damaged, or is no database; false also when that cannot be told, as of
    /// one that others have locked.
    static bool isDamaged(const QString &path);

    ~SqliteDatabase();
    SqliteDatabase(const SqliteDatabase &) = delete;
    SqliteDatabase &operator=(const SqliteDatabase &) = delete;

    /// Prepares one statement, or takes the one prepared earlier for the same text. False (by
    /// its operator bool) when the text is no statement, or more than one.
    SqliteStatement prepare(const QByteArray &utf8);

    /// Prepares and runs one statement without parameters, ignoring its rows.
    SqliteStep run(const QByteArray &utf8);

    bool inTransaction() const;
    /// Makes everything that was committed outlive a power cut. Waits for no other user of it.
    bool flush();
    QString lastError() const;

    /// What is damaged in the file, a line each; none when it is sound.
    QStringList faults();

private:
    friend class SqliteStatement;
    explicit SqliteDatabase(sqlite3 *handle) : handle_(handle) {}
    bool configure(const Options &options);
    bool hasSchema();
    void giveBack(const QByteArray &text, sqlite3_stmt *statement);

    sqlite3 *handle_;
    QHash<QByteArray, sqlite3_stmt *> idle_;
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
    bool isOpen_;
};

} // namespace tidebrook
