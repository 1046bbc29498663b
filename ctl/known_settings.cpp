#include "ctl/known_settings.h"

#include "platform/sync/named_event.h"
#include "store/escape_sql.h"
#include "update/update_settings.h"

#include <algorithm>
#include <iterator>
#include <limits>

namespace tidebrook {

namespace {

constexpr quint32 any = std::numeric_limits<quint32>::max();

constexpr KnownSetting number(QStringView name, quint32 least, quint32 most, QStringView meaning) {
    return {name, SettingOwner::Program, least, most, false, meaning};
}
constexpr KnownSetting ofToday(QStringView name, quint32 most, QStringView meaning) {
    return {name, SettingOwner::TodayItem, 0, most, false, meaning};
}
constexpr KnownSetting tapped(QStringView name, qsizetype capacity, QStringView meaning) {
    return {name, SettingOwner::TodayItem, 0, static_cast<quint32>(capacity), true, meaning};
}

constexpr KnownSetting settings[]{
    number(u"SortMode", 0, 2, u"order of articles: 0 by date, 1 unread first, 2 unread only"),
    number(u"FontSize", 9, 13, u"size of the text: 9 small, 11 normal, 13 big"),
    number(u"UpdateMode", 0, 2, u"automatic updates: 0 never, 1 at an interval, 2 daily"),
    number(u"UpdateInterval", 1, 6, u"1 to 6: every 30 minutes, 1, 2, 4, 8, 16 hours"),
    number(u"UpdateTime", 0, 23, u"hour of the daily update"),
    number(u"UpdateOffset", 0, 599,
           u"seconds from that hour to the daily update; each device its own"),
    number(u"ACTOPTION", 0, 1, u"1: automatic updates only while Cradled is 1"),
    number(u"NoRoaming", 0, 1, u"1: no automatic updates while roaming"),
    number(u"OtherFormats", 0, 1,
           u"1: Atom, RSS 1.0 and JSON feeds are read, too; 0: RSS 2.0 alone"),
    number(u"LastAutoUpdate", 0, any, u"last automatic update, in seconds since 1970; 0 none"),
    number(u"CategoryNumber", 0, any, u"how many categories there are"),
    number(u"ERRORNO", 0, 1014, u"last error code"),
    {u"Cradled", SettingOwner::Hardware, 0, 1, false,
     u"1: it is connected at no cost; NetworkManager keeps it so"},
    {u"Status", SettingOwner::Phone, 0, any, false,
     u"of the phone; with 512 it is roaming, as ModemManager keeps it"},
    ofToday(u"Enabled", 1, u"Today item: 1 it is shown"),
    ofToday(u"TodayTimer", 2, u"Today item: its speed, 0 slow, 1 normal, 2 fast"),
    ofToday(u"Notify", 1, u"Today item: 1 it announces what automatic updates brought"),
    ofToday(u"UnreadItems", any, u"Today item: unread articles"),
    ofToday(u"NewArticles", any, u"Today item: new articles of the last automatic update"),
    ofToday(u"NewChannels", any, u"Today item: channels that these are of"),
    tapped(u"CATEGORY", categoryCapacity, u"Today item: category of the tapped headline"),
    tapped(u"CHANNEL", channelNameCapacity, u"Today item: channel of the tapped headline"),
    tapped(u"TITLE", titleCapacity, u"Today item: title of the tapped headline"),
};

QString keyOf(const Device &device, SettingOwner owner) {
    switch (owner) {
    case SettingOwner::Hardware:
        return hardwareStateKey.toString();
    case SettingOwner::Phone:
        return phoneStateKey.toString();
    case SettingOwner::TodayItem:
        return device.todayItemKey;
    case SettingOwner::Program:
        break;
    }
    return programKey.toString();
}

} // namespace

QList<KnownSetting> knownSettings(bool isTodayAlone) {
    QList<KnownSetting> known;
    std::copy_if(std::begin(settings), std::end(settings), std::back_inserter(known),
                 [&](const KnownSetting &setting) {
                     return !isTodayAlone || setting.owner == SettingOwner::TodayItem;
                 });
    return known;
}

std::optional<KnownSetting> knownSetting(const QString &name, bool isTodayAlone) {
    for (const KnownSetting &setting : knownSettings(isTodayAlone)) {
        if (setting.name.compare(name, Qt::CaseInsensitive) == 0)
            return setting;
    }
    return std::nullopt;
}

QString rangeInWords(const KnownSetting &setting) {
    if (setting.isText)
        return QStringLiteral("a text of at most %1 characters").arg(setting.most);
    return QStringLiteral("a number from %1 to %2").arg(setting.least).arg(setting.most);
}

std::optional<RegistryValue> valueOf(const KnownSetting &setting, const QString &text) {
    if (setting.isText)
        return text.size() <= setting.most ? std::optional<RegistryValue>(text) : std::nullopt;
    bool isNumber = false;
    const quint32 value = text.toUInt(&isNumber);
    const bool isTaken = isNumber && value >= setting.least && value <= setting.most;
    return isTaken ? std::optional<RegistryValue>(value) : std::nullopt;
}

std::optional<RegistryValue> storedValue(Device &device, const KnownSetting &setting) {
    return device.registry.read(keyOf(device, setting.owner), setting.name);
}

QString valueInWords(const RegistryValue &value) {
    const quint32 *number = std::get_if<quint32>(&value);
    return number ? QString::number(*number) : std::get<QString>(value);
}

bool storeValue(Device &device, const KnownSetting &setting, const RegistryValue &value) {
    const QString key = keyOf(device, setting.owner);
    if (!device.registry.write(key, setting.name, value) || !device.registry.flush())
        return false;
    if (setting.owner == SettingOwner::TodayItem)
        NamedEvent(device.root, todayItemsEvent, NamedEvent::Reset::Auto).set();
    return true;
}

} // namespace tidebrook
