#include "platform/named_event.h"
#include "support/full_disk.h"
#include "support/test_device.h"
#include "update/update_settings.h"

#include <gtest/gtest.h>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

const QStringList todayNames{u"Enabled"_s, u"TodayTimer"_s};
const QStringList autoUpdateNames{u"UpdateMode"_s, u"UpdateInterval"_s, u"UpdateTime"_s,
                                  u"ACTOPTION"_s, u"NoRoaming"_s};

/// The values of a page in the registry, one behind the other: "-" for one that is missing, "text"
/// for one that is no number.
class Stored {
public:
    Stored(Registry &registry, QStringView key, const QStringList &names)
        : registry_(registry), key_(key), names_(names) {}

    void put(const QString &values) const {
        const QStringList list = values.split(u' ');
        for (qsizetype i = 0; i < names_.size(); ++i) {
            registry_.remove(key_, names_[i]);
            if (list[i] == u"text")
                registry_.write(key_, names_[i], list[i]);
            else if (list[i] != u"-")
                registry_.write(key_, names_[i], list[i].toUInt());
        }
    }

    QString values() const {
        QStringList list;
        for (const QString &name : names_) {
            const std::optional<RegistryValue> value = registry_.read(key_, name);
            const quint32 *number = value ? std::get_if<quint32>(&*value) : nullptr;
            list.append(number ? QString::number(*number) : value ? u"text"_s : u"-"_s);
        }
        return list.join(u' ');
    }

private:
    Registry &registry_;
    const QStringView key_;
    const QStringList names_;
};

template <typename Value> QString shown(const std::optional<Value> &value) {
    return value ? QString::number(static_cast<int>(*value)) : u"-"_s;
}

QString shown(const TodayPageValues &values) {
    return QStringList{QString::number(values.isEnabled ? 1 : 0), shown(values.timer)}.join(u' ');
}

QString shown(const AutoUpdatePageValues &values) {
    return QStringList{shown(values.mode), shown(values.interval), shown(values.time),
                       shown(values.needsCradle), shown(values.noRoaming)}
        .join(u' ');
}

struct Row {
    QString before;
    QString shown;
    QString afterReading;
    QString afterSaving; // what is shown, unchanged
};

TEST(UpdateSettings, TodaySettingIsReadAndSavedAndTheTodayItemTold) {
    TestDevice device;
    SettingsStore settings(*device.registry);
    const Stored stored(*device.registry, testTodayKey, todayNames);
    NamedEvent told(device.root, u"TODAYITEMS", NamedEvent::Reset::Auto);
    const Row rows[]{
        {u"- -"_s, u"0 -"_s, u"0 0"_s, u"0 4294967295"_s},
        {u"1 2"_s, u"1 2"_s, u"1 2"_s, u"1 2"_s},
        {u"0 4294967295"_s, u"0 -1"_s, u"0 4294967295"_s, u"0 4294967295"_s},
        {u"2 -"_s, u"0 -"_s, u"2 0"_s, u"0 4294967295"_s},
        {u"text 1"_s, u"0 1"_s, u"text 1"_s, u"0 1"_s},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.before.toStdString());
        stored.put(row.before);
        const TodayPageValues values = readTodayPage(settings, testTodayKey);
        EXPECT_EQ(shown(values), row.shown);
        EXPECT_EQ(stored.values(), row.afterReading);
        EXPECT_FALSE(told.test());
        EXPECT_TRUE(saveTodayPage(device.root, settings, testTodayKey, values));
        EXPECT_EQ(stored.values(), row.afterSaving);
        EXPECT_TRUE(told.test());
    }
    bool isSaved = true;
    {
        const FullDisk full;
        isSaved =
            saveTodayPage(device.root, settings, testTodayKey, {.isEnabled = true, .timer = 2});
    }
    EXPECT_FALSE(isSaved || told.test()) << stored.values().toStdString();
}

TEST(UpdateSettings, AutoUpdateIsReadUpToTheFirstMissingValueAndSavedWhole) {
    TestDevice device;
    SettingsStore settings(*device.registry);
    const Stored stored(*device.registry, programKey, autoUpdateNames);
    const Row rows[]{
        {u"- - - - -"_s, u"- - - - -"_s, u"0 - - - -"_s, u"2 0 4294967295 0 0"_s},
        {u"0 - 5 1 1"_s, u"0 - - - -"_s, u"0 0 5 1 1"_s, u"0 0 4294967295 0 0"_s},
        {u"1 6 - - 1"_s, u"1 5 - - -"_s, u"1 6 0 - 1"_s, u"1 6 4294967295 0 0"_s},
        {u"1 1 0 - 1"_s, u"1 0 0 - -"_s, u"1 1 0 0 1"_s, u"1 1 0 0 0"_s},
        {u"2 0 23 1 -"_s, u"2 -1 23 1 -"_s, u"2 0 23 1 0"_s, u"2 0 23 1 0"_s},
        {u"1 6 0 0 1"_s, u"1 5 0 0 1"_s, u"1 6 0 0 1"_s, u"1 6 0 0 1"_s},
        {u"4294967295 1 0 0 0"_s, u"-1 0 0 0 0"_s, u"4294967295 1 0 0 0"_s, u"2 1 0 0 0"_s},
        {u"1 2 text 1 1"_s, u"1 1 - - -"_s, u"1 2 text 1 1"_s, u"1 2 4294967295 0 0"_s},
        {u"7 2147483648 4294967295 2 0"_s, u"7 2147483647 -1 1 0"_s,
         u"7 2147483648 4294967295 2 0"_s, u"2 2147483648 4294967295 1 0"_s},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.before.toStdString());
        stored.put(row.before);
        const AutoUpdatePageValues values = readAutoUpdatePage(settings);
        EXPECT_EQ(shown(values), row.shown);
        EXPECT_EQ(stored.values(), row.afterReading);
        EXPECT_TRUE(saveAutoUpdatePage(settings, values));
        EXPECT_EQ(stored.values(), row.afterSaving);
    }
    const QString before = stored.values();
    bool isSaved = true;
    {
        const FullDisk full;
        isSaved = saveAutoUpdatePage(settings, {});
    }
    EXPECT_FALSE(isSaved);
    EXPECT_EQ(stored.values(), before);
}

} // namespace
} // namespace tidebrook
