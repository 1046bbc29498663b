#include "feed/feed_fetcher.h"
#include "feed_server/direct_port.h"
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

const QByteArray feed = "<rss><channel><title>Feed</title><item><title>One</title>"
                        "<guid>1</guid></item></channel></rss>";

class FetcherTest : public OpenStore {
protected:
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

    void setOtherFormats(quint32 value) {
        device_.registry->write(programKey, u"OtherFormats", value);
    }

    QString tempFile() const { return device_.root.filePath(u"\\Temp\\TmpXml.xml"); }

    FeedServer server_;
    const DirectPort directPort_{server_};
};

TEST_F(FetcherTest, AGoodDocumentNeedsNoSecondTransport) {
    server_.serve(u"/feed"_s, QByteArray(feed).replace("One", "\xE9"),
                  "text/xml; charset=\"latin1\"");
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
    const DirectPort otherPort(direct);
    EXPECT_EQ(fetch(server_.url(u"/feed")), 0u);
    EXPECT_EQ(direct.requests().size(), 1);
    EXPECT_EQ(device_.titles(u"ch"_s), QStringList(u"One"_s));
    EXPECT_EQ(QDir(device_.root.filePath(u"\\Temp")).entryList(QDir::Files | QDir::Hidden),
              QStringList(u"TmpXml.xml"_s));

    direct.resetHalfWay(u"/feed"_s, feed);
    FeedFetcher failing(device_.root, *device_.registry, smallLimits);
    EXPECT_FALSE(failing.fetch(server_.url(u"/feed"), u"ch"_s));
    EXPECT_EQ(failing.error(), 1009U);
    EXPECT_NE(failing.detail(), u"") << "which the log tells";
}

TEST_F(FetcherTest, OtherFormatsAreReadFromTheMomentTheyAreAskedFor) {
    const QByteArray atom =
        "<feed xmlns='http://www.w3.org/2005/Atom'><entry><title>%1</title><link href='one?a'/>"
        "<id>%1</id><content type='xhtml'><h:div xmlns:h='http://www.w3.org/1999/xhtml'><h:p>"
        "<h:b>It</h:b> <h:i>is</h:i>\n<h:a href='b&amp;c'>1&lt;2</h:a>,<h:br/><h:br>so</h:br>"
        "</h:p></h:div></content></entry></feed>";
    server_.redirect(u"/old"_s, "/blog/feed");
    server_.serve(u"/blog/feed"_s, QByteArray(atom).replace("%1", "1"));
    server_.serve(u"/broken"_s, "<feed>");
    FeedServer direct;
    direct.serve(u"/broken"_s, QByteArray(atom).replace("%1", "2"));
    const DirectPort otherPort(direct);
    for (const QString &path : {u"/old"_s, u"/broken"_s}) {
        SCOPED_TRACE(qPrintable(path));
        for (const quint32 value : {0U, 1U, 0U}) {
            setOtherFormats(value);
            const QString address = server_.url(path).replace(u"://"_s, u"://me:secret@"_s);
            EXPECT_EQ(fetch(address), value == 1 ? 0U : 1003U);
        }
        const QString base = server_.url(path == u"/old" ? u"/blog/" : u"/");
        const ArticleExtract article = detail(u"ch"_s, path == u"/old" ? u"1"_s : u"2"_s);
        EXPECT_EQ(article.itemLink, base + u"one?a");
        EXPECT_EQ(article.description, u"<p><b>It</b> <i>is</i>\n<a href=\"" + base +
                                           u"b&amp;c\">1&lt;2</a>,<br><br>so</br></p>");
    }
}

