#pragma once

#include "platform/base/device_root.h"
#include "platform/http/http.h"
#include "platform/sql/sqlite_database.h"

#include <QDateTime>
#include <QHash>
#include <QString>

#include <functional>
#include <memory>

namespace tidebrook {

/// What is remembered of a channel's updates. Moments are UTC, and invalid where there was none.
struct UpdateState {
    QString url; ///< the address that all of this is of

    QDateTime lastAttempt;
    QDateTime lastTurn; ///< the last attempt that was an automatic one
    QDateTime lastSuccess;
    quint32 lastError = 0;     ///< of the last attempt; 0 when it succeeded
    bool wasUnchanged = false; ///< the last attempt: the server had nothing new to send
    int storedCount = 0;       ///< new articles of the last attempt
    int failures = 0;          ///< automatic attempts that failed since the last success or request
    QDateTime leftAloneUntil;  ///< what the server asked for

    /// What the server said of the document that was stored last, and how many articles the
    /// channel had then.
    HttpValidators validators;
    int total = 0;
};

/// The updates' memory: a file beside the database that holds nothing that the user would miss.
/// When it is deleted, also while it is in use, the next update fetches everything anew. A file
/// that is damaged is replaced. Not thread-safe; several processes may use it at once.
class UpdateStateStore {
public:
    /// Opens the file, making it when it is missing. Where that fails every read finds nothing and
    /// nothing is changed.
    explicit UpdateStateStore(const DeviceRoot &device);

    /// What is remembered of each channel, by its name.
    QHash<QString, UpdateState> readAll();

    /// Changes what is remembered of one channel, as one change: nothing that another process
    /// remembers meanwhile is lost.
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
