#include "today/today_news.h"

#include "platform/sync/named_event.h"
#include "platform/sync/pause.h"
#include "update/round_news.h"
#include "update/update_settings.h"

#include <QSocketNotifier>

#include <algorithm>

namespace tidebrook {

namespace {

constexpr int shortestPause = 20; // ms
constexpr int soon = 300;
constexpr int later = 1500;
constexpr int firstRetry = 1000;
constexpr int mostDoublings = 6;

// What another process locks for a moment is no news.
constexpr int toleratedFailures = 2;

int pauseLength(int milliseconds) { return std::max(scaledPause(milliseconds), shortestPause); }

} // namespace

/// An event that the item waits for.
struct TodayNews::Watched {
    template <class Slot>
    Watched(const DeviceRoot &device, QStringView name, TodayNews *news, Slot slot)
        : event(device, name, NamedEvent::Reset::Auto) {
        if (!event.isOpen())
            return;
        notifier = std::make_unique<QSocketNotifier>(event.descriptor(), QSocketNotifier::Read);
        connect(notifier.get(), &QSocketNotifier::activated, news, [this, news, slot] {
            if (event.test())
                (news->*slot)();
        });
    }

    NamedEvent event;
    std::unique_ptr<QSocketNotifier> notifier; // ends before the descriptor is closed
};

TodayNews::TodayNews(const DeviceRoot &device) : device_(device), watch_(device) {
    for (QTimer *timer : {&soon_, &later_}) {
        timer->setSingleShot(true);
        timer->callOnTimeout(this, &TodayNews::refresh);
    }
    connect(&watch_, &DeviceWatch::changed, this, &TodayNews::note);
    connect(&watch_, &DeviceWatch::moved, this, [this] {
        takeUpDevice();
        refresh();
    });
    watch_.setScope(DeviceWatch::Scope::Content);
    watchEvents();
    refresh();
}

TodayNews::~TodayNews() = default;

void TodayNews::setShown(bool isShown) {
    if (std::exchange(isShown_, isShown) == isShown)
        return;
    watch_.setScope(isShown ? DeviceWatch::Scope::Content : DeviceWatch::Scope::Place);
    soon_.stop();
    later_.stop();
    if (isShown)
        refresh();
}

void TodayNews::takeUpDevice() {
    watchEvents();
    Q_EMIT moved();
}

void TodayNews::watchEvents() {
    settings_.reset();
    arrivals_.reset();
    if (device_.isDevice())
        settings_ = std::make_unique<Watched>(device_, todayItemsEvent, this, &TodayNews::refresh);
    watchArrivals();
}

void TodayNews::watchArrivals() {
    if (!state_.isEnabled || !state_.notifies)
        arrivals_.reset();
    else if (!arrivals_ && device_.isDevice())
        arrivals_ =
            std::make_unique<Watched>(device_, newArticlesEvent, this, &TodayNews::readArrivals);
}

void TodayNews::note() {
    if (!soon_.isActive())
        soon_.start(pauseLength(soon));
    later_.start(pauseLength(later));
}

void TodayNews::refresh() {
    if (std::exchange(isReading_, true)) {
        isDue_ = true;
        return;
    }
    const bool isBegun = tasks_.ask(
        this, [device = device_, last = state_] { return readToday(device, last); },
        [this](const TodayState &state) { take(state); });
    if (!isBegun)
        isReading_ = false;
}

void TodayNews::take(const TodayState &state) {
    isReading_ = false;
    if (!settings_ && device_.isDevice())
        takeUpDevice(); // a device that is copied is none when its folder appears
    const bool isFailure = state.news == TodayState::News::Unreadable;
    failures_ = isFailure ? failures_ + 1 : 0;
    if (isFailure && isShown_)
        later_.start(pauseLength(firstRetry << std::min(failures_ - 1, mostDoublings)));
    if ((!isFailure || failures_ > toleratedFailures) && !(isKnown_ && state == state_)) {
        isKnown_ = true;
        state_ = state;
        watchArrivals();
        Q_EMIT changed();
    }
    if (std::exchange(isDue_, false))
        refresh();
}

void TodayNews::readArrivals() {
    tasks_.ask(
        this,
        [device = device_] {
            Registry registry(device, Registry::Access::ReadOnly);
            SettingsStore settings(registry);
            return readRoundNews(settings, ownTodayKey());
        },
        [this](const std::optional<RoundNews> &news) {
            if (news)
                Q_EMIT arrived(news->articles, news->channels);
        });
}

} // namespace tidebrook

#include "moc_today_news.cpp"
