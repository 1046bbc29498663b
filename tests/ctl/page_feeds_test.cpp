#include "ctl/ctl_process.h"

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

using PageFeedsTest = CtlTest;

const QByteArray rss = "<link rel=alternate type=application/rss+xml title='News' href=/rss>";
const QByteArray atom = "<LINK REL='Me Alternate' TYPE='application/atom+xml; charset=utf-8' "
                        "TITLE='A &amp;\nB' HREF='atom?a&amp;b'>";
const QByteArray json = "<link rel='alternate' type='application/feed+json' href='//h/feed.json'/>";

TEST_F(PageFeedsTest, AWebPageLeadsToTheFeedThatItNames) {
    struct Case {
        QByteArray page;
        QString options;
        QString stored; // the address, where a channel is added; else words of the failure
        QString printed = {};
        bool readsAll = false;
    };
    const QString url = server_.url(u"/old");
    const QString one = server_.url(u"/rss");
    const QString two = server_.url(u"/dir/atom?a&b");
    const QByteArray html = "\xEF\xBB\xBF <!DOCTYPE html><html><head>";
    const Case cases[]{
        {html + rss, {}, one},
        {"<title>No <link></title>" + rss + rss, {}, one},
        {html + atom + rss + json, {}, one},
        {html + atom + rss, {}, u"1 to 2"_s, u"1\tA & B\t%1\n2\tNews\t%2\n"_s.arg(two, one), true},
        {html + atom + rss, u"--feed 1"_s, two, {}, true},
        {html + atom + rss, u"--feed 3"_s, u"1 to 2"_s,
         u"1\tA & B\t%1\n2\tNews\t%2\n"_s.arg(two, one), true},
        {html + "<base href='http://a.b/c/'>" + atom, {}, u"http://a.b/c/atom?a&b"_s, {}, true},
        {html + json, {}, u"http://h/feed.json"_s, {}, true},
        {html + json + atom, {}, u"OtherFormats 1"_s},
        {html +
             "<link rel=stylesheet type=application/rss+xml href=/x>"
             "<link rel=alternate type=application/rss+xml href='javascript:x'>"
             "<script>\"<link rel=alternate type=application/rss+xml href=/x>\"</script>"
             "<body>" +
             rss,
         {},
         u"names no feed"_s},
        {html + rss, u"--feed 0"_s, url},
        {"<rss><channel><title><html>" + rss + "</html></title></channel></rss>", {}, url},
        {R"({"content_html": "<html>)" + rss + "\"}", {}, url},
        {"<rss/>", u"--feed 1"_s, u"no web page"_s},
    };
    server_.redirect(u"/old"_s, "/dir/page");
    for (const Case &page : cases) {
        SCOPED_TRACE(page.page.constData());
        ok(u"setting OtherFormats %1"_s.arg(page.readsAll ? 1 : 0));
        server_.serve(u"/dir/page"_s, page.page, "text/html");
        const CtlRun added = run(u"add --create C ch %1 %2"_s.arg(page.options, url));
        if (page.stored.startsWith(u"http")) {
            EXPECT_EQ(added.out, u"ch\n") << qPrintable(added.err);
            EXPECT_EQ(ok(u"channels"_s), u"0/0\tch\t%1\tC\n"_s.arg(page.stored));
            ok(u"delete ch"_s);
        } else {
            EXPECT_EQ(added.exitCode, 1);
            EXPECT_TRUE(added.err.contains(page.stored)) << qPrintable(added.err);
            EXPECT_EQ(added.out, page.printed);
            EXPECT_EQ(ok(u"channels"_s), u"");
        }
    }
}

TEST_F(PageFeedsTest, WhereNoPageIsSeenTheAddressIsTaken) {
    server_.answerStatus(u"/sick"_s, 503, "<html><head>" + rss);
    server_.hang(u"/hangs"_s);
    for (const QString &path : {u"/sick"_s, u"/missing"_s}) {
        ok(u"add --create C %1 %2"_s.arg(path, server_.url(path)));
        EXPECT_TRUE(ok(u"channels"_s).contains(server_.url(path)));
    }
    const std::unique_ptr<QProcess> waiting =
        start(u"add --create C hangs "_s + server_.url(u"/hangs"));
    waitFor([this] { return server_.requests().size() == 3; });
    EXPECT_FALSE(run(u"channels"_s).lines().isEmpty()) << "others do not wait for its server";
    waiting->kill();
    waiting->waitForFinished();
}

} // namespace
} // namespace tidebrook
