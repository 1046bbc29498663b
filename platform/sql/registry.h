#pragma once

#include "platform/base/device_root.h"
#include "platform/sql/sqlite_database.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <QStringView>

#include <memory>
#include <mutex>
#include <optional>
#include <variant>

namespace tidebrook {

/// A typed value: a 32-bit unsigned number (DWORD) or a text.
using RegistryValue = std::variant<quint32, QString>;

/// The device's registry: keys by path (`Software\Tamrel\Feedlark`), each with named, typed
/// values in the order in which they were first written. Names are case-sensitive.
///
/// Several processes and threads may use it at once; each call is atomic, and sees what others
/// wrote before it. `flush` makes what was written outlive a power cut. With a file that is damaged
/// or cannot be opened every read finds nothing and every write returns false.
class Registry {
public:
    enum class Access {
        ReadWrite, ///< the file is made where it is missing but the device is not
        /// Every write fails, and no call waits for another process longer than 5 ms: it fails
        /// then.
        ReadOnly,
    };

    /// Opens the registry of the device.
    explicit Registry(const DeviceRoot &device, Access access = Access::ReadWrite);

    /// False when the file cannot be opened; `error` then says why. Every call tries it again.
    bool isOpen();
    QString error();

    std::optional<RegistryValue> read(QStringView key, QStringView name);
    bool write(QStringView key, QStringView name, const RegistryValue &value);
    /// Writes a value where there is none; one that is there stays, with success.
    bool create(QStringView key, QStringView name, const RegistryValue &value);
    /// True when there was such a value and it is gone.
    bool remove(QStringView key, QStringView name);

    struct NamedValue {
        QString name;
        RegistryValue value;
    };
    /// All values of a key; nothing when they could not be read.
    std::optional<QList<NamedValue>> values(QStringView key);

    bool flush();

    /// What is damaged in the registry's file, a line each; none when it is sound.
    QStringList faults();

    /// Locks the registry for this thread, so that several calls are one change: all of it is
    /// written by `commit`, or none.
    class Batch {
    public:
        explicit Batch(Registry &registry);
        /// False when the registry could not be locked in 2 seconds: then nothing may be written.
        bool isOpen() const { return transaction_ && transaction_->isOpen(); }
        bool commit();

    private:
        std::unique_lock<std::recursive_mutex> lock_;
        std::unique_ptr<SqliteTransaction> transaction_;
    };

private:
    bool open();
    SqliteStatement prepare(const QByteArray &statement, std::vector<SqliteValue> values);
    bool insert(QStringView key, QStringView name, const RegistryValue &value,
                const QByteArray &onConflict);

    const DeviceRoot device_;
    const Access access_;
    std::recursive_mutex mutex_; // guards what follows
    std::unique_ptr<SqliteDatabase> database_;
    QString error_;
};

} // namespace tidebrook
