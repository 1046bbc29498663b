#include "today/today_state.h"

#include "platform/base/text.h"
#include "res/strings.h"
#include "store/settings_store.h"

#include <array>

namespace tidebrook {

namespace {

using namespace std::chrono_literals;

constexpr int headlineLimit = 200;
constexpr std::array<std::chrono::milliseconds, 3> steps{12s, 6s, 3s}; // slow, normal, fast
constexpr quint32 usualSpeed = 1;

void readSettings(const DeviceRoot &device, TodayState &state) {
    Registry registry(device, Registry::Access::ReadOnly);
    const auto values = registry.values(ownTodayKey());
    if (!values) {
        state.news = TodayState::News::Unreadable;
        return;
    }
    SettingsStore settings(registry);
    const QString key = ownTodayKey();
    const quint32 speed = settings.dword(key, u"TodayTimer");
    state.step = steps.at(speed < steps.size() ? speed : usualSpeed);
    state.isEnabled = settings.dword(key, u"Enabled") == 1;
    state.notifies = settings.dword(key, u"Notify") == 1;
    state.total = settings.dword(key, u"UnreadItems");
}

void readNews(const DeviceRoot &device, TodayState &state) {
    const std::optional<Headlines> found = readHeadlines(device, headlineLimit);
    if (!found) {
        state.news = TodayState::News::Unreadable;
        return;
    }
    state.headlines = found->unread;
    if (!found->hasChannels)
        state.news = TodayState::News::NoChannel;
    else
        state.news =
            found->unread.isEmpty() ? TodayState::News::NothingUnread : TodayState::News::Unread;
}

} // namespace

QString ownTodayKey() { return todayItemKey(resourceString(todayItemNameString)); }

TodayState readToday(const DeviceRoot &device, const TodayState &last) {
    if (!device.isDevice()) {
        TodayState none;
        none.news = TodayState::News::NoDevice;
        return none;
    }
    TodayState state = last;
    state.news = TodayState::News::NothingUnread;
    readSettings(device, state);
    if (state.isEnabled && state.news != TodayState::News::Unreadable)
        readNews(device, state);
    return state;
}

QString shownLine(const QString &text) { return withoutHidden(text).simplified(); }

QString shownHeadline(const Headline &headline) {
    return shownLine(headline.channel) + u": " + shownLine(headline.title);
}

} // namespace tidebrook
