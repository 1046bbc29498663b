#include "app/today_taps.h"

#include "kit/screen_stack.h"

#include <utility>

namespace tidebrook {

void lookForTodayTap(AppState &state) {
    state.settings.ask(
        &state.stack,
        [&device = state.device] {
            return takeTodayTap(device.root, device.registry, device.todayItemKey);
        },
        [&state](const std::optional<TodayTap> &tap) {
            if (tap)
                state.tap = tap;
            if (state.tap)
                state.stack.summon();
        });
}

bool followTodayTap(AppState &state) {
    const auto tap = std::exchange(state.tap, std::nullopt);
    if (!tap)
        return false;
    state.todayCategory = tap->category;
    state.todayChannel = tap->channel;
    state.todayTitle = tap->title;
    return true;
}

void forgetTodayTap(AppState &state) {
    state.todayCategory.clear();
    state.todayChannel.clear();
    state.todayTitle.clear();
}

} // namespace tidebrook
