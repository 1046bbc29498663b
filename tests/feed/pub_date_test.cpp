#include "feed/pub_date.h"
#include "platform/clock.h"
#include "support/text_printing.h"

#include <gtest/gtest.h>

#include <ctime>

namespace tidebrook {
namespace {

struct DateCase {
    const char *text;
    const char *normal;
};

class PubDate : public testing::TestWithParam<DateCase> {
protected:
    const FixedClock clock_{QDateTime({2026, 11, 5}, {12, 0})};
};

TEST_P(PubDate, SortsByTime) {
    EXPECT_EQ(normalisePubDate(QString::fromUtf8(GetParam().text)),
              QString::fromUtf8(GetParam().normal));
}

INSTANTIATE_TEST_SUITE_P(Feeds, PubDate,
                         testing::Values(DateCase{"Fri, 07 Mar 2008 10:15:00 GMT", "2008-03-07"},
                                         DateCase{"Fri, 7 Mar 2008 10:15:00 GMT", "2008-03-07"},
                                         DateCase{"Fri,  07  Mar  2008 10:15:00 GMT", "2008-03-07"},
                                         DateCase{"07 Mar 2008", "2008-03-07"},
                                         DateCase{"7 Mar 08", "08-03-08"},
                                         DateCase{"Fri Mar 07 10:15:00 GMT 2008", "2008-03-07"},
                                         DateCase{"2008-03-07T10:15:00Z", "2026-11-05"},
                                         DateCase{"Fri, 07 MAR 2008", "2008-11-07"},
                                         DateCase{"Fri, 07 March 2008", "2008-11-07"},
                                         DateCase{"", "2026-11-05"}, DateCase{"DEFAULT", ""},
                                         DateCase{"DEFAULT date", ""},
                                         DateCase{"nonsense", "2026-11-05"}));

TEST(PubDateZone, MissingPartsAreOfTheLocalDateAndStampsOfTheUtc) {
    const QByteArray zone = qgetenv("TZ");
    qputenv("TZ", "XXX-14");
    tzset();
    const FixedClock clock(QDateTime({2026, 3, 1}, {12, 0}, Qt::UTC));
    EXPECT_EQ(normalisePubDate(u"nonsense"), u"2026-03-02");
    EXPECT_EQ(ingestionClock(7), (26 * 365 + 3 * 30 + 1 - 7) * 86'400LL + 12 * 3'600);
    zone.isNull() ? qunsetenv("TZ") : qputenv("TZ", zone);
    tzset();
}

TEST(IngestionClock, CountsMonthsOf30DaysAndTakesTwoDaysBackForNone) {
    const FixedClock clock(QDateTime({2026, 3, 1}, {1, 2, 3}, Qt::UTC));
    const qint64 days = 26 * 365 + 3 * 30 + 1;
    const qint64 now = days * 86'400 + 3'723;
    EXPECT_EQ(ingestionClock(7), now - 7 * 86'400);
    EXPECT_EQ(ingestionClock(0), now - 2 * 86'400);
}

} // namespace
} // namespace tidebrook