TEST_F(FetcherTest, DocumentsOfEveryFormatAreStoredByTheirOwnRules) {
    const struct {
        QString file;
        quint32 strictCode;   // without the other formats
        quint32 code;         // with them
        QStringList articles; // guid, link, day and title; BASE is the server
    } documents[]{
        {u"atom.xml"_s,
         1003,
         0,
         {u"tag:x,2026:it%27s/1 BASE/blog/2026/03/tides.html?a=1&b=2 2026-03-07 Tides & tables"_s,
          u"urn:2 http://y/Two 2026-02-28 a < b & c"_s,
          u"urn:5 DEFAULT 2026-01-01 No title at all, but a text"_s,
          u"urn:3 BASE/blog/#three  Only a title"_s}},
        {u"atom03.xml"_s,
         1003,
         0,
         {u"tag:y,2004:1 http://y/1 2004-02-29 First"_s,
          u"tag:y,2004:2 BASE/2 2004-02-01 Second"_s}},
        {u"feed.json"_s,
         1002,
         0,
         {u"1 BASE/one 2026-03-07 One & <two>"_s, u"2 http://y/2 2026-02-03 A note of a < b"_s,
          u"http://x/it%27s DEFAULT  \U0001F600 \uFFFD"_s, u"5 DEFAULT  A late word"_s,
          u"6 BASE/six  BASE/six"_s, u"7 DEFAULT  7"_s}},
        {u"rss090.xml"_s,
         1003,
         0,
         {u"http://x/1 http://x/1  One"_s, u"http://x/2 http://x/2  Two"_s}},
        {u"rss10.xml"_s,
         1003,
         0,
         {u"http://x/1 http://x/1?from=rss 2003-12-13 One & only"_s,
          u"BASE/2 BASE/2 2002-09-07 Two"_s}},
        {u"other.json"_s, 1002, 1003, {}},
        {u"broken.json"_s, 1002, 1002, {}},
        {u"latin.xml"_s, 0, 0, {u"g1 http://x/1 2008-03-07 Café"_s}},
    };
    for (const auto &document : documents) {
        SCOPED_TRACE(qPrintable(document.file));
        store().changeAtOnce([](SqlCommand &command) { command.execute("DELETE FROM RSSRecord"); });
        const QString path = u'/' + document.file;
        server_.serve(path, contentOf(QStringLiteral(FEED_DOCUMENTS) + path));
        for (const quint32 value : {1U, 0U}) { // the second finds what the first has stored
            setOtherFormats(value);
            EXPECT_EQ(fetch(server_.url(path)), value == 1 ? document.code : document.strictCode);
        }
        QStringList stored;
        store().VisitArticles(
            {.channel = u"ch"_s, .category = {}}, [&](const ListedArticle &article) {
                stored.append(QStringList{article.guid, article.itemLink, article.publicationDate,
                                          article.title.simplified()}
                                  .join(u' '));
                return true;
            });
        QStringList expected = document.articles;
        EXPECT_EQ(stored, expected.replaceInStrings(u"BASE"_s, server_.url(u"")));
    }
}

TEST_F(FetcherTest, WhatIsNoFeedOfAnyFormatKeepsItsCode) {
    const auto nested = [](const QByteArray &begin, int depth,
                           const QByteArray &end) -> QByteArray {
        return begin.repeated(depth) + end.repeated(depth);
    };
    const auto jsonFeed = [](const QByteArray &item) {
        return QByteArray(R"({"version":"https://jsonfeed.org/version/1","items":[)" + item + "]}");
    };
    const std::tuple<QByteArray, quint32> cases[]{
        {"<html><p>404<br></html>", 1002},
        {"<RSS><channel/></RSS>", 1003},
        {"<feed xmlns='http://x/'><entry/></feed>", 1003},
        {"<rdf:RDF><rdf:li/></rdf:RDF>", 1003},
        {jsonFeed(R"({"title": "neither id nor url"})"), 1001},
        // What would take too much memory, or too deep a stack.
        {jsonFeed(nested("[", 2000, "]")), 1002},
        {jsonFeed(QByteArray("1,").repeated(1'000'000) + '1'), 1002},
        {"<feed>" + nested("<a>", 1000, "</a>") + "</feed>", 1002},
        {"<feed><entry><id>1</id><content type='xhtml'>" + nested("<b>", 900, "</b>") +
             "</content></entry></feed>",
         0},
    };
    setOtherFormats(1);
    for (const auto &[document, code] : cases) {
        SCOPED_TRACE(document.left(80).constData());
        server_.serve(u"/feed"_s, document);
        EXPECT_EQ(fetch(server_.url(u"/feed"), {}), code);
    }
}

} // namespace
} // namespace tidebrook
