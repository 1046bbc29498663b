#include "platform/xml_document.h"
#include "support/text_printing.h"

#include <QList>
#include <QStringEncoder>
#include <QStringList>

#include <gtest/gtest.h>

#include <ostream>

namespace tidebrook {
namespace {

// The document in brackets, for comparing at a glance: name[child child], texts in quotes.
QString sketch(XmlNode node) {
    if (node.name() == "#text")
        return u'"' + node.text() + u'"';
    QStringList children;
    for (XmlNode child = node.firstChild(); !child.isNull(); child = child.nextSibling())
        children.append(sketch(child));
    EXPECT_EQ(children.size(), node.childCount());
    return QString::fromUtf8(node.name().data(), static_cast<qsizetype>(node.name().size())) +
           u'[' + children.join(u' ') + u']';
}

QString sketchOf(QByteArrayView bytes, QByteArrayView charset = {}) {
    const auto document = XmlDocument::parse(bytes, charset);
    return document ? sketch(document->root()) : QStringLiteral("refused");
}

TEST(Xml, KeepsElementsAndTextsAndNothingElse) {
    EXPECT_EQ(sketchOf("<?xml version='1.0'?><!-- c --><a>\n <b>x</b> <!-- c -->\n<?pi y?>"
                       "<c:d e='f'> two <![CDATA[<b>]]></c:d><g/></a>\n"),
              QStringLiteral("a[b[\"x\"] c:d[\"two\" \"<b>\"] g[]]"));
    EXPECT_EQ(sketchOf("<a>one<!-- c -->two<b> </b>three</a>"),
              QStringLiteral("a[\"one\" \"two\" b[] \"three\"]"));
}

TEST(Xml, TextIsThatOfAllDescendantsTrimmed) {
    const auto document = XmlDocument::parse("<a>\n one <b>two <c>&amp;</c></b> <![CDATA[<3> ]]>"
                                             "\n<d/></a>");
    ASSERT_TRUE(document);
    EXPECT_EQ(document->root().text(), QStringLiteral("one two &<3>"));
    EXPECT_EQ(document->root().firstChild().nextSibling().text(), QStringLiteral("two &"));
}

TEST(Xml, AttributesAreFoundByName) {
    const auto document = XmlDocument::parse("<a t='1' x:t='&quot;2&#233;' e=''/>");
    ASSERT_TRUE(document);
    EXPECT_EQ(document->root().attribute("x:t"), QStringLiteral("\"2é"));
    EXPECT_TRUE(document->root().attribute("e").isEmpty());
    EXPECT_FALSE(document->root().attribute("e").isNull());
    EXPECT_TRUE(document->root().attribute("missing").isNull());
}

TEST(Xml, DocumentsThatAreNotWellFormedOrTryToReachOutAreRefused) {
    const QByteArray deep = QByteArray("<a>").repeated(5000) + QByteArray("</a>").repeated(5000);
    QByteArray laughs = "<!DOCTYPE a [<!ENTITY l0 \"0123456789\">";
    for (int i = 1; i < 12; ++i) {
        const QByteArray lower = "&l" + QByteArray::number(i - 1) + ';';
        laughs += "<!ENTITY l" + QByteArray::number(i) + " \"" + lower.repeated(10) + "\">";
    }
    laughs += "]><a>&l11;</a>";
    QByteArray wide = "<a";
    for (int i = 0; i < 2000; ++i)
        wide += " a" + QByteArray::number(i) + "=''";
    wide += "/>";
    const QList<QByteArray> documents{"",
                                      " ",
                                      "text",
                                      "<a>",
                                      "<a></b>",
                                      "<a/><b/>",
                                      "<a>&nbsp;</a>",
                                      "<a b=c/>",
                                      "<a>\x01</a>",
                                      QByteArray("<a>\0</a>", 8),
                                      "<a>&#0;</a>",
                                      "<a>\xFF</a>",
                                      "<a>]]></a>",
                                      "<?xml version='1.0' encoding='no-such'?><a/>",
                                      "<?xml version='1.0' encoding='UTF-16'?><a/>",
                                      "<?xml version='1.0' encoding='UTF-8//IGNORE'?><a/>",
                                      deep,
                                      wide,
                                      laughs};
    for (const QByteArray &document : documents)
        EXPECT_EQ(sketchOf(document), QStringLiteral("refused")) << document.left(60).constData();
}

TEST(Xml, ExternalEntitiesAreNeverRead) {
    EXPECT_EQ(sketchOf("<!DOCTYPE a [<!ENTITY f SYSTEM 'file:///etc/passwd'>]><a>x&f;y</a>"),
              QStringLiteral("a[\"xy\"]"));
    EXPECT_EQ(sketchOf("<!DOCTYPE a SYSTEM 'http://127.0.0.1:1/x.dtd'><a>x</a>"),
              QStringLiteral("a[\"x\"]"));
}

struct EncodingCase {
    const char *name;
    QByteArray bytes;
    QByteArray charset;
    QString text;
};

class XmlEncoding : public testing::TestWithParam<EncodingCase> {};

TEST_P(XmlEncoding, IsToldByMarkDeclarationAndContentTypeInThisOrder) {
    EXPECT_EQ(sketchOf(GetParam().bytes, GetParam().charset), u"a[\"" + GetParam().text + u"\"]");
}

QByteArray encoded(QStringConverter::Encoding encoding, const QString &text) {
    return QStringEncoder(encoding, QStringConverter::Flag::WriteBom).encode(text);
}

INSTANTIATE_TEST_SUITE_P(
    All, XmlEncoding,
    testing::Values(
        EncodingCase{"Utf8", "<a>\xC3\xA9</a>", "", QStringLiteral("é")},
        EncodingCase{"Utf8Mark", "\xEF\xBB\xBF<a>\xC3\xA9</a>", "latin1", QStringLiteral("é")},
        EncodingCase{"Latin1Declared", "<?xml version='1.0' encoding='ISO-8859-1'?><a>\xE9</a>", "",
                     QStringLiteral("é")},
        EncodingCase{"DeclarationBeatsContentType",
                     "<?xml version='1.0' encoding=\"windows-1251\"?><a>\xE9</a>", "ISO-8859-1",
                     QStringLiteral("й")},
        EncodingCase{"ContentType", "<a>\xE9</a>", "ISO-8859-1", QStringLiteral("é")},
        EncodingCase{"UnknownContentType", "<a>\xC3\xA9</a>", "no-such", QStringLiteral("é")},
        EncodingCase{"ShiftJis", "<?xml version='1.0' encoding='Shift_JIS'?><a>\x93\xFA</a>", "",
                     QStringLiteral("日")},
        EncodingCase{"Utf16", encoded(QStringConverter::Utf16LE, QStringLiteral("<a>é😀</a>")), "",
                     QStringLiteral("é😀")},
        EncodingCase{"Utf16BigDeclaredOtherwise",
                     encoded(QStringConverter::Utf16BE,
                             QStringLiteral("<?xml version='1.0' encoding='utf-8'?><a>é</a>")),
                     "", QStringLiteral("é")}),
    [](const auto &test) { return std::string(test.param.name); });

} // namespace
} // namespace tidebrook
