#include "kit/page/contrast.h"
#include "kit/page/text_page.h"

#include <QAbstractTextDocumentLayout>
#include <QFile>
#include <QPixmap>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBlock>

#include <gtest/gtest.h>

#include <ctime>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

/// Pieces of bad pages, each used once and as often as the longest text of a feed has room for.
const QString pieces =
    u"<table><tr><td>|<table border=9><tr><td>x<table width=1><tr>|<b>|<div>|<ul>|<ul><li>x|<h1>x|"
    u"<td colspan=20480 rowspan=20480>x|<tr><td colspan=&#57;&#57;&#57;&#57;99999 rowspan=-1>x|"
    u"<ol type=I start=2147483647><li>x|<dl><dd>x|<font size=+7>x|<br>|<p>&nbsp;|<pre>x\n|w|</|"
    u"<hr width=1000000000 size=1000000000>|<a href=x name=y>x|<img width=1000000000 src=x>|&#|"
    u"<p style='font-size:99999pt;line-height:1e9'>x|<p style='font-size:99999em;color:#123'>x|"
    u"<p style='margin:1e9px;padding:1e9px;text-indent:1e9px'>x|<blockquote>x|<script>|<table|"
    u"<p style='margin:-999999999px;text-indent:-999999999px'>x|<!--|<a href=\"x|<style>*{x:y}|"
    u"<div style='float:right;position:absolute;width:1e9px;height:-5px'>x|<a href=\"|<a x=|"
    u"<iframe src=x><object data=x><svg><math><form><input value=x><select><option>|\u0301|"
    u"<meta http-equiv=refresh content='0;url=x'><base href='file:///etc/'>|<p style='a{a{a{a{'>|"
    u"<p style='color:f(f(f(f(f('>|\u202ex\u202a|\ufdd0\ufdd1\ufffc\u2029\u2028\x01\x1b|\xd800|"
    u"<p style='-qt-block-indent:9999999'>|&#0;&#xD800;&#xFDD0;&#xFFFC;&#9999999999;|"
    u"<pre>\u05d0&\ufffd\ufffd\ufffd\ufffd\ufffd\ufffd\ufffd\ufffd\ufffd\ufffd\ufffd\ufffd"
    u"\ufffd\ufffd\ufffd\ufffd\ufffd\ufffd\ufffd\ufffd\ufffd\ufffd\ufffd\ufffd|\x00"_s;

TEST(Page, IsShownInAMomentWhateverAFeedHas) {
    TextPage page(nullptr);
    for (const QString &piece : pieces.split(u'|')) {
        for (const int count : {1, static_cast<int>(3000 / piece.size())}) {
            const std::string name = piece.toStdString() + " x " + std::to_string(count);
            page.resize(count > 1 ? QSize(240, 320) : QSize(480, 640));
            const std::clock_t start = std::clock();
            page.setPage(u"First.<div>"_s + piece.repeated(count) + u"</div>\">--><p>Last."_s);
            page.grab();
            EXPECT_LT(std::clock() - start, CLOCKS_PER_SEC) << name;
            const QString text = page.toPlainText();
            EXPECT_TRUE(text.startsWith(u"First."_s) && text.endsWith(u"Last."_s)) << name;
            EXPECT_EQ(page.horizontalScrollBar()->maximum(), 0) << name;
            EXPECT_LT(page.verticalScrollBar()->maximum(), 150000) << name;
        }
    }
}

TEST(Page, SaysInLinesWhatItCannotDraw) {
    const QList<std::pair<QString, QString>> pages{
        {u"<table><tr><th>A<th>B<tr><td>1<td><b>2</b> x</table>after"_s, u"A | B/1 | 2 x/after"_s},
        {u"<tr> <td> <p>1</p> </td>\n<td><div><div>2</div></div></td></tr>"_s, u"1 | 2"_s},
        {u"<tr><td>1</td><td></td><td>3</td></tr>"_s, u"1 |  | 3"_s},
        {u"<tr><td width=9><td><table><tr><td><p>a</p><p>b</p><td>&nbsp;</table>c"_s, u"a/b/c"_s},
        {u"x<img src='http://a/a%20cat.jpg?w=1'>y<img src=p alt='&amp; <b>'>z"_s,
         u"x a cat.jpg y & <b> z"_s},
        {u"a<img src=p width=1><img src=p height='0'><img src=data:x,y><img>z"_s, u"a z"_s},
        {u"<pre>if a:\n    <b>b</b>\n\n\tc<br>  d\n</pre>e"_s, u"if a:/    b//\tc/  d/e"_s},
    };
    TextPage page(nullptr);
    for (const auto &[html, text] : pages) {
        page.setPage(html);
        EXPECT_EQ(page.toPlainText().replace(u'\n', u'/'), text);
    }
    page.setPage(pages[0].first);
    EXPECT_EQ(page.document()->find(u"B"_s).charFormat().fontWeight(), QFont::Bold);
    EXPECT_NE(page.document()->find(u"x"_s).charFormat().fontWeight(), QFont::Bold);
}

