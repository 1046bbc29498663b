#include "store/settings_store.h"
#include "test_device/test_device.h"
#include "update/auto_schedule.h"

#include <QSet>

#include <gtest/gtest.h>

#include <ctime>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

/// A device that lives through days in minutes' steps.
class Day {
public:
    explicit Day(const QDateTime &start) : clock_(start) { meet(u"UpdateOffset"_s, 0); }

    /// The rounds that were run, each by how long after the start: "HH:MM".
    QString live(int minutes, const QStringList &events) {
        QStringList rounds;
        for (int minute = 0; minute < minutes; ++minute, clock_ = clock_.addSecs(60)) {
            for (const QString &event : events) {
                if (event.section(u' ', 0, 0).toInt() == minute)
                    meet(event.section(u' ', 1, 1), event.section(u' ', 2).toLongLong());
            }
            if (minute < wakeUp_)
                continue;
            const auto due = schedule_->dueRound(clock_, std::chrono::minutes(minute));
            if (!due || due->isBarred)
                continue;
            schedule_->endRound(clock_);
            rounds.append(u"%1:%2"_s.arg(minute / 60, 2, 10, QChar(u'0'))
                              .arg(minute % 60, 2, 10, QChar(u'0')));
        }
        return rounds.join(u' ');
    }

private:
    void meet(const QString &what, qint64 value) {
        if (what == u"every" || what == u"at") {
            meet(u"UpdateMode"_s, what == u"every" ? 1 : 2);
            meet(what == u"every" ? u"UpdateInterval"_s : u"UpdateTime"_s, value);
        } else if (what == u"hours" || what == u"days") {
            clock_ = clock_.addSecs(value * (what == u"hours" ? 3600 : 24 * 3600));
        } else if (what == u"asleep") {
            wakeUp_ = value;
        } else if (what == u"restart") {
            schedule_ = std::make_unique<AutoSchedule>(*device_.registry);
        } else {
            const QStringView key = what == u"Cradled"  ? hardwareStateKey
                                    : what == u"Status" ? phoneStateKey
                                                        : programKey;
            settings_.setDword(key, what, static_cast<quint32>(value));
        }
    }

    TestDevice device_;
    SettingsStore settings_{*device_.registry};
    std::unique_ptr<AutoSchedule> schedule_ = std::make_unique<AutoSchedule>(*device_.registry);
    QDateTime clock_;
    qint64 wakeUp_ = 0;
};

struct DayCase {
    const char *what;
    // By the minute: an interval or hour chosen, a value set, the clock moved by hours or days, the
    // device asleep until a minute, or the service restarted.
    const char *events;
    const char *rounds;
    int hours = 24;
    const char *date = "2026-06-10";
};

