#pragma once

#include "app/app_state.h"

#include <functional>
#include <optional>

namespace tidebrook {

/// What came of a job: 0 when it is done, else the string that tells the user why it is not. It is
/// called on the user-interface thread.
using JobEnd = std::function<void(int messageId)>;

// The jobs that change channels and categories. Each is started, not waited for, and done in the
// order in which it was started; one that is under way when the program ends is done before that.
// Names are cut to 40 (category) and 50 (channel) characters. True when the job was started;
// otherwise `end` is not called. A failure leaves what was there before as it was, and its code in
// "ERRORNO", except that a name or an address that is refused has none.

/// Renames a category, with all its channels and articles: it is in the list of categories under
/// one of its names at every moment, with its channels.
bool startRenameCategory(AppState &state, QObject *receiver, const QString &newName,
                         const QString &oldName, JobEnd end);

/// Takes a category off the list and deletes its channels, with all their articles, which also
/// leave the list of automatic updates. When they cannot be deleted the category is put on the list
/// again.
bool startDeleteCategory(AppState &state, QObject *receiver, const QString &category, JobEnd end);

/// Adds a channel. Where its name is taken it may get another, as `FeedStore::InsertChannel` tells.
bool AddChannelJob(AppState &state, QObject *receiver, const ChannelRecord &record, JobEnd end);

/// Adds a channel without a given name: as "New Channel" or, while its category has one of
/// that name, "New Channel 0" and so on. The record's own name does not count.
bool startAddUnnamedChannel(AppState &state, QObject *receiver, const ChannelRecord &record,
                            JobEnd end);

/// What the user sees and changes of a channel.
struct ChannelProperties {
    QString category;
    QString name;
    QString link;
    bool isAutoUpdated = false;
};

/// Makes what differs: moves the channel, gives it another address and another name, and puts it
/// on the list of automatic updates, with its old address, or takes it off. A part that fails does
/// not keep the others from being done. A name that another channel has is not taken, which nobody
/// is told. The list of automatic updates follows a new name.
bool startChangeChannel(AppState &state, QObject *receiver, const ChannelProperties &from,
                        const ChannelProperties &to, JobEnd end);

/// Deletes a channel with all its articles, and takes it off the list of automatic updates.
bool startDeleteChannel(AppState &state, QObject *receiver, const QString &channel, JobEnd end);

/// Whether this category has a channel of this name. Waits for the database.
bool ChannelExistsJob(DeviceParts &device, const QString &name, const QString &category);

/// Reads the list of categories; nothing when it cannot be read, and "ERRORNO" then tells why.
/// Waits for the registry.
std::optional<QStringList> listedCategories(DeviceParts &device);

/// Stores a value of the program's settings, soon. The user is told when what is stored then is
/// another. `name` outlives the program's work.
void storeSetting(AppState &state, QStringView name, quint32 value);

} // namespace tidebrook
