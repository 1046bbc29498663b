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

class StoreCheck {
public:
    StoreCheck(SqliteDatabase &database, const QStringList &categories)
        : database_(database), categories_(categories) {}

    QStringList run() {
        checkFile();
        if (!faults_.isEmpty()) // nothing that a broken file says is worth telling
            return faults_;
        checkCounts();
        checkOwners();
        checkArticleCategories();
        checkCategories();
        return faults_;
    }

private:
    void forEachRow(const QByteArray &query, const std::function<void(SqliteStatement &)> &row) {
        SqliteStatement statement = database_.prepare(query);
        SqliteStep step = statement ? statement.step() : SqliteStep::Failed;
        for (; step == SqliteStep::Row; step = statement.step())
            row(statement);
        if (step != SqliteStep::Done)
            faults_.append(
                QStringLiteral("database: cannot be read: %1").arg(database_.lastError()));
    }

    void checkFile() {
        for (const QString &fault : database_.faults())
            faults_.append(QStringLiteral("database: %1").arg(fault));
        forEachRow("SELECT count(*) FROM sqlite_master WHERE name IN ('PK_RECORD', 'PK_CHRD')",
                   [this](SqliteStatement &row) {
                       if (row.integer(0) != 2)
                           faults_.append(QStringLiteral("database: an index is missing"));
                   });
    }

    void checkCounts() {
        forEachRow(
            "SELECT c.CHANNEL_NAME, c.NUM_OF_UNREAD, c.TOTAL_ITEMS, "
            "count(a.CHANNEL_NAME), coalesce(sum(a.READ_UNREAD = 0), 0) "
            "FROM RSSCHRecord c LEFT JOIN RSSRecord a ON a.CHANNEL_NAME = c.CHANNEL_NAME "
            "GROUP BY c.CHANNEL_NAME",
            [this](SqliteStatement &row) {
                if (row.integer(1) == row.integer(4) && row.integer(2) == row.integer(3))
                    return;
                faults_.append(
                    QStringLiteral("channel \"%1\": counts %2/%3, but has %4/%5 articles")
                        .arg(row.text(0), row.text(1), row.text(2), row.text(4), row.text(3)));
            });
    }

    void checkOwners() {
        forEachRow("SELECT a.CHANNEL_NAME, count(*) FROM RSSRecord a "
                   "LEFT JOIN RSSCHRecord c ON a.CHANNEL_NAME = c.CHANNEL_NAME "
                   "WHERE c.CHANNEL_NAME IS NULL GROUP BY a.CHANNEL_NAME",
                   [this](SqliteStatement &row) {
                       faults_.append(QStringLiteral("channel \"%1\": missing, but has %2 articles")
                                          .arg(row.text(0), row.text(1)));
                   });
    }

    void checkArticleCategories() {
        forEachRow("SELECT c.CHANNEL_NAME, count(*) FROM RSSCHRecord c "
                   "JOIN RSSRecord a ON a.CHANNEL_NAME = c.CHANNEL_NAME "
                   "WHERE a.CATEGORY <> c.CATEGORY GROUP BY c.CHANNEL_NAME",
                   [this](SqliteStatement &row) {
                       faults_.append(
                           QStringLiteral("channel \"%1\": %2 articles have another category")
                               .arg(row.text(0), row.text(1)));
                   });
    }

    void checkCategories() {
        forEachRow("SELECT CHANNEL_NAME, CATEGORY FROM RSSCHRecord", [this](SqliteStatement &row) {
            const QString category = TrimTrailingBlanks(row.text(1)).toString();
            if (!categories_.contains(category))
                faults_.append(QStringLiteral("channel \"%1\": its category \"%2\" is not listed")
                                   .arg(row.text(0), category));
        });
    }

    SqliteDatabase &database_;
    const QStringList categories_;
    QStringList faults_;
};

QStringList listedCategories(Registry &registry, QStringList &faults) {
    SettingsStore settings(registry);
    for (const QString &fault : registry.faults())
        faults.append(QStringLiteral("registry: %1").arg(fault));
    QStringList names;
    const auto values = registry.values(categoriesKey);
    for (const Registry::NamedValue &value : values.value_or(QList<Registry::NamedValue>())) {
        names.append(TrimTrailingBlanks(value.name).toString());
        if (!std::holds_alternative<quint32>(value.value))
            faults.append(QStringLiteral("categories: \"%1\" is damaged").arg(value.name));
    }
    const quint32 count = settings.dword(programKey, u"CategoryNumber");
    if (count != static_cast<quint32>(names.size()))
        faults.append(QStringLiteral("categories: the count is %1, but %2 are listed")
                          .arg(count)
                          .arg(names.size()));
    return names;
}

QString unusable(const QString &path, const QString &what, const QString &reason,
                 const QString &whatComes) {
    const QString line = QStringLiteral("%1: cannot be opened: %2").arg(what, reason);
    // What only cannot be read now, as one that is locked, is nothing to be moved.
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
        return faults << StoreCheck(*database, categories).run();
    return faults << unusable(path, QStringLiteral("database"),
                              database ? notOurs.toString() : error,
                              QStringLiteral("one with the channels that a new device has"));
}

} // namespace tidebrook
