#include "feed/feed_fetcher.h"
#include "feed_server/feed_server.h"
#include "support/open_store.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

// The time limits are only for servers that use them up: a busy machine is not to fail the rest.
const HttpLimits smallLimits{20s, 20s, 20s, 200'000};
const HttpLimits hastyLimits{300ms, 300ms, 300ms, 200'000};

const QByteArray feed = "<rss><channel><title>Feed</title><item><title>One</title>"
                        "<guid>1</guid></item></channel></rss>";

class FetcherTest : public OpenStore {
protected:
    void SetUp() override {
        OpenStore::SetUp();
        qputenv("TIDEBROOK_HTTP_PORT", QByteArray::number(server_.port()));
    }
    void TearDown() override { qunsetenv("TIDEBROOK_HTTP_PORT"); }

    /// The code that it ends with.
    quint32 fetch(const QString &url, const HttpLimits &limits = smallLimits) {
        FeedFetcher fetcher(device_.root, *device_.registry, limits);
        bool isDone = false;
        if (fetcher.fetch(url, u"ch"_s))
            store().changeAtOnce(
                [&](SqlCommand &command) { isDone = fetcher.parse(command, u"ch"_s, u"C"_s); });
        EXPECT_EQ(isDone, fetcher.error() == 0);
        return fetcher.error();
    }

    QString tempFile() const { return device_.root.filePath(u"\\Temp\\TmpXml.xml"); }

    FeedServer server_;
};

TEST_F(FetcherTest, AGoodDocumentNeedsNoSecondTransport) {
    server_.serve(u"/feed"_s, QByteArray(feed).replace("One", "\xE9"), "text/xml; charset=latin1");
    EXPECT_EQ(fetch(server_.url(u"/feed")), 0u);
    EXPECT_EQ(device_.titles(u"ch"_s), QStringList(u"é"_s)) << "in its charset";
    EXPECT_EQ(server_.requests().size(), 1);
    EXPECT_FALSE(QFile::exists(tempFile()));
}

TEST_F(FetcherTest, ABodyThatIsNoXmlIsFetchedAgainThroughTheFile) {
    server_.serve(u"/feed"_s, "<rss><channel>");
    EXPECT_EQ(fetch(server_.url(u"/feed")), 1002u);
    EXPECT_EQ(contentOf(tempFile()), "<rss><channel>");

    // A server that answers the two transports differently.
    FeedServer direct;
    direct.serve(u"/feed"_s, feed);
    qputenv("TIDEBROOK_HTTP_PORT", QByteArray::number(direct.port()));
    EXPECT_EQ(fetch(server_.url(u"/feed")), 0u);
    EXPECT_EQ(direct.requests().size(), 1);
    EXPECT_EQ(device_.titles(u"ch"_s), QStringList(u"One"_s));
    EXPECT_EQ(QDir(device_.root.filePath(u"\\Temp")).entryList(QDir::Files | QDir::Hidden),
              QStringList(u"TmpXml.xml"_s));
}

TEST_F(FetcherTest, AFailureEndsWithItsCodeAndLeavesTheStoreAlone) {
    struct Case {
        const char *what;
        quint32 error;
        quint32 recorded;
        std::function<void()> answer;
        HttpLimits limits = smallLimits;
    };
    const QString path = u"/feed"_s;
    const auto body = [&](const QByteArray &content) {
        return [this, path, content] { server_.serve(path, content); };
    };
    const Case cases[]{
        {"empty", 1009, 1003, body("")},
        {"UTF-16 mark alone", 1009, 1003, body("\xFE\xFF")},
        {"unchanged, unasked", 1009, 1003, [&] { server_.answerStatus(path, 304); }},
        {"HTML", 1002, 1002, body("<html><p>404<br></html>")},
        {"upper case root", 1003, 1003, body("<RSS><channel/></RSS>")},
        {"Atom", 1003, 1003, body("<feed><entry/></feed>")},
        {"empty channel", 1001, 1001, body("<rss><channel/></rss>")},
        {"hang", 1008, 1008, [&] { server_.hang(path); }, hastyLimits},
        {"reset half way", 1008, 1008, [&] { server_.resetHalfWay(path, feed); }},
        {"too large", 1008, 1008, [&] { server_.endless(path); }},
        {"redirect circle", 1007, 1007, [&] { server_.redirect(path, "/feed"); }},
        {"redirect to a file", 1007, 1007, [&] { server_.redirect(path, "file:///etc/passwd"); }},
    };
    device_.addChannel(u"C"_s, u"ch"_s, {u"kept"_s});
    for (const Case &failure : cases) {
        SCOPED_TRACE(failure.what);
        device_.registry->write(programKey, u"ERRORNO", quint32{0});
        failure.answer();
        EXPECT_EQ(fetch(server_.url(path), failure.limits), failure.error);
        EXPECT_EQ(device_.lastErrorCode(), failure.recorded);
        EXPECT_EQ(device_.titles(u"ch"_s), QStringList(u"kept"_s));
    }
}

} // namespace
} // namespace tidebrook
