#pragma once

#include "app/app_state.h"
#include "subscriptions/locked_subscriptions.h"

#include <chrono>
#include <functional>
#include <optional>

namespace tidebrook {

/// What came of a job: 0 when it is done, else the string that says why it is not. It is called on
/// the user-interface thread.
using JobEnd = std::function<void(int messageId)>;

/// How long a program with screens waits for the lock of the channels: as long as for the database.
inline constexpr std::chrono::seconds channelsLockTimeout{5};

/// Starts a change of the categories and channels and does not wait for it. Changes are made in the
/// order in which they were started; one that is under way when the program ends is finished
/// before. True when the change was started; otherwise `end` is not called. After a failure
/// "ERRORNO" has its code, except that a name or an address that is refused has none.
bool startChange(AppState &state, QObject *receiver,
                 std::function<ChangeEnd(LockedSubscriptions &)> change, JobEnd end);

/// Adds a channel. Where its name is taken it may get another.
bool AddChannelJob(AppState &state, QObject *receiver, const ChannelRecord &record, JobEnd end);

/// Reads the list of categories; nothing when it cannot be read, and "ERRORNO" then has the code.
/// Waits for the registry.
std::optional<QStringList> listedCategories(Device &device);

/// Stores a value of the program's settings, soon. A box reports it when another value is stored
/// then, or when the device is not there any more. `name` outlives the program's work.
void storeSetting(AppState &state, QStringView name, quint32 value);

} // namespace tidebrook
