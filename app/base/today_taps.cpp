#include "app/base/today_taps.h"

#include <utility>

namespace tidebrook {

void lookForTodayTap(AppState &state, QObject *receiver,
                     std::function<void(const TodayTap &)> then) {
    state.settings.ask(
        receiver,
        [&device = state.device] {
            return takeTodayTap(device.root, device.registry, device.todayItemKey);
        },
        [then = std::move(then)](const std::optional<TodayTap> &tap) {
            if (tap)
                then(*tap);
        });
}

void leadTo(AppState &state, const TodayTap &tap) {
    state.todayCategory = tap.category;
    state.todayChannel = tap.channel;
    state.todayTitle = tap.title;
}

void forgetTodayTap(AppState &state) {
    state.todayCategory.clear();
    state.todayChannel.clear();
    state.todayTitle.clear();
}

} // namespace tidebrook
