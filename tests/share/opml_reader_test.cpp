#include "feed_server/direct_port.h"
#include "platform/sync/stop_signal.h"
#include "share/opml_reader.h"
#include "test_device/test_device.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

QByteArray list(const QByteArray &body) {
    return "<opml version=\"2.0\"><head><title>T</title></head><body>" + body + "</body></opml>";
}

QByteArray leaf(const QByteArray &text, const QByteArray &type = "rss") {
    return "<outline text=\"" + text + "\" type=\"" + type + "\" xmlUrl=\"u\"/>";
}

QByteArray numbered(int count) {
    QByteArray outlines;
    for (int i = 1; i <= count; ++i)
        outlines += leaf(QByteArray::number(i));
    return list(outlines);
}

class OpmlReaderTest : public testing::Test {
protected:
    /// "name=url" of each channel, or the code of the failure.
    QString read(AddMode mode, const QString &source, const HttpLimits &limits = {}) {
        SetLastErrorCode(*device_.registry, 0);
        OpmlReader reader(device_.root, *device_.registry, limits);
        const bool isOpen = reader.open(mode, source);
        QStringList texts;
        for (const ChannelRecord &channel : reader.takeChannels())
            texts.append(channel.channelName + u'=' + channel.channelLink);
        if (isOpen)
            return texts.join(u'|');
        EXPECT_TRUE(texts.isEmpty()) << "no partial list";
        EXPECT_EQ(device_.lastErrorCode(), reader.error());
        return QString::number(reader.error());
    }

    QString readFile(const QByteArray &content) {
        EXPECT_TRUE(writeFile(file_, content));
        return read(AddMode::ListFromFile, file_);
    }

    FeedServer server_;
    const DirectPort directPort_{server_};
    TestDevice device_;
    const QString file_ = device_.root.filePath(u"list.opml");
};

TEST_F(OpmlReaderTest, ReadsWhatAListOffers) {
    const QByteArray emoji = "\xF0\x9F\x98\x80";
    const struct {
        QByteArray document;
        QString channels;
    } cases[] = {
        {list(leaf("a") + "<outline text=\"F\" xmlUrl=\"f\"><outline text=\"G\">" + leaf("b") +
              "</outline>" + leaf("c") + "</outline>" + leaf("d")),
         u"a=u|b=u|c=u|d=u"_s},
        {list("<outline title='t' text='x' url='2' xmlUrl='1' type='link'/>"
              "<outline title='t' url='2' type='rss'/>"),
         u"x=1|t=2"_s},
        {list(leaf("a", "RSS") + leaf("b") + leaf("c", "atom") + leaf("") +
              "<outline text='no address'/>words<!-- more --><other text='o' type='rss' url='p'/>"),
         u"b=u|o=p"_s},
        {list("<outline text='n' type='rss' xmlUrl=''/>"), u"n="_s},
        {list("<outline text='  n  ' type='rss' xmlUrl=' u   '/>" + leaf("   ")), u"  n= u| =u"_s},
        {list(leaf(QByteArray(60, 'n'))), QString(QString(49, u'n') + u"=u")},
        {list(leaf(QByteArray(48, 'n') + emoji)), QString(QString(48, u'n') + u"=u")},
        {list("<outline text='n' type='rss' url='" + QByteArray(600, 'u') + "'/>"),
         QString(u"n=" + QString(511, u'u'))},
        // refused as a whole
        {list(leaf("a") + "<outline text='n' xmlUrl='u'/>"), u"1003"_s},
        {list(leaf("a") + "<outline type='rss' xmlUrl='u'/>"), u"1003"_s},
        {"<OPML><body/></OPML>", u"1003"_s},
        {"<rss><channel/></rss>", u"1003"_s},
        {"", u"1002"_s},
        {list(leaf("a")).chopped(1), u"1002"_s},
    };
    for (const auto &test : cases)
        EXPECT_EQ(readFile(test.document), test.channels) << test.document.left(200).constData();
}

