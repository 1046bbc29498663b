#include "store/settings_store.h"
#include "support/test_device.h"
#include "update/auto_schedule.h"

#include <gtest/gtest.h>

#include <ctime>
#include <functional>
#include <map>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

/// A device that lives through days in minutes' steps; what it meets is told by the minute.
class Day {
public:
    explicit Day(const QDateTime &start) : clock_(start) {}

    void set(QStringView name, quint32 value) { settings_.setDword(programKey, name, value); }
    void set(QStringView key, QStringView name, quint32 value) {
        settings_.setDword(key, name, value);
    }
    void moveClock(std::chrono::seconds step) { clock_ = clock_.addSecs(step.count()); }
    void sleepUntil(int minute) { wakeUp_ = minute; }
    void restart() { schedule_ = std::make_unique<AutoSchedule>(*device_.registry); }

    /// The rounds that were run, each by how long after the start: "HH:MM".
    QString live(int minutes, std::map<int, std::function<void(Day &)>> events) {
        QStringList rounds;
        for (int minute = 0; minute < minutes; ++minute, moveClock(1min)) {
            if (events.contains(minute))
                events[minute](*this);
            if (minute < wakeUp_)
                continue;
            const auto due = schedule_->dueRound(clock_, std::chrono::minutes(minute));
            if (!due)
                continue;
            schedule_->endRound(clock_);
            if (!due->isBarred)
                rounds.append(u"%1:%2"_s.arg(minute / 60, 2, 10, QChar(u'0'))
                                  .arg(minute % 60, 2, 10, QChar(u'0')));
        }
        return rounds.join(u' ');
    }

private:
    TestDevice device_;
    SettingsStore settings_{*device_.registry};
    std::unique_ptr<AutoSchedule> schedule_ = std::make_unique<AutoSchedule>(*device_.registry);
    QDateTime clock_;
    int wakeUp_ = 0;
};

struct DayCase {
    const char *what;
    std::map<int, std::function<void(Day &)>> events; // by the minute
    const char16_t *rounds;
    const char16_t *date = u"2026-06-10";
    int hours = 24;
};

void PrintTo(const DayCase &day, std::ostream *out) { *out << day.what; }

constexpr std::chrono::hours year = 365 * 24h;

std::function<void(Day &)> every(quint32 interval) {
    return [interval](Day &day) {
        day.set(u"UpdateMode", 1);
        day.set(u"UpdateInterval", interval);
    };
}

std::function<void(Day &)> at(quint32 hour) {
    return [hour](Day &day) {
        day.set(u"UpdateMode", 2);
        day.set(u"UpdateTime", hour);
    };
}

std::function<void(Day &)> clock(std::chrono::seconds step) {
    return [step](Day &day) { day.moveClock(step); };
}

std::function<void(Day &)> asleepUntil(int minute) {
    return [minute](Day &day) { day.sleepUntil(minute); };
}

void cradledOnly(Day &day) {
    every(4)(day);
    day.set(u"ACTOPTION", 1);
}

void restarted(Day &day) { day.restart(); }

class DayTest : public testing::TestWithParam<DayCase> {
protected:
    // A zone that needs no zone files, with summer time.
    void SetUp() override { setZone("CET-1CEST,M3.5.0,M10.5.0/3"); }
    void TearDown() override { setZone(zone_.isNull() ? nullptr : zone_.constData()); }

private:
    static void setZone(const char *zone) {
        if (zone)
            setenv("TZ", zone, 1);
        else
            unsetenv("TZ");
        tzset();
    }

    const QByteArray zone_ = qgetenv("TZ");
};

TEST_P(DayTest, HasTheRoundsThatAreDue) {
    const DayCase &day = GetParam();
    const QDateTime start(QDate::fromString(QString::fromUtf16(day.date), Qt::ISODate),
                          QTime(0, 0));
    EXPECT_EQ(Day(start.toUTC()).live(day.hours * 60, day.events), QString::fromUtf16(day.rounds));
}

