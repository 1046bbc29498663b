#include "feed/pub_date.h"
#include "platform/base/clock.h"

#include <gtest/gtest.h>

#include <ctime>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

TEST(PubDate, SortsByTime) {
    const FixedClock clock{QDateTime({2026, 11, 5}, {12, 0})};
    const std::pair<QString, QString> cases[]{
        {u"Fri, 07 Mar 2008 10:15:00 GMT"_s, u"2008-03-07"_s},
        {u"Fri, 7 Mar 2008 10:15:00 GMT"_s, u"2008-03-07"_s},
        {u"Fri,  07  Mar  2008 10:15:00 GMT"_s, u"2008-03-07"_s},
        {u"07 Mar 2008"_s, u"2008-03-07"_s},
        {u"7 Mar 08"_s, u"08-03-08"_s},
        {u"Fri Mar 07 10:15:00 GMT 2008"_s, u"2008-03-07"_s},
        {u"2008-03-07T10:15:00Z"_s, u"2026-11-05"_s},
        {u"Fri, 07 MAR 2008"_s, u"2008-11-07"_s},
        {u""_s, u"2026-11-05"_s},
        {u"DEFAULT"_s, u""_s},
    };
    for (const auto &[text, normal] : cases)
        EXPECT_EQ(normalisePubDate(text), normal) << text.toStdString();
}

// Which counts months of 30 days, and takes two days back when it is told none.
TEST(IngestionClock, IsOfTheUtcAndWhatADateLacksOfTheLocalDate) {
    const QByteArray zone = qgetenv("TZ");
    qputenv("TZ", "XXX-14");
    tzset();
    const FixedClock clock(QDateTime({2026, 3, 1}, {12, 1, 1}, Qt::UTC));
    EXPECT_EQ(normalisePubDate(u"nonsense"), u"2026-03-02");
    const qint64 now = (26 * 365 + 3 * 30 + 1) * 86'400LL + 12 * 3'600 + 60 + 1;
    EXPECT_EQ(ingestionClock(7), now - 7 * 86'400);
    EXPECT_EQ(ingestionClock(0), now - 2 * 86'400);
    zone.isNull() ? qunsetenv("TZ") : qputenv("TZ", zone);
    tzset();
}

} // namespace
} // namespace tidebrook
