#include "update/round_news.h"

#include "platform/sync/named_event.h"

namespace tidebrook {

namespace {

constexpr QStringView articlesValue = u"NewArticles";
constexpr QStringView channelsValue = u"NewChannels";

} // namespace

bool publishRoundNews(const DeviceRoot &device, SettingsStore &settings, QStringView todayItemKey,
                      const RoundNews &news) {
    if (news.articles == 0)
        return true;
    {
        Registry::Batch batch(settings.registry());
        if (!batch.isOpen() || !settings.setDword(todayItemKey, articlesValue, news.articles) ||
            !settings.setDword(todayItemKey, channelsValue, news.channels) || !batch.commit())
            return false;
    }
    return NamedEvent(device, newArticlesEvent, NamedEvent::Reset::Auto).set();
}

// Numbers of two rounds are not shown for long: the event of the later one is set behind them.
std::optional<RoundNews> readRoundNews(SettingsStore &settings, QStringView todayItemKey) {
    const RoundNews news{settings.dword(todayItemKey, articlesValue),
                         settings.dword(todayItemKey, channelsValue)};
    return news.articles == 0 ? std::nullopt : std::optional(news);
}

} // namespace tidebrook
