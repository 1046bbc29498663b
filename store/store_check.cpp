#include "store/store_check.h"

#include "platform/base/plain_file.h"
#include "platform/base/text.h"
#include "platform/sql/sqlite_database.h"
#include "store/settings_store.h"
#include "store/tables.h"

#include <QFileInfo>

#include <functional>

namespace tidebrook {

namespace {

constexpr QStringView notOurs = u"it is a database of another program";

// Each row of these queries is a line for a fault.
constexpr char missingIndex[] =
    "SELECT 'database: an index is missing' WHERE "
    "(SELECT count(*) FROM sqlite_master WHERE name IN ('PK_RECORD', 'PK_CHRD')) <> 2";
constexpr const char *disagreements[] = {
    "SELECT printf('channel \"%s\": counts %s/%s, but has %s/%s articles', name, NUM_OF_UNREAD, "
    "TOTAL_ITEMS, unread, total) FROM "
    "(SELECT c.CHANNEL_NAME AS name, c.NUM_OF_UNREAD, c.TOTAL_ITEMS, "
    "coalesce(sum(a.READ_UNREAD = 0), 0) AS unread, count(a.CHANNEL_NAME) AS total "
    "FROM RSSCHRecord c LEFT JOIN RSSRecord a ON a.CHANNEL_NAME = c.CHANNEL_NAME "
    "GROUP BY c.CHANNEL_NAME) WHERE NUM_OF_UNREAD IS NOT unread OR TOTAL_ITEMS IS NOT total",

    "SELECT printf('channel \"%s\": missing, but has %d articles', a.CHANNEL_NAME, count(*)) "
    "FROM RSSRecord a LEFT JOIN RSSCHRecord c ON a.CHANNEL_NAME = c.CHANNEL_NAME "
    "WHERE c.CHANNEL_NAME IS NULL GROUP BY a.CHANNEL_NAME",

    "SELECT printf('channel \"%s\": %d articles have another category', c.CHANNEL_NAME, count(*)) "
    "FROM RSSCHRecord c JOIN RSSRecord a ON a.CHANNEL_NAME = c.CHANNEL_NAME "
    "WHERE a.CATEGORY <> c.CATEGORY GROUP BY c.CHANNEL_NAME"};

void forEachRow(SqliteDatabase &database, const char *query, QStringList &faults,
                const std::function<void(const SqliteStatement &)> &takeRow) {
    SqliteStatement row = database.prepare(query);
    while (row.next())
        takeRow(row);
    if (row.failed())
        faults.append(QStringLiteral("database: cannot be read: %1").arg(database.lastError()));
}

QStringList faultsOf(SqliteDatabase &database, const QStringList &categories) {
    QStringList faults;
    for (const QString &fault : database.faults())
        faults.append(u"database: " + fault);
    const auto appendText = [&](const SqliteStatement &row) { faults.append(row.text(0)); };
    forEachRow(database, missingIndex, faults, appendText);
    if (!faults.isEmpty()) // what else a broken file says is of no use
        return faults;
    for (const char *query : disagreements)
        forEachRow(database, query, faults, appendText);
    forEachRow(database, "SELECT CHANNEL_NAME, CATEGORY FROM RSSCHRecord", faults,
               [&](const SqliteStatement &row) {
                   const QString category = TrimTrailingBlanks(row.text(1)).toString();
                   if (!categories.contains(category))
                       faults.append(
                           QStringLiteral("channel \"%1\": its category \"%2\" is not listed")
                               .arg(row.text(0), category));
               });
    return faults;
}

QStringList listedCategories(Registry &registry, QStringList &faults) {
    for (const QString &fault : registry.faults())
        faults.append(u"registry: " + fault);
    QStringList names;
    const auto values = registry.values(categoriesKey);
    for (const Registry::NamedValue &value : values.value_or(QList<Registry::NamedValue>())) {
        names.append(TrimTrailingBlanks(value.name).toString());
        if (!std::holds_alternative<quint32>(value.value))
            faults.append(QStringLiteral("categories: \"%1\" is damaged").arg(value.name));
    }
    const quint32 count = SettingsStore(registry).dword(programKey, u"CategoryNumber");
    if (count != static_cast<quint32>(names.size()))
        faults.append(QStringLiteral("categories: the count is %1, but %2 are listed")
                          .arg(count)
                          .arg(names.size()));
    return names;
}

QString unusable(const QString &path, const QString &what, const QString &reason,
                 const QString &whatComes) {
    const QString line = QStringLiteral("%1: cannot be opened: %2").arg(what, reason);
    // A file that only cannot be read now, as one that is locked, must not be moved.
    const bool isOurs = SqliteDatabase::isUsablePlace(path) && QFileInfo(path).size() > 0 &&
                        !SqliteDatabase::isDamaged(path) && reason != notOurs;
    return isOurs
               ? line
               : QString(line + u". Put a backup of " + QFileInfo(path).fileName() +
                         u" in its place, or move it away: the next start then makes " + whatComes);
}

} // namespace

QStringList checkStore(const DeviceRoot &device, Registry &registry) {
    QStringList faults;
    if (!registry.isOpen())
        return {unusable(device.registryPath(), QStringLiteral("registry"), registry.error(),
                         QStringLiteral("one with the first settings, and lists the categories "
                                        "of the channels again"))};
    const QStringList categories = listedCategories(registry, faults);
    const QString path = device.filePath(u"RSSVault.sdf");
    if (fileKindAt(path) == FileKind::Missing)
        return faults << QStringLiteral("database: there is none");
    QString error;
    const auto database = SqliteDatabase::open(path, {}, &error);
    if (database && hasTables(*database))
        return faults << faultsOf(*database, categories);
    return faults << unusable(path, QStringLiteral("database"),
                              database ? notOurs.toString() : error,
                              QStringLiteral("one with the channels that a new device has"));
}

} // namespace tidebrook
