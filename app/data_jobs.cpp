#include "app/data_jobs.h"

#include "app/messages.h"
#include "kit/screen_stack.h"
#include "res/strings.h"
#include "store/error_codes.h"

namespace tidebrook {

namespace {

constexpr int done = 0;

// The string that says what failed: the database, or else a file.
int messageOf(Device &device, ChangeEnd end) {
    switch (end) {
    case ChangeEnd::Done:
        return done;
    case ChangeEnd::NameTaken:
        return nameExistsString;
    case ChangeEnd::LinkRefused:
        return wrongUrlString;
    default:
        const quint32 code = device.store.error();
        SetLastErrorCode(device.registry, code != 0 ? code : quint32{FileNotWritten});
        return code != 0 ? databaseProblemString : fileProblemString;
    }
}

} // namespace

bool startChange(AppState &state, QObject *receiver,
                 std::function<ChangeEnd(LockedSubscriptions &)> change, JobEnd end) {
    return state.changes.ask(
        receiver,
        [&device = state.device, change = std::move(change)] {
            LockedSubscriptions subscriptions(device, channelsLockTimeout);
            return messageOf(device, change(subscriptions));
        },
        std::move(end));
}

bool AddChannelJob(AppState &state, QObject *receiver, const ChannelRecord &record, JobEnd end) {
    const auto change = [record](LockedSubscriptions &subscriptions) {
        return subscriptions.addChannel(record);
    };
    return startChange(state, receiver, change, std::move(end));
}

std::optional<QStringList> listedCategories(Device &device) {
    auto names = device.categoryStore.listedCategories();
    if (!names)
        recordProblem(device, fileProblemString);
    return names;
}

void storeSetting(AppState &state, QStringView name, quint32 value) {
    const bool isStarted = state.settings.ask(
        &state.stack,
        [&device = state.device, name, value] {
            const bool isStored = device.settings.RegWriteDword(programKey, name, value) ||
                                  device.settings.dword(programKey, name) == value;
            return isStored && device.isStillThere() ? done
                                                     : recordProblem(device, fileProblemString);
        },
        [&state](int messageId) {
            if (messageId != done)
                ShowError(state, messageId);
        });
    if (!isStarted)
        tellProblem(state, memoryProblemString);
}

} // namespace tidebrook
