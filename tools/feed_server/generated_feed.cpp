#include "feed_server/generated_feed.h"

#include <QDateTime>
#include <QLocale>

#include <array>

namespace tidebrook {

namespace {

constexpr qsizetype itemSize = 1700;
constexpr qsizetype descriptionSize = 1130; // the last block ends behind it
constexpr qint64 secondsBetweenItems = 420;

constexpr std::array subjects{
    "The ferry company",       "The town council",     "A group of beekeepers",
    "The night train",         "The botanical garden", "The county library",
    "A retired clockmaker",    "The school orchestra", "The weather station",
    "The fishing cooperative", "A young engineer",     "The film archive",
};

constexpr std::array possessives{
    "The harbour's", "The mayor's", "The museum's", "Tomorrow's", "The orchestra's", "A children's",
};

constexpr std::array actions{
    "opens its doors earlier",  "publishes a new timetable", "repairs the old bridge",
    "plants four hundred elms", "tests a quieter engine",    "buys the mill back",
    "maps the flooded lanes",   "restores a lost recording", "measures the glacier again",
    "lends tools to everyone",  "switches to paper tickets", "counts the migrating storks",
};

constexpr std::array things{
    "plan for the tram line", "first winter season", "rules for the market",
    "longest exhibition",     "choir of strangers",  "map of the tunnels",
};

constexpr std::array places{
    "Ostwick", "Bréville",  "Lower Tarn", "Hällmora",  "Sankt Odil", "Marrowgate",
    "Kilbrae", "Vila Nova", "Ørskog",     "Pennhaven", "Łęczna",     "Dunmere",
};

constexpr std::array categories{
    "Local", "Transport", "Nature", "Arts & Stage", "Science", "Business",
};

constexpr std::array sentences{
    "The work began in early spring and was meant to take six weeks.",
    "Nobody had expected that many visitors on a rainy Tuesday.",
    "“We looked at the numbers three times,” said the project’s accountant.",
    "The first results are due before the end of the quarter.",
    "Residents of the upper quarter have asked for a second stop near the bakery.",
    "A café across the street now keeps its lights on until eleven.",
    "Most of the cost – about €42,000 – is covered by a regional fund.",
    "Two earlier attempts, in 1987 and in 2004, were given up for lack of money.",
    "The old catalogue listed fewer than half of the pieces that were found.",
    "For the time being, bicycles may be taken along free of charge.",
    "Experts from the university at Malmö &amp; a team of volunteers will help.",
    "The temperature fell below −5&nbsp;°C on eleven nights in a row.",
    "Those who cannot attend will find the recordings on the web site.",
    "An apprentice noticed the crack, and it was repaired the same night.",
    "It is not the end of the matter: the appeal will be heard in autumn.",
    "Señora Ibáñez, who has lived here since 1961, remembers it differently.",
};

// The numbers of one item, from a generator of our own, so that they are the same with every
// library. Draw at most one in an expression: compilers differ in what they evaluate first.
class Chance {
public:
    explicit Chance(quint64 state) : state_(state) {}

    size_t below(size_t limit) { return static_cast<size_t>(next() % limit); }

    template <size_t size> QByteArray of(const std::array<const char *, size> &choices) {
        return choices[below(size)];
    }

private:
    quint64 next() {
        state_ += 0x9E3779B97F4A7C15U;
        quint64 mixed = state_;
        mixed = (mixed ^ (mixed >> 30U)) * 0xBF58476D1CE4E5B9U;
        mixed = (mixed ^ (mixed >> 27U)) * 0x94D049BB133111EBU;
        return mixed ^ (mixed >> 31U);
    }

    quint64 state_;
};

struct ItemId {
    int number;
    quint32 seed;

