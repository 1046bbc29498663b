#pragma once

#include "platform/base/device_root.h"
#include "platform/http/http.h"
#include "platform/sql/sqlite_database.h"
#include "store/records.h"

#include <QDateTime>
#include <QHash>
#include <QString>

#include <functional>
#include <memory>

namespace tidebrook {

/// How a channel's updates went. Moments are UTC, and invalid where there was none.
struct UpdateState {
    QString url; ///< the address that all of this is about

    QDateTime lastAttempt;
    QDateTime lastTurn; ///< the last attempt of a round or of `tidebrookctl update`
    QDateTime lastSuccess;
    quint32 lastError = 0;     ///< of the last attempt; 0 when it succeeded
    bool wasUnchanged = false; ///< the last attempt: the server had nothing new to send
    int storedCount = 0;       ///< new articles of the last attempt
    SharedArticles shared;     ///< of the last document
    int failures = 0;          ///< turns that failed since the last success or request
    QDateTime leftAloneUntil;  ///< as the server asked

    /// What the server said of the document that was stored last, and how many articles the
    /// channel had then.
    HttpValidators validators;
    int total = 0;
};

/// The states of all channels: a file beside the database that may be deleted at any time, and then
/// makes the next update fetch everything. A damaged file is replaced. Not thread-safe; several
/// processes may use it at once.
class UpdateStateStore {
public:
    /// Opens the file, and makes it when it is missing. Where that fails every read finds nothing
    /// and every change fails.
    explicit UpdateStateStore(const DeviceRoot &device);

    /// The states by the channels' names.
    QHash<QString, UpdateState> readAll();

    /// Reads and changes the state of one channel as one change, which no other process comes
    /// between.
    bool change(const QString &channelName, const std::function<void(UpdateState &)> &work);

private:
    UpdateState read(const QByteArray &channelName);
    bool write(const QByteArray &channelName, const UpdateState &state);
    bool open();
    void recover();

    const QString path_;

    std::unique_ptr<SqliteDatabase> database_;
};

} // namespace tidebrook
