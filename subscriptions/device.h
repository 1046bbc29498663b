#pragma once

#include "platform/base/device_root.h"
#include "platform/base/file_identity.h"
#include "platform/sql/registry.h"
#include "store/category_list.h"
#include "store/feed_store.h"
#include "store/settings_store.h"

#include <QString>

#include <chrono>
#include <optional>

namespace tidebrook {

/// What keeps a device from being used as a whole. Programs use the rest of it.
enum class DeviceFault {
    None,
    RegistryUnreadable,
    StoreFailed,         ///< the store's error field has the code
    CategoriesNotListed, ///< a category that is seeded, or has channels, could not be listed
};

/// Makes a device where there is none; one that exists is left as it is. False when it could not
/// be made; nothing is left behind then.
bool provisionDevice(const DeviceRoot &root);

/// A device, and what a program keeps open of it. Thread-safe, but for `open` and `close`.
class Device {
public:
    /// Opens the registry and nothing else.
    explicit Device(const DeviceRoot &deviceRoot);

    const DeviceRoot root;
    const QString todayItemName;
    const QString todayItemKey; ///< of the registry
    Registry registry;
    SettingsStore settings;
    CategoryListStore categoryStore;
    FeedStore store;

    /// Whether the settings and the list of categories can be read.
    bool isRegistryReadable();

    /// Opens the database, which makes and seeds it on first use; before that, seeds the
    /// categories where there are none, and with them the settings that are missing. Lists the
    /// categories of channels that are not listed, as when a change was cut short: those channels
    /// would be out of sight. May take long. Waits for the lock of the channels, but no longer than
    /// `lockTimeout`, if there is one; without the lock no category is listed.
    DeviceFault open(std::optional<std::chrono::milliseconds> lockTimeout);

    /// Whether the registry and the database are still those that were opened. Where they are gone
    /// or replaced by others, a change would be lost.
    bool isStillThere() const;

    /// Closes the database for good. It must not be in use.
    void close() { store.Close(); }

    /// The file to lock for a change of several steps, so that no process sees it half done.
    QString channelsLockPath() const { return root.filePath(u"\\run\\channels.lock"); }

private:
    FileIdentities files() const;
    bool seedIfEmpty(bool isLocked);
    bool listLostCategories();

    FileIdentities ownFiles_; // empty until the database is open
};

} // namespace tidebrook
