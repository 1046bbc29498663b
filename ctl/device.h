#pragma once

#include "subscriptions/locked_subscriptions.h"

#include <QList>
#include <QString>

#include <optional>

namespace tidebrook {

/// The device that the commands work on. Its own functions report their failures on standard error.
class CommandDevice : public Device {
public:
    using Device::Device;

    /// Locks the subscriptions against other programs: what is listed stays so until the command
    /// ends, or `unlock`. What is printed meanwhile is written then.
    bool lock();
    void unlock();
    /// Only while they are locked.
    LockedSubscriptions &subscriptions() { return *locked_; }

    bool openRegistry();
    bool openStore();
    /// Whether there is such a channel, in a listed category or not.
    bool hasChannel(const QString &name);
    bool hasCategory(const QString &name);
    /// All channels of one category, or of all listed ones, each category's by their names.
    std::optional<QList<ListedChannel>> channels(const QString &category = {});

    QStringList categories();

private:
    std::optional<LockedSubscriptions> locked_;
};

/// That the folders of a device cannot be made, in words.
QString foldersFailure(const DeviceRoot &root);

} // namespace tidebrook
