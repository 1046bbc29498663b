// Publication dates: as publishers write them (the first two bytes are the day), and any text.

#include "feed/pub_date.h"
#include "fuzz/fuzz.h"

#include <QDate>
#include <QLocale>
#include <QtEndian>

namespace tidebrook {

using namespace Qt::StringLiterals;

static void checkWritten(const QDate &date) {
    for (const QString &format :
         {u"ddd, dd MMM yyyy"_s, u"ddd, d MMM yyyy '10:15:00 GMT'"_s, u"dd MMM yyyy 10:15 +0200"_s,
          u"ddd MMM dd '10:15:00 GMT' yyyy"_s}) {
        const QString written = QLocale::c().toString(date, format);
        require(normalisePubDate(written) == date.toString(Qt::ISODate), "a date is that day",
                written);
    }
}

// The year and the day are the feed's own text, of the length that a year and a day have.
static void checkAny(const QString &text) {
    const QString date = normalisePubDate(text);
    if (text.startsWith(u"DEFAULT"))
        return require(date.isEmpty(), "no date stays none", date);
    const qsizetype year = date.size() - 6;
    const int month = date.mid(year + 1, 2).toInt();
    require((year == 2 || year == 4) && date.at(year) == u'-' && date.at(year + 3) == u'-' &&
                month >= 1 && month <= 12 && date.isValidUtf16() && !date.contains(u' '),
            "a date has a year, a month and a day", date);
}

void fuzz(const QByteArray &input) {
    if (input.size() < 2)
        return;
    checkWritten(QDate(1970, 1, 1).addDays(qFromLittleEndian<quint16>(input.constData())));
    checkAny(QString::fromUtf8(input.sliced(2)));
}

} // namespace tidebrook
