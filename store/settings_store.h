#pragma once

#include "platform/sql/registry.h"

#include <QString>
#include <QStringView>

namespace tidebrook {

/// The key of the system's own settings.
inline constexpr QStringView programKey = u"Software\\Tamrel\\Feedlark";
/// The key of the list of categories.
inline constexpr QStringView categoriesKey = u"Software\\Tamrel\\Feedlark\\Categories";
/// The key of the Today item.
QString todayItemKey(const QString &itemName);
/// The keys of the two platform values that are read: "Cradled" and "Status".
inline constexpr QStringView hardwareStateKey = u"System\\State\\Hardware";
inline constexpr QStringView phoneStateKey = u"System\\State\\Phone";

/// Settings by key and name. Nothing is cached: each call reads or writes the registry.
/// Thread-safe, as the registry is.
class SettingsStore {
public:
    explicit SettingsStore(Registry &registry) : registry_(registry) {}

    Registry &registry() const { return registry_; }

    /// Reads a DWORD. Where there is none it is made, as 0, and the read fails; a value of another
    /// type stays, and the read fails. `out` is set only by a read that succeeds.
    bool RegReadDword(QStringView key, QStringView name, quint32 &out);

    /// Writes a DWORD and flushes it.
    bool RegWriteDword(QStringView key, QStringView name, quint32 value);

    /// Reads a DWORD without making it; 0 when there is none.
    quint32 dword(QStringView key, QStringView name);

    /// Reads a text of at most `capacity` characters; empty when there is none.
    QString text(QStringView key, QStringView name, qsizetype capacity);

    /// Writes a DWORD and leaves it to the system when it is flushed.
    bool setDword(QStringView key, QStringView name, quint32 value);

private:
    Registry &registry_;
};

/// Records why something failed, for the program that reports it: the DWORD "ERRORNO". The last
/// writer wins.
void SetLastErrorCode(Registry &registry, quint32 code);

} // namespace tidebrook
