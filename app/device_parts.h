#pragma once

#include "platform/base/device_root.h"
#include "platform/base/file_identity.h"
#include "platform/sql/registry.h"
#include "platform/sync/named_mutex.h"
#include "store/category_list.h"
#include "store/feed_store.h"
#include "store/settings_store.h"

#include <QString>

#include <chrono>
#include <optional>

namespace tidebrook {

/// What the reader keeps open of the device while it runs. Thread-safe, but for `open` and
/// `close`.
class DeviceParts {
public:
    /// Opens the registry and nothing else.
    explicit DeviceParts(const DeviceRoot &deviceRoot);

    const DeviceRoot root;
    const QString todayItemName;
    const QString todayItemKey;
    Registry registry;
    SettingsStore settings;
    CategoryListStore categoryStore;
    std::optional<FeedStore> store; ///< there until `close`
    NamedMutex dbMutex;             ///< "RSSMutex"

    /// Seeds the categories where there are none, and opens the database, which makes and seeds it
    /// on first use. Lists again what categories channels are in that no list has, as when a
    /// deletion was cut short: they would be out of sight. May take long. Gives back the string
    /// of what is to be told to the user, or 0: the screens work on what could be had. A registry
    /// that cannot be read is not told here, because the list of categories tells it.
    int open();

    /// Whether the registry and the database are still those that were opened, and not gone or
    /// replaced by others: what is written goes nowhere otherwise.
    bool isStillThere() const;

    /// Closes the database for good. It must not be in use.
    void close();

    /// The file to lock for a change of several steps, so that no process sees it half done, and
    /// how long to wait for it: as long as for the database.
    QString channelsLockPath() const { return root.filePath(u"\\run\\channels.lock"); }
    static constexpr std::chrono::seconds channelsTimeout{5};

private:
    FileIdentities files() const;
    bool listLostCategories();

    FileIdentities ownFiles_; // empty when the device could not be opened
};

} // namespace tidebrook
