#include "platform/html/html_tokens.h"
#include "platform/html/readable_text.h"

#include <gtest/gtest.h>

#include <ctime>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

// Lines are divided by slashes.
QString linesOf(const QString &html) { return readableText(html).joined().replace(u'\n', u'/'); }

TEST(ReadableText, HasWhatAReaderWouldSeeOfThePage) {
    const std::pair<QString, QString> cases[]{
        {u"<p>One\n two</p><p>&nbsp;</p><p>three<br>four<br><br>five"_s,
         u"One two//three/four//five/"_s},
        {u"a<ul><li>one<li><p>two</p><ul><li>deep</ul><ol><li>x<li>y</ol><li>last</ul>b"_s,
         u"a//- one/- two/  - deep/  1. x/  2. y/- last//b/"_s},
        {u"<table><tr><th>A<th>B<tr><td><p>1</p></td><td></td><td><b>3</b> x</table>after"_s,
         u"A | B/1 |  | 3 x//after/"_s},
        {u"<tr><td width=9><td><table><tr><td><p>a</p><p>b</p><td>&nbsp;</table>c"_s,
         u"a//b//c/"_s},
        {u"x<pre>\nif a:\n    <b>b</b>\n\n\tc\n</pre>e"_s, u"x//if a:/    b//\tc//e/"_s},
        {u"<blockquote>said<br>twice</blockquote>then"_s, u"> said/> twice//then/"_s},
        {u"a<img src='http://a/a%20cat.jpg?w=1'>b<img src=p alt='&amp; &lt;b&gt;'>c"_s,
         u"a [picture: a cat.jpg] b [picture: & <b>] c/"_s},
        {u"a<img src=p width=1><img src=data:x,y>z"_s, u"a [picture] z/"_s},
        {u"&eacute;&#x41;&#8364;&#146;&#0;&#xD800;&no; &amp;lt; soft&shy;ly"_s,
         u"\u00e9A\u20ac\u2019\ufffd\ufffd&no; &lt; softly/"_s},
        {u"a<script>if (b < c) d()</script><style>e</style><!-- f > g -->h < i <3"_s,
         u"ah < i <3/"_s},
    };
    for (const auto &[html, lines] : cases)
        EXPECT_EQ(linesOf(html), lines) << html.toStdString();
}

TEST(ReadableText, NumbersEachAddressOnceAndLeavesOutWhatLeadsNowhere) {
    const ReadableText text = readableText(
        u"<a href='http://a/?x=1&amp;y=2'>one</a> <a href=#top>top</a> <a href='javascript:x()'>s"
        u"</a> <a href=http://b/>two <a href='http://a/?x=1&amp;y=2'><img alt=p></a><a href=c></a>"_s);
    EXPECT_EQ(text.joined(), u"one [1] top s two [2] [picture: p] [1]\n");
    EXPECT_EQ(text.links, (QStringList{u"http://a/?x=1&y=2"_s, u"http://b/"_s}));
}

TEST(HtmlTokens, OfBeginningsWithoutAnEndAreAllThere) {
    for (const QString &piece : {u"<!--x>"_s, u"<title>"_s}) {
        const QString html = piece.repeated(200'000); // for minutes, if each is sought to the end
        HtmlTokens tokens(html);
        int tags = 0;
        while (tokens.next()) {
            tags += tokens.kind() == HtmlTokens::Kind::Tag ? 1 : 0;
            tokens.skipContents();
        }
        EXPECT_EQ(tags, piece.startsWith(u"<!") ? 0 : 200'000);
    }
}

TEST(ReadableText, OfAnyDocumentIsThereInAMoment) {
    for (const QString &piece :
         {u"<table><tr><td>"_s, u"<ul><li>x"_s, u"<blockquote>x"_s, u"<a href=\""_s, u"<a x="_s,
          u"<a href=x>y"_s, u"<!--"_s, u"</"_s, u"&"_s, u"&#"_s, u"<pre>\n"_s, u"<script>"_s}) {
        const std::clock_t start = std::clock();
        const QString text = linesOf(u"First."_s + piece.repeated(20'000 / piece.size()));
        EXPECT_TRUE(text.startsWith(u"First.")) << piece.toStdString();
        EXPECT_LT(std::clock() - start, CLOCKS_PER_SEC) << piece.toStdString();
        EXPECT_LT(text.size(), 200'000) << piece.toStdString();
    }
}

} // namespace
} // namespace tidebrook
