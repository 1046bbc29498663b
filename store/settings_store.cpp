#include "store/settings_store.h"

#include "platform/base/text.h"

namespace tidebrook {

QString todayItemKey(const QString &itemName) {
    return u"Software\\Microsoft\\Today\\Items\\" + itemName;
}

bool SettingsStore::RegReadDword(QStringView key, QStringView name, quint32 &out) {
    const std::optional<RegistryValue> value = registry_.read(key, name);
    if (!value) {
        // Not `write`: the read may have failed because the file is locked.
        if (registry_.create(key, name, quint32{0}))
            registry_.flush();
        return false;
    }
    const quint32 *number = std::get_if<quint32>(&*value);
    if (number)
        out = *number;
    return number != nullptr;
}

bool SettingsStore::RegWriteDword(QStringView key, QStringView name, quint32 value) {
    return setDword(key, name, value) && registry_.flush();
}

quint32 SettingsStore::dword(QStringView key, QStringView name) {
    const RegistryValue value = registry_.read(key, name).value_or(quint32{0});
    const quint32 *number = std::get_if<quint32>(&value);
    return number ? *number : 0;
}

QString SettingsStore::text(QStringView key, QStringView name, qsizetype capacity) {
    const RegistryValue value = registry_.read(key, name).value_or(QString());
    const QString *text = std::get_if<QString>(&value);
    return text ? cutText(*text, capacity).toString() : QString();
}

bool SettingsStore::setDword(QStringView key, QStringView name, quint32 value) {
    return registry_.write(key, name, value);
}

void SetLastErrorCode(Registry &registry, quint32 code) {
    registry.write(programKey, u"ERRORNO", code);
}

} // namespace tidebrook