const DayCase days[] = {
    {"Never", "0 UpdateInterval 1", ""},
    {"EverySixteenHours", "0 every 6", "00:00 16:00"},
    {"NoSuchInterval", "0 every 0; 600 every 7; 900 every 4294967295", ""},
    {"NoSuchHour", "0 at 24; 600 at 4294967295", ""},
    {"NoSuchMode", "0 every 1; 0 UpdateMode 3", ""},
    {"DailyAtAMomentOfItsOwn", "0 at 6; 0 UpdateOffset 540; 365 restart", "06:09 30:09", 48},
    {"DailyChosenBeforeItsMoment", "0 UpdateOffset 540; 365 at 6; 366 restart", "06:09", 24},
    {"DailyChosenAfterTheHour", "0 every 1; 1 UpdateMode 0; 600 at 6", "00:00 30:00", 48},
    {"DailyAtMidnight", "60 at 0", "24:00", 36},
    {"ShorterIntervalChosen", "0 every 5; 600 every 4", "00:00 08:00 12:00 16:00 20:00"},
    {"SwitchedOffAndOn", "0 every 3; 150 UpdateMode 0; 450 every 3", "00:00 02:00 07:30 09:30", 11},
    {"BarredForDaysAndMadeUpOnce", "0 at 6; 0 ACTOPTION 1; 3300 Cradled 1", "55:00 78:00", 80},
    {"BarredAndSwitchedOff", "0 at 6; 0 ACTOPTION 1; 400 UpdateMode 0; 500 Cradled 1; 600 at 6",
     "30:00", 48},
    {"BarredAndRestarted", "0 at 6; 0 ACTOPTION 1; 400 restart; 500 Cradled 1", "08:20 30:00", 48},
    {"NeverWhileRoaming", "0 every 4; 0 NoRoaming 1; 300 Status 536871424; 500 Status 537116673",
     "00:00 04:00 08:20 12:20 16:20 20:20"},
    {"AsleepForDays", "0 at 6; 400 asleep 6000", "06:00 100:00 102:00", 110},
    {"AsleepOverIntervals", "0 every 2; 70 asleep 460", "00:00 01:00 07:40 08:40", 9},
    {"Restarted", "0 every 3; 30 restart; 119 restart; 121 restart", "00:00 02:00 04:00", 5},
    {"RestartedDaily", "0 at 6; 359 restart; 361 restart", "06:00"},
    {"IntervalClockBackWhileAway", "0 every 4; 250 restart; 250 days -365",
     "00:00 04:00 08:10 12:10", 13},
    {"DailyClockBackAYear", "0 at 6; 600 days -365", "06:00 30:00", 48},
    {"DailyClockForwardAYear", "0 at 6; 300 days 365", "05:00 06:00 30:00", 48},
    {"DailyClockBackOverTheHour", "0 at 6; 480 hours -3", "06:00 33:00", 48},
    {"DailyClockForwardOverTheHour", "0 at 6; 300 hours 3", "05:00 27:00", 48},
    {"DailyBeyond2106", "0 at 6", "06:00 30:00", 48, "2250-06-10"},
    {"IntervalBefore1970", "0 every 5", "00:00 08:00 16:00", 24, "1901-01-01"},
    {"IntervalClockToAndFro", "0 every 4; 100 days 36500; 200 days -91250; 300 days 3285000",
     "00:00 04:00 08:00 12:00 16:00 20:00"},
    {"DailyClockToAndFro", "0 at 6; 400 days 36500; 500 days -91250; 600 days 3285000",
     "06:00 06:40 10:00"},
    {"HourThatSummerTimeTakes", "0 at 2", "02:00 25:00", 30, "2026-03-29"},
    {"HourThatWinterTimeDoubles", "0 at 2", "02:00 27:00", 30, "2026-10-25"},
};

TEST(AutoSchedule, HasTheRoundsThatAreDue) {
    const QByteArray zone = qgetenv("TZ");
    qputenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3"); // with summer time, and without zone files
    tzset();
    for (const DayCase &day : days) {
        const QDateTime start(QDate::fromString(QLatin1String(day.date), Qt::ISODate), QTime(0, 0));
        const QStringList events = QString::fromLatin1(day.events).split(u"; "_s);
        EXPECT_EQ(Day(start.toUTC()).live(day.hours * 60, events), QLatin1String(day.rounds))
            << day.what;
    }
    zone.isNull() ? qunsetenv("TZ") : qputenv("TZ", zone);
    tzset();
}

TEST(AutoSchedule, DevicesHaveTheirOwnMomentsInTheHourAndKeepThem) {
    QSet<QDateTime> moments;
    const QDateTime now(QDate(2026, 6, 10), QTime(0, 0));
    for (const quint32 bad : {0U, 600U, 4294967295U, 600U, 600U, 600U}) {
        TestDevice device;
        SettingsStore settings(*device.registry);
        settings.setDword(programKey, u"UpdateMode", 2);
        settings.setDword(programKey, u"UpdateTime", 6);
        if (bad != 0)
            settings.setDword(programKey, u"UpdateOffset", bad);
        const auto nextOf = [&](Registry &registry) {
            return *nextRound(AutoUpdateSettings::read(registry), {}, now);
        };
        const QDateTime first = nextOf(*device.registry);
        Registry other(device.root); // as of the downloader that is started anew
        EXPECT_EQ(nextOf(other), first);
        const qint64 offset = now.addSecs(6 * 3600).secsTo(first);
        EXPECT_TRUE(offset >= 0 && offset < 600) << offset;
        moments.insert(first);
    }
    EXPECT_GT(moments.size(), 1);
}

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
