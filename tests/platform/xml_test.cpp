#include "platform/xml/xml_document.h"

#include <QList>
#include <QStringEncoder>
#include <QStringList>

#include <gtest/gtest.h>

#include <tuple>

namespace tidebrook {
namespace {

// The document in brackets, for comparing at a glance: name[child child], texts in quotes.
QString sketch(XmlNode node) {
    if (node.name() == "#text")
        return u'"' + QString::fromUtf8(node.text()) + u'"';
    QStringList children;
    for (XmlNode child = node.firstChild(); !child.isNull(); child = child.nextSibling())
        children.append(sketch(child));
    return QString::fromUtf8(node.name()) + u'[' + children.join(u' ') + u']';
}

QString sketchOf(const QByteArray &bytes, QByteArrayView charset = {}) {
    const auto document = XmlDocument::parse({bytes}, charset);
    return document ? sketch(document->root()) : QStringLiteral("refused");
}

TEST(Xml, KeepsElementsAndTextsAndNothingElse) {
    EXPECT_EQ(sketchOf("<?xml version='1.0'?><!-- c --><a>\n <b>x</b> <!-- c -->\n<?pi y?>"
                       "<c:d e='f'> two <![CDATA[<b>]]></c:d><g/></a>\n"),
              QStringLiteral("a[b[\"x\"] c:d[\"two\" \"<b>\"] g[]]"));
    EXPECT_EQ(sketchOf("<a>one<!-- c -->two<b> </b>three</a>"),
              QStringLiteral("a[\"one\" \"two\" b[] \"three\"]"));
}

TEST(Xml, TextIsThatOfAllDescendantsTrimmedAndAttributesAreFoundByName) {
    const auto document =
        XmlDocument::parse({"<a t='1' x:t='&quot;2&#233;' e=''>\n one "
                            "<b>two <c>&amp;</c></b> <![CDATA[<3> ]]>\n<d/></a>"});
    ASSERT_TRUE(document);
    const XmlNode root = document->root();
    EXPECT_EQ(root.text(), "one two &<3>");
    EXPECT_EQ(root.firstChild().nextSibling().text(), "two &");
    EXPECT_EQ(root.attribute("x:t"), QStringLiteral("\"2é"));
    EXPECT_TRUE(root.attribute("e").isEmpty() && !root.attribute("e").isNull());
    EXPECT_TRUE(root.attribute("missing").isNull());
}

QByteArray numbered(const QByteArray &before, int count, const QByteArray &after) {
    QByteArray text;
    for (int i = 0; i < count; ++i)
        text += before + QByteArray::number(i) + after;
    return text;
}

// Ten entities, each ten times the one before.
QByteArray growing(const QByteArray &innermost, const QByteArray &use) {
    QByteArray text = "<!DOCTYPE a [<!ENTITY l0 \"" + innermost + "\">";
    for (int i = 1; i < 10; ++i) {
        const QByteArray lower = "&l" + QByteArray::number(i - 1) + ';';
        text += "<!ENTITY l" + QByteArray::number(i) + " \"" + lower.repeated(10) + "\">";
    }
    return text + "]>" + use;
}

TEST(Xml, DocumentsThatAreNotWellFormedOrCostTooMuchAreRefused) {
    const QList<QByteArray> documents{
        "",
        "<a></b>",
        "<a>&nbsp;</a>",
        "<a>\x01</a>",
        QByteArray("<a>\0</a>", 8),
        "<a>&#0;</a>",
        "<a>\xFF</a>",
        "<a>]]></a>",
        "<?xml version='1.0' encoding='no-such'?><a/>",
        "<?xml version='1.0' encoding='UTF-16'?><a/>",
        "<?xml version='1.0' encoding='UTF-8//IGNORE'?><a/>",
        QByteArray("<a>").repeated(5000) + QByteArray("</a>").repeated(5000),
        "<a>" + QByteArray("<b/>").repeated(1'100'000) + "</a>",
        "<a>" + numbered("<b", 20'000, "/>") + "</a>",
        "<a>" + numbered("<b c", 20'000, "=''/>") + "</a>",
        "<a><" + QByteArray(2000, 'n') + "/></a>",
        "<a" + numbered(" b", 2000, "=''") + "/>",
        "<a" + numbered(" b", 300'000, "=''") + "/>",
        "<!DOCTYPE a [<!ATTLIST a" + numbered(" b", 2000, " CDATA ''") + ">]><a/>",
        "<a>" + QByteArray("<b" + numbered(" b", 900, "=''") + "/>").repeated(1200) + "</a>",
        "<a><!--" + QByteArray(3'000'000, '-').replace("--", "- ") + "--></a>",
        "<!DOCTYPE a [" + numbered("<!ENTITY e", 100'000, " ''>") + "]><a/>",
        growing("0123456789", "<a>&l9;</a>"),
        growing("0123456789", "<a b='&l9;'/>"),
        growing("<!-- c -->", "<a>&l7;</a>"),
        growing("  ", "<a>&l7;</a>"),
        "<a>" + QByteArray(50'400'000, 'x') + "</a>",
    };
    for (const QByteArray &document : documents)
        EXPECT_EQ(sketchOf(document), QStringLiteral("refused")) << document.left(60).constData();
}

QByteArray encoded(QStringConverter::Encoding encoding, const QString &text) {
    return QStringEncoder(encoding, QStringConverter::Flag::WriteBom).encode(text);
}

TEST(Xml, ALargeDocumentIsReadWholeInAnyEncodingFromPiecesThatEndAnywhere) {
    QString text = QStringLiteral("<?xml version='1.0' encoding='%1'?><a>");
    for (int i = 0; i < 40'000; ++i)
        text += QStringLiteral("<b c='%1'>x日é%1</b>").arg(i);
    text += u"</a>";
    for (const QByteArray &bytes :
         {text.arg(u"UTF-8").toUtf8(), encoded(QStringConverter::Utf16LE, text.arg(u"UTF-16"))}) {
        QByteArrayList pieces;
        for (qsizetype at = 0; at < bytes.size(); at += 99'991)
            pieces.append(bytes.mid(at, 99'991));
        const auto document = XmlDocument::parse(pieces);
        ASSERT_TRUE(document);
        int i = 0;
        for (XmlNode child = document->root().firstChild(); !child.isNull();
             child = child.nextSibling(), ++i) {
            ASSERT_EQ(child.text(), QByteArray("x日é" + QByteArray::number(i)));
            ASSERT_EQ(child.attribute("c"), QString::number(i));
        }
        EXPECT_EQ(i, 40'000);
    }
}

TEST(Xml, ADocumentThatNamesAnExternalDtdKeepsItsEntitiesAndReadsNoFile) {
    const QByteArray named = "<!DOCTYPE a PUBLIC 'p' 'http://127.0.0.1:1/x.dtd'>";
    const QByteArray body = "<a b='&eacute;&foo;&quot;&amp;lt;'>caf&eacute;&hearts;&nbsp;&foo;"
                            "&amp;eacute;<![CDATA[&eacute;&bar;]]></a>";
    const auto document = XmlDocument::parse({named + body});
    ASSERT_TRUE(document);
    EXPECT_EQ(document->root().text(), "café♥\u00A0&foo;&eacute;&eacute;&bar;");
    EXPECT_EQ(document->root().attribute("b"), QStringLiteral("é&foo;\"&lt;"));
    const QList<std::pair<QByteArray, QString>> documents{
        {"<!DOCTYPE a SYSTEM 'x' [<!ENTITY eacute 'E'>]><a>&eacute;&Omega;</a>",
         QStringLiteral("a[\"EΩ\"]")},
        {"<!DOCTYPE a [<!ENTITY % h PUBLIC 'p' 'x'> %h;]><a>&eacute;&foo;</a>",
         QStringLiteral("a[\"é&foo;\"]")},
        {"<!DOCTYPE a [<!ENTITY % h SYSTEM 'x'>" + QByteArray("%h;").repeated(300) +
             "]><a>&eacute;</a>",
         QStringLiteral("a[\"é\"]")},
        {"<?xml version='1.0' encoding='ISO-8859-1'?>" + named + "<a>&\xE9t\xE9;&thetasym;</a>",
         QStringLiteral("a[\"&été;ϑ\"]")},
        {"<!DOCTYPE a [<!ENTITY e 'E'>]><a>&e;&eacute;</a>", QStringLiteral("refused")},
        {"<!DOCTYPE a><a>&eacute;</a>", QStringLiteral("refused")},
        {"<!DOCTYPE a [<!ENTITY f SYSTEM 'file:///etc/passwd'>]><a>x&f;y</a>",
         QStringLiteral("a[\"xy\"]")},
    };
    for (const auto &[bytes, expected] : documents)
        EXPECT_EQ(sketchOf(bytes), expected) << bytes.constData();
}

TEST(Xml, TheEncodingIsToldByMarkDeclarationAndContentTypeInThisOrder) {
    const std::tuple<QByteArray, QByteArray, QString> cases[] = {
        {"<a>\xC3\xA9</a>", "", QStringLiteral("é")},
        {"\xEF\xBB\xBF<a>\xC3\xA9</a>", "latin1", QStringLiteral("é")},
        {"<?xml version='1.0' encoding='ISO-8859-1'?><a>\xE9\x80</a>", "", QStringLiteral("é€")},
        {"<?xml version='1.0' encoding='latin1'?><a>\xE9\x81</a>", "", QStringLiteral("é\u0081")},
        {"<?xml version='1.0' encoding=\"windows-1251\"?><a>\xE9</a>", "ISO-8859-1",
         QStringLiteral("й")},
        {"<a>\xE9</a>", "ISO-8859-1", QStringLiteral("é")},
        {"<a>\xC3\xA9</a>", "no-such", QStringLiteral("é")},
        {"<?xml version='1.0' encoding='Shift_JIS'?><a>\x93\xFA\x87\x40</a>", "",
         QStringLiteral("日①")},
        {"<?xml version='1.0' encoding='GB2312'?><a>\xE9\x46</a>", "", QStringLiteral("镕")},
        {"<a>\x8C\x63</a>", "euc-kr", QStringLiteral("똠")},
        {encoded(QStringConverter::Utf16LE, QStringLiteral("<a>é😀</a>")), "", QStringLiteral("é😀")},
        {encoded(QStringConverter::Utf16BE,
                 QStringLiteral("<?xml version='1.0' encoding='utf-8'?><a>é</a>")),
         "", QStringLiteral("é")},
    };
    for (const auto &[bytes, charset, text] : cases)
        EXPECT_EQ(sketchOf(bytes, charset), u"a[\"" + text + u"\"]") << bytes.constData();
}

} // namespace
} // namespace tidebrook