    QByteArray link() const {
        return "http://feeds.example.org/" + QByteArray::number(seed) + "/articles/" +
               QByteArray::number(number);
    }
};

QByteArray title(const ItemId &id, Chance &chance) {
    const bool isPossessive = id.number % 5 == 2;
    QByteArray text = isPossessive ? chance.of(possessives) : chance.of(subjects);
    text += ' ';
    text += isPossessive ? chance.of(things) : chance.of(actions);
    text += id.number % 11 == 7 ? " & more from " : " in ";
    text += chance.of(places);
    return text + " (" + QByteArray::number(id.number + 1) + ')';
}

void appendSentences(QByteArray &html, size_t count, Chance &chance) {
    const size_t start = chance.below(sentences.size());
    const size_t step = 1 + chance.below(sentences.size() / count);
    for (size_t i = 0; i < count; ++i) {
        if (i > 0)
            html += ' ';
        html += sentences[(start + i * step) % sentences.size()];
    }
}

void appendParagraph(QByteArray &html, Chance &chance) {
    html += "<p>";
    appendSentences(html, 2 + chance.below(2), chance);
    html += "</p>\n";
}

void appendLink(QByteArray &html, const ItemId &id, Chance &chance) {
    html += "<p>Read more in <a href=\"" + id.link() + "/background?from=feed&amp;part=";
    html += QByteArray::number(chance.below(9) + 1);
    html += "\">the <em>background</em> report from " + chance.of(places) + "</a>.</p>\n";
}

void appendImage(QByteArray &html, const ItemId &id, Chance &chance) {
    html += "<p><img src=\"" + id.link() + "/photo" + QByteArray::number(chance.below(9));
    html += ".jpg\" width=\"480\" height=\"320\" alt=\"View of " + chance.of(places);
    html += "\" /></p>\n";
}

void appendList(QByteArray &html, Chance &chance) {
    html += "<ul>\n";
    for (int i = 0; i < 3; ++i) {
        html += "<li><b>" + chance.of(places) + "</b>: ";
        html += chance.of(actions) + "</li>\n";
    }
    html += "</ul>\n";
}

void appendQuote(QByteArray &html, Chance &chance) {
    html += "<blockquote>";
    appendSentences(html, 1, chance);
    html += "<br />— " + chance.of(subjects) + "</blockquote>\n";
}

QByteArray description(const ItemId &id, Chance &chance) {
    QByteArray html;
    html.reserve(itemSize);
    appendParagraph(html, chance);
    while (html.size() < descriptionSize) {
        switch (chance.below(6)) {
        case 0:
            appendLink(html, id, chance);
            break;
        case 1:
            appendImage(html, id, chance);
            break;
        case 2:
            appendList(html, chance);
            break;
        case 3:
            appendQuote(html, chance);
            break;
        default:
            appendParagraph(html, chance);
        }
    }
    return html;
}

QByteArray escaped(QByteArray text) {
    return text.replace('&', "&amp;").replace('<', "&lt;").replace('>', "&gt;");
}

QByteArray date(const ItemId &id) {
    const QDateTime first(QDate(2024, 1, 1), QTime(6, 0), Qt::UTC);
    const QDateTime published = first.addSecs(secondsBetweenItems * id.number);
    const QString text = QLocale::c().toString(published, u"ddd, dd MMM yyyy hh:mm:ss");
    return text.toLatin1() + (id.number % 3 == 0 ? " +0000" : " GMT");
}

void appendItem(QByteArray &feed, const ItemId &id) {
    Chance chance((quint64{id.seed} << 32U) + static_cast<quint32>(id.number));
    feed += "<item>\n<title>" + escaped(title(id, chance)) + "</title>\n";
    feed += "<link>" + id.link() + "</link>\n";
    feed += "<guid isPermaLink=\"false\">" + QByteArray::number(id.seed, 16) + '-' +
            QByteArray::number(id.number) + "</guid>\n";
    feed += "<pubDate>" + date(id) + "</pubDate>\n";
    feed += "<category>" + escaped(chance.of(categories)) + "</category>\n<description>";
    if (id.number % 2 == 0)
        feed += "<![CDATA[" + description(id, chance) + "]]>";
    else
        feed += escaped(description(id, chance));
    feed += "</description>\n</item>\n";
}

} // namespace

QByteArray generatedFeed(int items, quint32 seed, int first) {
    QByteArray feed;
    feed.reserve(itemSize * (items + 1));
    feed += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<rss version=\"2.0\">\n<channel>\n"
            "<title>Generated feed " +
            QByteArray::number(seed) + "</title>\n<link>http://feeds.example.org/" +
            QByteArray::number(seed) + "/</link>\n<description>Invented news from " +
            "invented places</description>\n<language>en</language>\n";
    for (int number = first + items - 1; number >= first; --number)
        appendItem(feed, {number, seed});
    feed += "</channel>\n</rss>\n";
    return feed;
}

} // namespace tidebrook
