#include "feed/feed_fetcher.h"
#include "feed_server/feed_server.h"
#include "support/test_device.h"

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

class FetcherTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(device_.store->Open());
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
            device_.store->changeAtOnce(
                [&](SqlCommand &command) { isDone = fetcher.parse(command, channel, u"C"_s); });
        return {isDone, fetcher.error(), device_.lastErrorCode()};
    }

    QString tempFile() const { return device_.root.filePath(u"\\Temp\\TmpXml.xml"); }

    FeedServer server_;
    TestDevice device_;
};

TEST_F(FetcherTest, AGoodDocumentNeedsNoSecondTransport) {
    server_.serve(u"/feed"_s, feed);
    const Outcome outcome = fetch(server_.url(u"/feed"));
    EXPECT_TRUE(outcome.isDone);
    EXPECT_EQ(outcome.error, 0u);
    EXPECT_EQ(device_.titles(u"ch"_s), QStringList(u"One"_s));
    EXPECT_EQ(server_.requests().size(), 1);
    EXPECT_EQ(server_.requests()[0].header("Content-Type"), "text/xml");
    EXPECT_FALSE(QFile::exists(tempFile()));
}

TEST_F(FetcherTest, TheContentTypesCharsetCounts) {
    server_.serve(u"/feed"_s, QByteArray(feed).replace("One", "\xE9"), "text/xml; charset=latin1");
    EXPECT_TRUE(fetch(server_.url(u"/feed")).isDone);
    EXPECT_EQ(device_.titles(u"ch"_s), QStringList(u"é"_s));
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

struct CodeCase {
    const char *what;
    quint32 error;
    quint32 recorded;
    std::function<void(FeedServer &)> answer;
    HttpLimits limits = smallLimits;
};

class FetchFailure : public FetcherTest, public testing::WithParamInterface<CodeCase> {};

TEST_P(FetchFailure, EndsWithItsCodeAndLeavesTheStoreAlone) {
    device_.addChannel(u"C"_s, u"ch"_s, {u"kept"_s});
    GetParam().answer(server_);
    const Outcome outcome = fetch(server_.url(u"/feed"), u"ch"_s, GetParam().limits);
    EXPECT_FALSE(outcome.isDone);
    EXPECT_EQ(outcome.error, GetParam().error);
    EXPECT_EQ(outcome.recorded, GetParam().recorded);
    EXPECT_EQ(device_.titles(u"ch"_s), QStringList(u"kept"_s));
}

std::function<void(FeedServer &)> body(const QByteArray &content) {
    return [content](FeedServer &server) { server.serve(u"/feed"_s, content); };
}

QByteArray billionLaughs() {
    QByteArray text = "<!DOCTYPE rss [<!ENTITY l0 \"lolololol\">";
    for (int i = 1; i < 10; ++i) {
        const QByteArray lower = "&l" + QByteArray::number(i - 1) + ';';
        text += "<!ENTITY l" + QByteArray::number(i) + " \"" + lower.repeated(10) + "\">";
    }
    return text + "]><rss><channel><title>&l9;</title></channel></rss>";
}

INSTANTIATE_TEST_SUITE_P(
    All, FetchFailure,
    testing::Values(
        CodeCase{"EmptyBody", 1009, 1003, body("")},
        CodeCase{"Utf8MarkAlone", 1009, 1003, body("\xEF\xBB\xBF")},
        CodeCase{"Utf16MarkAlone", 1009, 1003, body("\xFE\xFF")},
        CodeCase{"UnchangedUnasked", 1009, 1003,
                 [](FeedServer &server) { server.answerStatus(u"/feed"_s, 304); }},
        CodeCase{"Html", 1002, 1002, body("<html><p>404<br></html>")},
        CodeCase{"CutOff", 1002, 1002, body(feed.first(40))},
        CodeCase{"BillionLaughs", 1002, 1002, body(billionLaughs())},
        CodeCase{"WrongEncoding", 1002, 1002,
                 body("<rss><channel><title>\xE9</title></channel></rss>")},
        CodeCase{"UpperCaseRoot", 1003, 1003, body("<RSS><channel/></RSS>")},
        CodeCase{"Atom", 1003, 1003, body("<feed><entry/></feed>")},
        CodeCase{"NoChannel", 1001, 1001, body("<rss/>")},
        CodeCase{"EmptyChannel", 1001, 1001, body("<rss><channel/></rss>")},
        CodeCase{"Hang", 1008, 1008, [](FeedServer &server) { server.hang(u"/feed"_s); },
                 hastyLimits},
        CodeCase{"ResetHalfWay", 1008, 1008,
                 [](FeedServer &server) { server.resetHalfWay(u"/feed"_s, feed); }},
        CodeCase{"TooLarge", 1008, 1008, [](FeedServer &server) { server.endless(u"/feed"_s); }},
        CodeCase{"RedirectCircle", 1007, 1007,
                 [](FeedServer &server) { server.redirect(u"/feed"_s, "/feed"); }},
        CodeCase{"RedirectToFile", 1007, 1007,
                 [](FeedServer &server) { server.redirect(u"/feed"_s, "file:///etc/passwd"); }}),
    [](const auto &test) { return std::string(test.param.what); });

TEST_F(FetcherTest, NothingIsAskedWithoutAnAddressOrAName) {
    EXPECT_EQ(fetch(QString()).error, 1012u);
    EXPECT_EQ(fetch(server_.url(u"/feed"), u""_s).error, 1012u);
    EXPECT_EQ(fetch(u"file:///etc/passwd"_s).error, 1007u);
    EXPECT_EQ(fetch(u"http://127.0.0.1:1/"_s).error, 1007u);
    EXPECT_TRUE(server_.requests().isEmpty());
}

TEST_F(FetcherTest, AFailingDirectDownloadIsAFailedDownload) {
    server_.serve(u"/feed"_s, "no xml");
    qputenv("TIDEBROOK_HTTP_PORT", "1");
    EXPECT_EQ(fetch(server_.url(u"/feed")).error, 1009u);
}

TEST_F(FetcherTest, WithoutTheTempFolderTheDownloadFails) {
    server_.serve(u"/feed"_s, "no xml");
    QDir(device_.root.filePath(u"\\Temp")).removeRecursively();
    EXPECT_EQ(fetch(server_.url(u"/feed")).error, 1009u);
}

} // namespace
} // namespace tidebrook
