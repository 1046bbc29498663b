#include "feed_server/generated_feed.h"

#include <QDateTime>
#include <QLocale>

#include <array>
#include <random>

namespace tidebrook {

namespace {

constexpr qsizetype itemSize = 1700;
constexpr qsizetype descriptionSize = 1130; // the last block ends behind it
constexpr qint64 secondsBetweenItems = 420;

using Words = std::array<const char *, 8>;

constexpr Words subjects{"The Ørskog ferry",          "The town council",
                         "The harbour's night train", "The botanical garden",
                         "Tomorrow's orchestra",      "A retired clockmaker",
                         "The weather station",       "A young engineer"};
constexpr Words actions{"opens its doors earlier", "publishes a new timetable",
                        "repairs a bridge",        "plants 400 elms & oaks",
                        "tests a quieter engine",  "buys the mill back",
                        "maps the flooded lanes",  "counts the storks"};
constexpr Words places{"Ostwick",    "Bréville", "Lower Tarn", "Hällmora",
                       "Sankt Odil", "Kilbrae",  "Ørskog",     "Łęczna"};
constexpr Words sentences{
    "The work began in early spring and was meant to take six weeks.",
    "“We looked at the numbers three times,” said the project’s accountant.",
    "Residents of the upper quarter have asked for a second stop near the bakery.",
    "Most of the cost – about €42,000 – is covered by a regional fund.",
    "Two earlier attempts, in 1987 and in 2004, were given up for lack of money.",
    "Experts from the university at Malmö &amp; a team of volunteers will help.",
    "The temperature fell below −5&nbsp;°C on eleven nights in a row.",
    "Señora Ibáñez, who has lived here since 1961, remembers it differently."};
// A block of a description; %1 to %4 are a link, a sentence, a place and another sentence.
constexpr Words blocks{
    "<p>%2 %4</p>\n",
    "<p>%4 %2</p>\n",
    "<p>%2 %4 %2</p>\n",
    "<p>%4 <em>%3</em></p>\n",
    "<p>Read more in <a href=\"%1/background?from=feed&amp;part=2\">the report from %3</a>.</p>\n",
    "<p><img src=\"%1/photo.jpg\" width=\"480\" height=\"320\" alt=\"View of %3\" /></p>\n",
    "<ul>\n<li><b>%3</b>: %2</li>\n<li>%4</li>\n</ul>\n",
    "<blockquote>%2<br />— %3</blockquote>\n"};

// Its numbers are the same with every library.
class Chance {
public:
    explicit Chance(std::seed_seq seed) : engine_(seed) {}
    QString of(const Words &words) {
        return QString::fromUtf8(words[static_cast<std::size_t>(engine_()) % words.size()]);
    }

private:
    std::mt19937 engine_;
};

QString description(const QString &link, Chance &chance) {
    QString html;
    while (html.size() < descriptionSize) {
        QString block = chance.of(blocks).replace(QLatin1String("%1"), link);
        for (const auto &[mark, words] :
             {std::pair("%2", &sentences), {"%3", &places}, {"%4", &sentences}})
            block.replace(QLatin1String(mark), chance.of(*words));
        html += block;
    }
    return html;
}

QString date(int number) {
    const QDateTime first(QDate(2024, 1, 1), QTime(6, 0), Qt::UTC);
    return QLocale::c().toString(first.addSecs(secondsBetweenItems * number),
                                 u"ddd, dd MMM yyyy hh:mm:ss") +
           (number % 3 == 0 ? u" +0000" : u" GMT");
}

QString item(int number, quint32 seed) {
    Chance chance({seed, static_cast<quint32>(number)});
    const QString link =
        QStringLiteral("http://feeds.example.org/%1/articles/%2").arg(seed).arg(number);
    const QString subject = chance.of(subjects);
    const QString title =
        QStringLiteral("%1 %2 (%3)").arg(subject, chance.of(actions)).arg(number + 1);
    const QString html = description(link, chance);
    const bool isPlain = number % 2 == 0;
    return QStringLiteral("<item>\n<title>%1</title>\n<link>%2</link>\n"
                          "<guid isPermaLink=\"false\">%3-%4</guid>\n<pubDate>%5</pubDate>\n"
                          "<category>%6</category>\n<description>%7</description>\n</item>\n")
        .arg(title.toHtmlEscaped(), link, QString::number(seed, 16), QString::number(number),
             date(number), chance.of(places),
             isPlain ? u"<![CDATA[" + html + u"]]>" : html.toHtmlEscaped());
}

} // namespace

QByteArray generatedFeed(int items, quint32 seed, int first) {
    QByteArray feed =
        QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<rss version=\"2.0\">\n"
                       "<channel>\n<title>Generated feed %1</title>\n"
                       "<link>http://feeds.example.org/%1/</link>\n"
                       "<description>Invented news</description>\n<language>en</language>\n")
            .arg(seed)
            .toUtf8();
    feed.reserve(itemSize * (items + 1));
    for (int number = first + items - 1; number >= first; --number)
        feed += item(number, seed).toUtf8();
    return feed + "</channel>\n</rss>\n";
}

} // namespace tidebrook
