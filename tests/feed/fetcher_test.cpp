#include "feed/feed_fetcher.h"
#include "feed_server/feed_server.h"
#include "support/open_store.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;
using std::chrono::milliseconds;

// The time limits are only for servers that use them up: a busy machine is not to fail the rest.
const HttpLimits smallLimits{milliseconds(20'000), milliseconds(20'000), milliseconds(20'000),
                             200'000};
const HttpLimits hastyLimits{milliseconds(300), milliseconds(300), milliseconds(300), 200'000};

const QByteArray feed = "<rss><channel><title>Feed</title><item><title>One</title>"
                        "<guid>1</guid></item></channel></rss>";

class FetcherTest : public OpenStore {
protected:
    void SetUp() override {
        OpenStore::SetUp();
        qputenv("TIDEBROOK_HTTP_PORT", QByteArray::number(server_.port()));
    }
    void TearDown() override { qunsetenv("TIDEBROOK_HTTP_PORT"); }

    struct Outcome {
        bool isDone;
        quint32 error;
        quint32 recorded;
    };

    Outcome fetch(const QString &url, const QString &channel = u"ch"_s,
                  const HttpLimits &limits = smallLimits) {
        FeedFetcher fetcher(device_.root, *device_.registry, limits);
        bool isDone = false;
        if (fetcher.fetch(url, channel))
            store().changeAtOnce(
                [&](SqlCommand &command) { isDone = fetcher.parse(command, channel, u"C"_s); });
        return {isDone, fetcher.error(), device_.lastErrorCode()};
    }

    QString tempFile() const { return device_.root.filePath(u"\\Temp\\TmpXml.xml"); }

    FeedServer server_;
};

TEST_F(FetcherTest, AGoodDocumentNeedsNoSecondTransport) {
    server_.serve(u"/feed"_s, QByteArray(feed).replace("One", "\xE9"), "text/xml; charset=latin1");
    const Outcome outcome = fetch(server_.url(u"/feed"));
    EXPECT_TRUE(outcome.isDone);
    EXPECT_EQ(outcome.error, 0u);
    EXPECT_EQ(device_.titles(u"ch"_s), QStringList(u"é"_s)) << "in its charset";
    EXPECT_EQ(server_.requests().size(), 1);
    EXPECT_FALSE(QFile::exists(tempFile()));
}

TEST_F(FetcherTest, ABodyThatIsNoXmlIsFetchedAgainThroughTheFile) {
    server_.serve(u"/feed"_s, "<rss><channel>");
    const Outcome refused = fetch(server_.url(u"/feed"));
    EXPECT_FALSE(refused.isDone);
    EXPECT_EQ(refused.error, 1002u);
    QFile file(tempFile());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), "<rss><channel>");

    // A server that answers the two transports differently.
    FeedServer direct;
    direct.serve(u"/feed"_s, feed);
    qputenv("TIDEBROOK_HTTP_PORT", QByteArray::number(direct.port()));
    EXPECT_TRUE(fetch(server_.url(u"/feed")).isDone);
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
        {"UTF-8 mark alone", 1009, 1003, body("\xEF\xBB\xBF")},
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
        const Outcome outcome = fetch(server_.url(path), u"ch"_s, failure.limits);
        EXPECT_FALSE(outcome.isDone);
        EXPECT_EQ(outcome.error, failure.error);
        EXPECT_EQ(outcome.recorded, failure.recorded);
        EXPECT_EQ(device_.titles(u"ch"_s), QStringList(u"kept"_s));
    }
}

TEST_F(FetcherTest, NothingIsAskedWithoutAnAddressOrAName) {
    EXPECT_EQ(fetch(QString()).error, 1012u);
    EXPECT_EQ(fetch(server_.url(u"/feed"), u""_s).error, 1012u);
    EXPECT_EQ(fetch(u"file:///etc/passwd"_s).error, 1007u);
    EXPECT_EQ(fetch(u"http://127.0.0.1:1/"_s).error, 1007u);
    EXPECT_TRUE(server_.requests().isEmpty());
}

TEST_F(FetcherTest, WithoutTheTempFolderOrTheServerTheDirectDownloadFails) {
    server_.serve(u"/feed"_s, "no xml");
    QDir temp(device_.root.filePath(u"\\Temp"));
    temp.removeRecursively();
    EXPECT_EQ(fetch(server_.url(u"/feed")).error, 1009u);
    temp.mkpath(u"."_s);
    qputenv("TIDEBROOK_HTTP_PORT", "1");
    EXPECT_EQ(fetch(server_.url(u"/feed")).error, 1009u);
}

} // namespace
} // namespace tidebrook
