#include "feed/pub_date.h"

#include "feed/feed_records.h"
#include "platform/base/clock.h"

#include <algorithm>
#include <array>

namespace tidebrook {

namespace {

constexpr std::array<QStringView, 12> monthNames{u"Jan", u"Feb", u"Mar", u"Apr", u"May", u"Jun",
                                                 u"Jul", u"Aug", u"Sep", u"Oct", u"Nov", u"Dec"};
constexpr QChar zero = u'0';
constexpr quint32 secondsPerDay = 86'400;
constexpr qint64 defaultDaysBack = 2;

struct DateParts {
    QString year;
    QString month; // with its dashes: -MM-
    QString day;
};

void readToken(QStringView token, int position, DateParts &parts) {
    const qsizetype length = token.size();
    if ((position == 1 || position == 2) && length == 3) {
        const auto *month = std::find(monthNames.begin(), monthNames.end(), token);
        if (month != monthNames.end())
            parts.month = QStringLiteral("-%1-").arg(month - monthNames.begin() + 1, 2, 10, zero);
    }
    if (position <= 2 && (length == 1 || length == 2))
        parts.day = token.toString().rightJustified(2, zero);
    if ((position == 2 || position == 3 || position == 5) && (length == 4 || length == 2))
        parts.year = token.toString();
}

DateParts readParts(QStringView text) {
    DateParts parts;
    int position = 0;
    for (const QStringView token : text.tokenize(u' ', Qt::SkipEmptyParts))
        readToken(token, position++, parts);
    return parts;
}

} // namespace

QString normalisePubDate(QStringView text) {
    if (text.startsWith(missingText))
        return {};
    DateParts parts = readParts(text);
    if (parts.year.isEmpty() || parts.month.isEmpty() || parts.day.isEmpty()) {
        const QDate today = localNow().date();
        if (parts.year.isEmpty())
            parts.year = today.toString(u"yyyy");
        if (parts.month.isEmpty())
            parts.month = today.toString(u"-MM-");
        if (parts.day.isEmpty())
            parts.day = today.toString(u"dd");
    }
    return parts.year + parts.month + parts.day;
}

qint64 ingestionClock(quint16 daysBack) {
    const QDateTime now = utcNow();
    const QDate date = now.date();
    const QTime time = now.time();
    // In 32 bits, like the stamps in every database.
    const auto days =
        static_cast<quint32>((date.year() - 2000) * 365 + date.month() * 30 + date.day());
    const auto seconds =
        static_cast<quint32>((time.hour() * 60 + time.minute()) * 60 + time.second());
    const auto stamp = static_cast<qint32>(days * secondsPerDay + seconds);
    return stamp - (daysBack == 0 ? defaultDaysBack : qint64{daysBack}) * secondsPerDay;
}

} // namespace tidebrook
