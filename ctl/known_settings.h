#pragma once

#include "subscriptions/device.h"

#include <QList>
#include <QString>
#include <QStringView>

#include <optional>

namespace tidebrook {

/// Whose key of the registry holds a setting.
enum class SettingOwner { Program, Hardware, Phone, TodayItem };

/// A setting that the programs read.
struct KnownSetting {
    QStringView name;
    SettingOwner owner;
    quint32 least; ///< of a number
    quint32 most;  ///< of a number; a text's most UTF-16 units
    bool isText;
    QStringView meaning;
};

/// All of them, or those of the Today item.
QList<KnownSetting> knownSettings(bool isTodayAlone);
/// The one of that name, in any case; nothing when there is none such.
std::optional<KnownSetting> knownSetting(const QString &name, bool isTodayAlone);

/// What a setting takes, in words.
QString rangeInWords(const KnownSetting &setting);
/// A text as a value of the setting; nothing when it is out of the range.
std::optional<RegistryValue> valueOf(const KnownSetting &setting, const QString &text);

/// The value as it is stored, be it in the range or not; nothing when it is not set.
std::optional<RegistryValue> storedValue(Device &device, const KnownSetting &setting);
/// A value as it is printed.
QString valueInWords(const RegistryValue &value);
/// Stores a value for good, and has the Today item read its own ones again. False when it could
/// not be stored.
bool storeValue(Device &device, const KnownSetting &setting, const RegistryValue &value);

} // namespace tidebrook
