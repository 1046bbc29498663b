#include "app/base/today_taps.h"

#include "update/today_tap.h"

namespace tidebrook {

void lookForTodayTap(AppState &state, QObject *receiver, std::function<void()> then) {
    state.settings.ask(
        receiver,
        [&device = state.device] {
            return takeTodayTap(device.root, device.registry, device.todayItemKey);
        },
        [&state, then = std::move(then)](const std::optional<TodayTap> &tap) {
            if (!tap)
                return;
            state.todayCategory = tap->category;
            state.todayChannel = tap->channel;
            state.todayTitle = tap->title;
            then();
        });
}

void forgetTodayTap(AppState &state) {
    state.todayCategory.clear();
    state.todayChannel.clear();
    state.todayTitle.clear();
}

} // namespace tidebrook