const DayCase days[] = {
    {"Never", {{0, [](Day &day) { day.set(u"UpdateInterval", 1); }}}, u""},
    {"EveryHalfHour", {{0, every(1)}}, u"00:00 00:30 01:00 01:30", u"2026-06-10", 2},
    {"EveryEightHours", {{0, every(5)}}, u"00:00 08:00 16:00"},
    {"EverySixteenHours", {{0, every(6)}}, u"00:00 16:00"},
    {"NoSuchInterval", {{0, every(0)}, {600, every(7)}, {900, every(0xFFFFFFFF)}}, u""},
    {"NoSuchHour", {{0, at(24)}, {600, at(0xFFFFFFFF)}}, u""},
    {"NoSuchMode",
     {{0,
       [](Day &day) {
           every(1)(day);
           day.set(u"UpdateMode", 3);
       }}},
     u""},
    {"DailyAtSix", {{0, at(6)}}, u"06:00 30:00", u"2026-06-10", 48},
    {"DailySetBehindTheHour", {{600, at(6)}}, u"30:00", u"2026-06-10", 48},
    {"DailyChosenAfterTheHour",
     {{0, every(1)}, {1, [](Day &day) { day.set(u"UpdateMode", 0); }}, {600, at(6)}},
     u"00:00 30:00",
     u"2026-06-10",
     48},
    {"DailyAtMidnight", {{60, at(0)}}, u"24:00", u"2026-06-10", 36},
    {"ShorterIntervalChosen", {{0, every(5)}, {600, every(4)}}, u"00:00 08:00 12:00 16:00 20:00"},
    {"SwitchedOffAndOn",
     {{0, every(3)}, {150, [](Day &day) { day.set(u"UpdateMode", 0); }}, {450, every(3)}},
     u"00:00 02:00 07:30 09:30",
     u"2026-06-10",
     11},
    {"OnlyInTheCradle",
     {{0, cradledOnly}, {600, [](Day &day) { day.set(hardwareStateKey, u"Cradled", 1); }}},
     u"12:00 16:00 20:00"},
    {"NeverWhileRoaming",
     {{0,
       [](Day &day) {
           every(4)(day);
           day.set(u"NoRoaming", 1);
       }},
      {300, [](Day &day) { day.set(phoneStateKey, u"Status", 0x20000200); }},
      {500, [](Day &day) { day.set(phoneStateKey, u"Status", 0x2003C001); }}},
     u"00:00 04:00 12:00 16:00 20:00"},
    {"AsleepOverTheHour", {{0, at(6)}, {330, asleepUntil(540)}}, u"09:00 30:00", u"2026-06-10", 48},
    {"AsleepForDays",
     {{0, at(6)}, {400, asleepUntil(6000)}},
     u"06:00 100:00 102:00",
     u"2026-06-10",
     110},
    {"AsleepOverIntervals",
     {{0, every(2)}, {70, asleepUntil(460)}},
     u"00:00 01:00 07:40 08:40",
     u"2026-06-10",
     9},
    {"Restarted",
     {{0, every(3)}, {30, restarted}, {119, restarted}, {121, restarted}},
     u"00:00 02:00 04:00",
     u"2026-06-10",
     5},
    {"RestartedDaily", {{0, at(6)}, {359, restarted}, {361, restarted}}, u"06:00"},
    {"IntervalClockBackAYear",
     {{0, every(4)}, {630, clock(-year)}},
     u"00:00 04:00 08:00 12:00 "
     u"16:00 20:00"},
    {"IntervalClockForwardAYear",
     {{0, every(4)}, {630, clock(year)}},
     u"00:00 04:00 08:00 12:00 "
     u"16:00 20:00"},
    {"IntervalClockBackWhileAway",
     {{0, every(4)},
      {250,
       [](Day &day) {
           day.restart();
           day.moveClock(-year);
       }}},
     u"00:00 04:00 08:10 12:10",
     u"2026-06-10",
     13},
    {"DailyClockBackAYear", {{0, at(6)}, {600, clock(-year)}}, u"06:00 30:00", u"2026-06-10", 48},
    {"DailyClockForwardAYear",
     {{0, at(6)}, {300, clock(year)}},
     u"05:00 06:00 30:00",
     u"2026-06-10",
     48},
    {"DailyClockBackOverTheHour",
     {{0, at(6)}, {480, clock(-3h)}},
     u"06:00 33:00",
     u"2026-06-10",
     48},
    {"DailyClockForwardOverTheHour",
     {{0, at(6)}, {300, clock(3h)}},
     u"05:00 27:00",
     u"2026-06-10",
     48},
    {"IntervalLongBeyond2106", {{0, every(5)}}, u"00:00 08:00 16:00", u"9999-12-31"},
    {"DailyBeyond2106", {{0, at(6)}}, u"06:00 30:00", u"2250-06-10", 48},
    {"IntervalBefore1970", {{0, every(5)}}, u"00:00 08:00 16:00", u"1901-01-01"},
    {"DailyBefore1970", {{0, at(6)}}, u"06:00 30:00", u"1969-12-31", 48},
    {"IntervalClockToAndFro",
     {{0, every(4)},
      {100, clock(100 * year)},
      {200, clock(-250 * year)},
      {300, clock(9000 * year)}},
     u"00:00 04:00 08:00 12:00 16:00 20:00"},
    {"DailyClockToAndFro",
     {{0, at(6)}, {400, clock(100 * year)}, {500, clock(-250 * year)}, {600, clock(9000 * year)}},
     u"06:00 06:40 10:00"},
    {"HourThatSummerTimeTakes", {{0, at(2)}}, u"02:00 25:00", u"2026-03-29", 30},
    {"HourThatWinterTimeDoubles", {{0, at(2)}}, u"02:00 27:00", u"2026-10-25", 30},
};

INSTANTIATE_TEST_SUITE_P(All, DayTest, testing::ValuesIn(days),
                         [](const auto &test) { return std::string(test.param.what); });

TEST(AutoSchedule, ARegistryThatTakesNoNoteDoesNotDoubleARound) {
    TestDevice device;
    SettingsStore settings(*device.registry);
    settings.setDword(programKey, u"UpdateMode", 1);
    settings.setDword(programKey, u"UpdateInterval", 1);
    AutoSchedule schedule(*device.registry);
    const QDateTime now = QDateTime::currentDateTimeUtc();
    ASSERT_TRUE(schedule.dueRound(now, 0min));
    {
        Registry other(device.root);
        const Registry::Batch lock(other);
        ASSERT_TRUE(lock.isOpen());
        schedule.endRound(now);
    }
    EXPECT_FALSE(schedule.dueRound(now.addSecs(60), 1min));
    EXPECT_FALSE(AutoSchedule(*device.registry).dueRound(now.addSecs(120), 2min));
    EXPECT_TRUE(schedule.dueRound(now.addSecs(1800), 30min));
}

} // namespace
} // namespace tidebrook
