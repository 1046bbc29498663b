#pragma once

#include "platform/sync/file_lock.h"
#include "subscriptions/device.h"
#include "update/refresh_job.h"

#include <QString>

#include <chrono>
#include <mutex>
#include <optional>

namespace tidebrook {

/// How a change of the subscriptions ended.
enum class ChangeEnd {
    Done,
    NameTaken,
    LinkRefused,      ///< the address cannot be stored
    NotReady,         ///< another process kept the lock, or the device is gone
    StoreFailed,      ///< the database; the store's error field may have the code
    CategoriesFailed, ///< the list of categories could not be read or changed
    AutoListFailed,   ///< the list of automatic updates could not be read or changed
};

/// What a user sees and changes of a channel.
struct ChannelProperties {
    QString category;
    QString name;
    QString link;
    bool isAutoUpdated = false;
};

/// A category's name as it is stored, of what a user has typed: without blanks at its ends and
/// without what the database drops, 39 characters at most.
QString categoryName(const QString &typed);
inline constexpr int categoryNameLimit = 39;

/// Whether this category has a channel of this name. Waits for the database.
bool ChannelExistsJob(FeedStore &store, const QString &name, const QString &category);

/// The categories and channels of a device and its list of automatic updates, for as long as this
/// lives locked against changes by other processes and threads. Each function is one whole change
/// of them: no process sees it half done, a channel is in a listed category at every moment, and
/// what a killed process leaves behind is made good by the same change or the list's next one.
///
/// Names are cut to 40 (category) and 50 (channel) characters. Unless a function says otherwise a
/// change that fails leaves everything as it was. The store's error field is cleared before each.
class LockedSubscriptions {
public:
    /// Waits for the lock, but no longer than `timeout`, if there is one. The device outlives this.
    explicit LockedSubscriptions(Device &device,
                                 std::optional<std::chrono::milliseconds> timeout = std::nullopt);

    bool isHeld() const { return lock_.isHeld(); }

    /// Adds a category at the end of the list.
    ChangeEnd addCategory(const QString &category);

    /// Renames a category with all its channels and their articles. A name that is listed and holds
    /// no channels is free: it may be left of a renaming that was cut short. `CategoriesFailed` may
    /// also mean that the empty category of the old name is still listed.
    ChangeEnd RenameCategory(const QString &old, const QString &name);

    /// Deletes a category and its channels with their articles, also on the list of automatic
    /// updates. They are gone also when only that list failed.
    ChangeEnd deleteCategory(const QString &category);

    /// Adds a channel, and before that lists its category where it is not listed, which stays so
    /// when the channel is refused. Where its name is taken it may get another, as
    /// `FeedStore::InsertChannel` gives it; `storedName` gets the stored name.
    ChangeEnd addChannel(const ChannelRecord &channel, QString *storedName = nullptr);

    /// The same without a given name: as "New Channel" or, while the category has one of that name,
    /// "New Channel 0" and so on.
    ChangeEnd addUnnamedChannel(const QString &category, const QString &link);

    /// Renames a channel, which the list of automatic updates follows. The name of another channel
    /// is taken.
    ChangeEnd renameChannel(const QString &old, const QString &name);

    /// Moves a channel, and lists the category where it is not listed.
    ChangeEnd moveChannel(const QString &channel, const QString &category);

    ChangeEnd relinkChannel(const QString &channel, const QString &link);

    /// Deletes a channel with its articles, also on the list of automatic updates. It is gone also
    /// when only that list failed.
    ChangeEnd deleteChannel(const QString &channel);

    /// Puts a channel on the list of automatic updates, unless it is there, or takes it off.
    ChangeEnd setAutomatic(const RefreshJob &channel, bool isAutomatic);

    /// Puts those of the channels on it that are not there. `added` gets how many these were.
    ChangeEnd addAutomatic(const QList<RefreshJob> &channels, qsizetype &added);

    /// Makes what differs: moves, relinks and renames the channel, and sets whether it is
    /// automatic, with its old address. A part that fails keeps no other from being done. A taken
    /// name is none of the failures: the channel keeps its old one.
    ChangeEnd changeChannel(const ChannelProperties &from, const ChannelProperties &to);

private:
    bool begin();
    std::optional<bool> holdsChannels(const QString &category);
    ChangeEnd move(const QString &channel, const QString &category);
    ChangeEnd relink(const QString &channel, const QString &link);
    ChangeEnd rename(const QString &old, const QString &name);
    ChangeEnd automate(const RefreshJob &channel, bool isAutomatic);
    ChangeEnd endDeletion(bool isDeleted);
    bool canUnlist(const QString &category);
    ChangeEnd failStore();

    Device &device_;
    const FileLock lock_;
    const std::unique_lock<std::recursive_mutex> guard_;
};

} // namespace tidebrook
