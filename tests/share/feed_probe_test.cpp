#include "feed_server/direct_port.h"
#include "share/feed_probe.h"
#include "test_device/test_device.h"

#include <gtest/gtest.h>

#include <tuple>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;
using std::chrono::milliseconds;

class FeedProbeTest : public testing::Test {
protected:
    FeedServer server_;
    const DirectPort directPort_{server_};
    TestDevice device_;
    const QString url_ = u"https://localhost:8443/x"_s;
};

TEST_F(FeedProbeTest, TheFirstKilobyteTellsWhatADocumentIsAndItsTitle) {
    const QByteArray end = "</title>";
    const std::tuple<QByteArray, QString, QString> cases[] = {
        {"<?xml version='1.0'?><RSS><TITLE>no</TITLE><title>Yes</title>", u"<rss"_s, u"Yes"_s},
        {"<!-- <rss --><oPmL>", u"<rss"_s, u"none"_s},
        {"<opml><rss>", u"<opml"_s, u"none"_s},
        {QByteArray(1019, ' ') + "<opml>", u"<opml"_s, u"none"_s},
        {QByteArray(1019, ' ') + "<rss>", u"<rss"_s, u"none"_s},
        {QByteArray(1020, ' ') + "<rss>", u"none"_s, u"none"_s},
        {"", u"none"_s, u"none"_s},
        {"<feed><title>One &amp; 1</title><title>Two</title>", u"none"_s, u"One &amp; 1"_s},
        {"<title><title>Inner</title>", u"none"_s, u"Inner"_s},
        {"<title></title><title>Late</title>", u"none"_s, u"none"_s},
        {"<title>unended", u"none"_s, u"none"_s},
        {"<title>" + QByteArray(60, 'x') + end, u"none"_s, QString(49, u'x')},
        {"<title>" + QByteArray(47, 'x') + "\xE2\x82\xAC" + end, u"none"_s, QString(47, u'x')},
        {QByteArray(1008, ' ') + "<title>T" + end, u"none"_s, u"T"_s},
        {QByteArray(1009, ' ') + "<title>T" + end, u"none"_s, u"none"_s},
    };
    for (const auto &[document, type, title] : cases) {
        server_.serve(u"/x"_s, document);
        const char *shown = document.constData();
        EXPECT_EQ(probeType(*device_.registry, url_).value_or(u"none"_s), type) << shown;
        EXPECT_EQ(probeTitle(*device_.registry, url_).value_or(u"none"_s), title) << shown;
    }
    EXPECT_EQ(device_.lastErrorCode(), 0u) << "a document that does not tell is no error";
}

TEST_F(FeedProbeTest, ATitleThatIsThereIsNotWaitedFor) {
    // The first kilobyte takes longer than the limit of a download.
    server_.trickle(u"/x"_s, "<rss><title>T</title>" + QByteArray(2000, ' '), milliseconds(25));
    EXPECT_EQ(probeTitle(*device_.registry, url_), u"T"_s);
}

} // namespace
} // namespace tidebrook
