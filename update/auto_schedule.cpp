#include "update/auto_schedule.h"

#include "store/settings_store.h"

#include <QRandomGenerator>

#include <array>

namespace tidebrook {

namespace {

using namespace std::chrono_literals;

constexpr QStringView lastRoundValue = u"LastAutoUpdate";
constexpr QStringView offsetValue = u"UpdateOffset";
constexpr quint32 hoursOfDay = 24;
constexpr std::array<std::chrono::seconds, 6> intervals{30min, 1h, 2h, 4h, 8h, 16h};

// A clock that is merely kept in step is not a clock that was changed.
constexpr std::chrono::milliseconds clockStep = 10s;

// The beginning of an hour of a day. Where summer time takes the hour away that is the next one's,
// and where the hour comes twice, the first.
QDateTime beginOfHour(const QDate &date, quint32 hour) {
    constexpr int wholeHour = 3600; // seconds
    const QTime time(static_cast<int>(hour), 0);
    const QDateTime begin(date, time);
    if (!begin.isValid())
        return QDateTime(date, time.addSecs(wholeHour)).toUTC();
    const QDateTime earlier = begin.toUTC().addSecs(-wholeHour);
    return earlier.toLocalTime().time() == time ? earlier : begin.toUTC();
}

QDateTime addTo(const QDateTime &moment, std::chrono::milliseconds time) {
    return moment.addMSecs(time.count());
}

QDateTime firstAfter(const QDateTime &moment, const AutoUpdateSettings &settings) {
    const QDate date = moment.toLocalTime().date();
    const QDateTime sameDay = addTo(beginOfHour(date, settings.hour), settings.offset);
    return sameDay > moment ? sameDay
                            : addTo(beginOfHour(date.addDays(1), settings.hour), settings.offset);
}

// The time from one round to the next; nothing when there are no rounds.
std::optional<std::chrono::seconds> roundPeriod(const AutoUpdateSettings &settings) {
    const bool isInterval = settings.mode == AutoUpdateSettings::Interval &&
                            settings.interval >= 1 && settings.interval <= intervals.size();
    if (isInterval)
        return intervals[settings.interval - 1];
    if (settings.isDaily() && settings.hour < hoursOfDay)
        return 24h;
    return std::nullopt;
}

std::optional<std::chrono::seconds> storedOffset(const std::optional<RegistryValue> &value) {
    const quint32 *number = value ? std::get_if<quint32>(&*value) : nullptr;
    if (!number || *number >= offsetSpan.count())
        return std::nullopt;
    return std::chrono::seconds(*number);
}

// Two programs that draw at the same time keep the same one.
std::chrono::seconds deviceOffset(Registry &registry) {
    const std::optional<RegistryValue> value = registry.read(programKey, offsetValue);
    if (const auto offset = storedOffset(value))
        return *offset;
    const RegistryValue drawn = static_cast<quint32>(drawOffset().count());
    if (value)
        registry.write(programKey, offsetValue, drawn);
    else
        registry.create(programKey, offsetValue, drawn);
    registry.flush();
    return storedOffset(registry.read(programKey, offsetValue)).value_or(0s);
}

} // namespace

std::chrono::seconds drawOffset() {
    const auto span = static_cast<quint32>(offsetSpan.count());
    return std::chrono::seconds(QRandomGenerator::system()->bounded(span));
}

AutoUpdateSettings AutoUpdateSettings::read(Registry &registry) {
    SettingsStore settings(registry);
    AutoUpdateSettings read;
    read.mode = settings.dword(programKey, u"UpdateMode");
    read.interval = settings.dword(programKey, u"UpdateInterval");
    read.hour = settings.dword(programKey, u"UpdateTime");
    read.onlyCradled = settings.dword(programKey, u"ACTOPTION") != 0;
    read.neverRoaming = settings.dword(programKey, u"NoRoaming") != 0;
    read.isCradled = settings.dword(hardwareStateKey, u"Cradled") == 1;
    if (read.isDaily())
        read.offset = deviceOffset(registry);
    read.isRoaming = (settings.dword(phoneStateKey, u"Status") & roamingBit) != 0;
    return read;
}

std::optional<QDateTime> nextRound(const AutoUpdateSettings &settings, const QDateTime &lastRound,
                                   const QDateTime &now) {
    const std::optional<std::chrono::seconds> period = roundPeriod(settings);
    if (!period)
        return std::nullopt;
    QDateTime next = lastRound.isValid() ? addTo(lastRound, *period) : now;
    if (settings.isDaily())
        next = firstAfter(lastRound.isValid() ? lastRound : now, settings);
    return next.isValid() ? std::optional(next) : std::nullopt; // the calendar has an end
}

// A number holds moments until the year 2106, so what is written is a text.
QDateTime storedLastRound(Registry &registry) {
    const std::optional<RegistryValue> value = registry.read(programKey, lastRoundValue);
    if (!value)
        return {};
    if (const quint32 *seconds = std::get_if<quint32>(&*value))
        return *seconds == 0 ? QDateTime() : QDateTime::fromSecsSinceEpoch(*seconds, Qt::UTC);
    bool isNumber = false;
    const qint64 seconds = std::get<QString>(*value).toLongLong(&isNumber);
    return isNumber ? QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC) : QDateTime();
}

