#pragma once

#include "platform/base/descriptor.h"
#include "platform/base/device_root.h"
#include "platform/base/file_identity.h"

#include <QObject>
#include <QSet>

namespace tidebrook {

/// Notices, without polling, that a device's databases are written, by other programs or by this
/// one, and that the device itself is made, removed or replaced. For a thread with an event loop.
///
/// Of a database it watches the journal. What was written there can be read when its writer lets go
/// of the lock, which is a moment later.
class DeviceWatch : public QObject {
    Q_OBJECT

public:
    enum class Scope {
        Place,   ///< only the device itself
        Content, ///< its databases, too
    };

    /// Watches nothing until it gets a scope. Where the system has no more watches to give, it
    /// notices nothing.
    explicit DeviceWatch(const DeviceRoot &device, QObject *parent = nullptr);

    /// What was written in a scope before it was set is not reported, but that the device moved
    /// meanwhile is, before this returns.
    void setScope(Scope scope);

Q_SIGNALS:
    /// A database was written, or a file of the device's folder was made or removed. Sent often
    /// while another program is at work.
    void changed();
    /// Another folder, or none, is the device now.
    void moved();

private:
    void take();
    bool watch(); // whether the device moved
    void watchPlace();
    void add(const QString &path, quint32 events);

    const DeviceRoot device_;
    const Descriptor inotify_;
    Scope scope_ = Scope::Place;
    QSet<int> watches_;
    FileIdentities identity_;
};

} // namespace tidebrook