TEST(Page, LoadsNothing) {
    const QTemporaryDir folder;
    const QString picture = folder.filePath(u"p.png"_s);
    QImage red(90, 90, QImage::Format_RGB32);
    red.fill(Qt::red);
    QFile sheet(folder.filePath(u"s.css"_s));
    ASSERT_TRUE(red.save(picture) && sheet.open(QIODevice::WriteOnly));
    ASSERT_TRUE(sheet.write("* { color: #f00 }") > 0 && sheet.flush());
    const QUrl pictureUrl = QUrl::fromLocalFile(picture);
    TextPage page(nullptr);
    page.setPage(u"<a href=x>p.png</a> x<p>words</p>"_s);
    const QImage bare = page.grab().toImage();
    for (const QString &address : {picture, pictureUrl.toString(), u"p.png"_s}) {
        page.setPage(u"<base href='file://%1/'><link rel=stylesheet href='%2'>"
                     u"<style>@import url(%2);</style><img src='%3' width=90><img alt=x>"
                     u"<body background='%3' style='background:url(%3)'><object data='%3'></object>"
                     u"<input type=image src='%3'><p>words</p>"_s.arg(folder.path(),
                                                                      sheet.fileName(), address));
        EXPECT_EQ(page.grab().toImage(), bare) << address.toStdString();
    }
    constexpr int image = QTextDocument::ImageResource;
    EXPECT_TRUE(QTextDocument().resource(image, pictureUrl).isValid()) << "any other opens it";
    EXPECT_FALSE(page.document()->resource(image, pictureUrl).isValid());
    const QSignalSpy left(&page, &TextPage::left);
    page.setSource(QUrl::fromLocalFile(sheet.fileName()));
    EXPECT_TRUE(left.size() == 1 && page.toPlainText().isEmpty());
}

TEST(Page, TellsTargetsExactlyByTapAndByKey) {
    TextPage page(nullptr);
    page.show();
    page.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&page));
    const QStringList markups{u"<a href=\"%1\">the link</a>"_s,
                              u"<a href=\"%1\"><img src=x alt='the link'></a>"_s,
                              u"<img src=\"%1\" alt='the link'>"_s};
    for (const QString &target :
         {u"http://example.org/?a=1&b=%20%7e<\u00e9\"'"_s, u"HTTP://Example.ORG:80/../x"_s, u""_s,
          u"#part"_s, u" a  b "_s, u"http://[bad:%zz"_s, QString(600, u'l')}) {
        for (const QString &markup : markups.first(target.isEmpty() ? 2 : 3)) {
            const QSignalSpy tapped(&page, &TextPage::linkTapped);
            page.setPage(u"<a href=other>other</a><p>"_s + markup.arg(target.toHtmlEscaped()));
            const QRect within = page.cursorRect(page.document()->find(u"the l"_s));
            QTest::mouseClick(page.viewport(), Qt::LeftButton, {}, within.center());
            page.setTextCursor(QTextCursor(page.document()));
            for (const Qt::Key key : {Qt::Key_Tab, Qt::Key_Tab, Qt::Key_Return})
                QTest::keyClick(&page, key);
            EXPECT_EQ(tapped, QList<QVariantList>(2, {target})) << target.toStdString();
        }
    }
}

TEST(Page, IsReadableAtEverySizeOnEveryGround) {
    TextPage page(nullptr);
    page.setPage(
        u"<p>body<p style='font-size:8pt'>eight %1<a href=x>top</a><p><font color=#005091>blue"
        u"<p><font color=gray>gray<p><font color=white>white<p style='color:#000'>black%1"_s.arg(
            u"<p>a word and another word and one more"_s.repeated(60)));
    const auto find = [&page](const QString &text) { return page.document()->find(text); };
    page.verticalScrollBar()->setValue(page.cursorRect(find(u"top"_s)).top());
    for (const int level : {4, 2, 3}) {
        QPalette palette;
        palette.setColor(QPalette::Base, level == 3 ? Qt::white : QColor(30, 31, 34));
        page.setZoom(level);
        page.setPalette(palette);
        EXPECT_DOUBLE_EQ(find(u"body"_s).charFormat().fontPointSize(), 5 + 2 * level);
        EXPECT_DOUBLE_EQ(find(u"eight"_s).charFormat().fontPointSize(), (5 + 2 * level) * 8 / 9.0);
        EXPECT_LT(std::abs(page.cursorRect(find(u"top"_s)).top()), 40) << level;
        for (const QString &text : {u"top"_s, u"blue"_s, u"gray"_s, u"white"_s, u"black"_s}) {
            EXPECT_GE(
                contrastOf(find(text).charFormat().foreground().color(), palette.base().color()),
                4.5)
                << level << text.toStdString();
        }
    }
    const qreal letter = QFontMetricsF(page.document()->defaultFont()).averageCharWidth();
    for (const auto &[width, margin] : {std::pair{240, 12}, {2560, 800}}) {
        page.resize(width, 320);
        page.grab();
        const QRectF text =
            page.document()->documentLayout()->blockBoundingRect(page.document()->lastBlock());
        EXPECT_TRUE(text.left() >= margin && text.width() <= 75 * letter) << width;
        EXPECT_NEAR(text.center().x(), page.viewport()->width() / 2.0, 1);
    }
}

} // namespace
} // namespace tidebrook
