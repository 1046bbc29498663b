#pragma once

#include <QString>
#include <QStringView>

namespace tidebrook {

/// A feed's publication date as text that sorts by time: YYYY-MM-DD. Parts that cannot be read are
/// those of the local date of today; a year of two digits stays one (YY-MM-DD). Empty for a text
/// that begins with "DEFAULT": the item has no date.
QString normalisePubDate(QStringView text);

/// The clock that articles are stamped and pruned by: seconds of a calendar in which every year has
/// 365 days and every month 30, less `daysBack` days (2 for 0). Comparable with itself only.
qint64 ingestionClock(quint16 daysBack);

} // namespace tidebrook
