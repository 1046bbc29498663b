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
    QStringView year;
    qsizetype month = 0; // 1 to 12
    QStringView day;
};

void readToken(QStringView token, int position, DateParts &parts) {
    const qsizetype length = token.size();
    if ((position == 1 || position == 2) && length == 3) {
        const auto *month = std::find(monthNames.begin(), monthNames.end(), token);
        if (month != monthNames.end())
            parts.month = month - monthNames.begin() + 1;
    }
    if (position <= 2 && (length == 1 || length == 2))
        parts.day = token;
    if ((position == 2 || position == 3 || position == 5) && (length == 4 || length == 2))
        parts.year = token;
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
    const DateParts parts = readParts(text);
    const bool isWhole = !parts.year.isEmpty() && parts.month != 0 && !parts.day.isEmpty();
    const QDate today = isWhole ? QDate() : localNow().date();
    const auto padded = [](auto number) { return QString::number(number).rightJustified(2, zero); };
    QString date = parts.year.isEmpty() ? QString::number(today.year()) : parts.year.toString();
    date += u'-' + padded(parts.month != 0 ? parts.month : today.month()) + u'-';
    if (parts.day.isEmpty())
        return date + padded(today.day());
    if (parts.day.size() == 1)
        date += zero;
    return date + parts.day;
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
