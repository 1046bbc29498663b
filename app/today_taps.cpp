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
        [&state](const std::optional<Headline> &tap) {
            if (tap)
                state.tap = tap;
            if (state.tap)
                state.stack.summon();
        });
}

bool followTodayTap(TappedHeadline &headline) {
    const auto tap = std::exchange(headline.tap, std::nullopt);
    if (tap) {
        headline.todayCategory = tap->category;
        headline.todayChannel = tap->channel;
        headline.todayTitle = tap->title;
    }
    return tap.has_value();
}

void forgetTodayTap(TappedHeadline &headline) {
    headline.todayCategory.clear();
    headline.todayChannel.clear();
    headline.todayTitle.clear();
}

} // namespace tidebrook
