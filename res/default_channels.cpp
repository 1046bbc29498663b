#include "res/default_channels.h"

#include <QStringEncoder>

namespace tidebrook {

namespace {

constexpr char16_t channels[] =
    u"BBC News - World\thttps://feeds.bbci.co.uk/news/world/rss.xml\tNews\r\n"
    u"NPR News\thttps://feeds.npr.org/1001/rss.xml\tNews\r\n"
    u"The Guardian - World\thttps://www.theguardian.com/world/rss\tNews\r\n"
    u"Ars Technica\thttps://feeds.arstechnica.com/arstechnica/index\tTechnology\r\n"
    u"Hacker News\thttps://news.ycombinator.com/rss\tTechnology\r\n"
    u"Phoronix\thttps://www.phoronix.com/rss.php\tTechnology\r\n"
    u"NASA\thttps://www.nasa.gov/feed/\tScience\r\n"
    u"Quanta Magazine\thttps://www.quantamagazine.org/feed/\tScience\r\n";

} // namespace

QByteArray defaultChannelsFile() {
    QStringEncoder toUtf16(QStringConverter::Utf16LE, QStringConverter::Flag::WriteBom);
    return toUtf16.encode(QStringView(channels));
}

} // namespace tidebrook