QDateTime AutoSchedule::recordedRound() const {
    return unstored_.isValid() ? unstored_ : storedLastRound(registry_);
}

void AutoSchedule::store(const QDateTime &lastRound) {
    const QString seconds = QString::number(lastRound.toSecsSinceEpoch());
    const bool isStored = registry_.write(programKey, lastRoundValue, seconds) && registry_.flush();
    unstored_ = isStored ? QDateTime() : lastRound;
}

// The rest of an interval does not depend on the clock: when the clock is changed, the last round
// moves with it. A round at an hour of the day goes by the clock.
void AutoSchedule::followClock(const QDateTime &now, std::chrono::milliseconds uptime,
                               bool isInterval) {
    if (lastNow_.isValid()) {
        const std::chrono::milliseconds clock(lastNow_.msecsTo(now));
        const std::chrono::milliseconds step = clock - (uptime - lastUptime_);
        const QDateTime last = recordedRound();
        if (isInterval && last.isValid() && std::chrono::abs(step) > clockStep)
            store(addTo(last, step));
    }
    lastNow_ = now;
    lastUptime_ = uptime;
}

// A last round in the future was written before the clock was set back while no downloader ran. It
// must not delay the next one for years.
QDateTime AutoSchedule::lastRound(const QDateTime &now, const AutoUpdateSettings &settings) {
    QDateTime stored = recordedRound();
    const QDateTime latest = settings.isDaily() ? now.addDays(1) : now;
    // A first round at an hour of the day that has passed is not one that was missed.
    if (stored.isValid() ? stored <= latest : !settings.isDaily())
        return stored;
    store(now);
    return now;
}

// An hour of the day that has passed when it is chosen is not a round that was missed.
void AutoSchedule::beginAnewAt(const QDateTime &now, const AutoUpdateSettings &settings) {
    const bool isChosenNow = lastSettings_ && (lastSettings_->mode != settings.mode ||
                                               lastSettings_->hour != settings.hour);
    if (settings.isDaily() && isChosenNow)
        store(now);
    lastSettings_ = settings;
}

auto AutoSchedule::dueRound(const QDateTime &now, std::chrono::milliseconds uptime)
    -> std::optional<Round> {
    const AutoUpdateSettings settings = AutoUpdateSettings::read(registry_);
    if (unstored_.isValid())
        store(unstored_);
    beginAnewAt(now, settings);
    followClock(now, uptime, settings.mode == AutoUpdateSettings::Interval);
    const std::optional<std::chrono::seconds> period = roundPeriod(settings);
    const QDateTime last = period ? lastRound(now, settings) : QDateTime();
    next_ = nextRound(settings, last, now);
    if (!next_ || *next_ > now)
        return std::nullopt;
    // A round that a restart has broken off goes on, but not when another was due meanwhile.
    const QDateTime latest =
        settings.isDaily() ? firstAfter(now.addDays(-1), settings) : addTo(now, -*period);
    return Round{last.isValid() ? qMax(*next_, latest) : latest, settings.isDaily(),
                 settings.isBarred()};
}

} // namespace tidebrook