TEST_F(OpmlReaderTest, TakesNoMoreThanItHasSlotsForAndKeepsNothingOfTheListBefore) {
    const QByteArray begin = "<body>" + leaf("hole", "atom");
    const QByteArray full = numbered(222).replace("<body>", begin);
    ASSERT_TRUE(writeFile(file_, QByteArray(full).replace("</body>", "<o url='u'/></body>")));
    OpmlReader reader(device_.root, *device_.registry);
    ASSERT_TRUE(reader.open(AddMode::ListFromFile, file_)) << "what is behind it is not looked at";
    const QList<ChannelRecord> channels = reader.takeChannels();
    EXPECT_EQ(channels.size(), 222) << "what is no channel takes a slot, too";
    EXPECT_EQ(channels.last().channelName, u"222");
    ASSERT_TRUE(writeFile(file_, numbered(1)));
    ASSERT_TRUE(reader.open(AddMode::ListFromFile, file_));
    EXPECT_EQ(reader.takeChannels().size(), 1);
}

TEST_F(OpmlReaderTest, OnlyAPlainFileOfAReasonableSizeIsRead) {
    const auto readPath = [this](const QString &path) { return read(AddMode::ListFromFile, path); };
    const QString fifo = device_.root.filePath(u"fifo");
    ASSERT_EQ(mkfifo(fifo.toUtf8().constData(), 0600), 0);
    QFile sparse(device_.root.filePath(u"sparse"));
    ASSERT_TRUE(sparse.open(QIODevice::WriteOnly));
    sparse.write(numbered(1));
    ASSERT_TRUE(sparse.resize(32 * 1024 * 1024 + 1));
    for (const QString &path : {fifo, u"/dev/zero"_s, sparse.fileName(), device_.root.path(),
                                device_.root.filePath(u"missing")})
        EXPECT_EQ(readPath(path), u"1002") << path.toUtf8().constData();
    EXPECT_EQ(readPath({}), u"0");
    EXPECT_EQ(readPath(u""_s), u"0");
}

TEST_F(OpmlReaderTest, AListIsDownloadedIntoItsPlaceOrTheFailureTold) {
    server_.serve(u"/list"_s, numbered(2));
    server_.serveGzip(u"/packed"_s, numbered(1));
    server_.redirect(u"/moved"_s, "/list");
    server_.serve(u"/page"_s, "<html><p></html>");
    server_.resetHalfWay(u"/reset"_s, numbered(3));
    server_.endless(u"/endless"_s);
    const auto readUrl = [&](QStringView path) {
        return read(AddMode::ListFromUrl, u"http://localhost" + path, {.bodyBytes = 100'000});
    };
    const QString downloaded = device_.root.filePath(u"\\Temp\\TmpOpml.opml");
    EXPECT_EQ(readUrl(u"/packed"), u"1=u");
    EXPECT_EQ(readUrl(u"/moved"), u"1=u|2=u");
    EXPECT_EQ(contentOf(downloaded), numbered(2));
    EXPECT_EQ(readUrl(u"/reset"), u"1009");
    EXPECT_EQ(readUrl(u"/endless"), u"1009");
    EXPECT_EQ(read(AddMode::ListFromUrl, u"http://"_s), u"1007");
    EXPECT_EQ(contentOf(downloaded), numbered(2)) << "what is not whole does not take its place";
    EXPECT_EQ(readUrl(u"/page"), u"1002");
    QDir(device_.root.filePath(u"\\Temp")).removeRecursively();
    EXPECT_EQ(readUrl(u"/list"), u"1004");
    StopSignal stop;
    stop.raise();
    EXPECT_EQ(read(AddMode::ListFromUrl, u"http://localhost/list"_s, {.stop = &stop}), u"0")
        << "the user knows that he stopped it";
}

} // namespace
} // namespace tidebrook
