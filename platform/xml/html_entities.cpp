#include "platform/xml/html_entities.h"

#include <QHash>
#include <QList>
#include <QStringBuilder>

#include <array>

namespace tidebrook {

namespace {

// Characters that follow one another, by the first one's code point.
struct Run {
    int first;
    const char *names; // with a blank between them
};

constexpr Run runs[] = {
    {160, "nbsp iexcl cent pound curren yen brvbar sect uml copy ordf laquo not shy reg "
          "macr deg plusmn sup2 sup3 acute micro para middot cedil sup1 ordm raquo frac14 "
          "frac12 frac34 iquest Agrave Aacute Acirc Atilde Auml Aring AElig Ccedil Egrave "
          "Eacute Ecirc Euml Igrave Iacute Icirc Iuml ETH Ntilde Ograve Oacute Ocirc Otilde "
          "Ouml times Oslash Ugrave Uacute Ucirc Uuml Yacute THORN szlig agrave aacute "
          "acirc atilde auml aring aelig ccedil egrave eacute ecirc euml igrave iacute "
          "icirc iuml eth ntilde ograve oacute ocirc otilde ouml divide oslash ugrave "
          "uacute ucirc uuml yacute thorn yuml"},
    {338, "OElig oelig"},
    {352, "Scaron scaron"},
    {376, "Yuml"},
    {402, "fnof"},
    {710, "circ"},
    {732, "tilde"},
    {913, "Alpha Beta Gamma Delta Epsilon Zeta Eta Theta Iota Kappa Lambda Mu Nu Xi Omicron "
          "Pi Rho"},
    {931, "Sigma Tau Upsilon Phi Chi Psi Omega"},
    {945, "alpha beta gamma delta epsilon zeta eta theta iota kappa lambda mu nu xi omicron "
          "pi rho sigmaf sigma tau upsilon phi chi psi omega"},
    {977, "thetasym upsih"},
    {982, "piv"},
    {8194, "ensp emsp"},
    {8201, "thinsp"},
    {8204, "zwnj zwj lrm rlm"},
    {8211, "ndash mdash"},
    {8216, "lsquo rsquo sbquo"},
    {8220, "ldquo rdquo bdquo"},
    {8224, "dagger Dagger bull"},
    {8230, "hellip"},
    {8240, "permil"},
    {8242, "prime Prime"},
    {8249, "lsaquo rsaquo"},
    {8254, "oline"},
    {8260, "frasl"},
    {8364, "euro"},
    {8465, "image"},
    {8472, "weierp"},
    {8476, "real"},
    {8482, "trade"},
    {8501, "alefsym"},
    {8592, "larr uarr rarr darr harr"},
    {8629, "crarr"},
    {8656, "lArr uArr rArr dArr hArr"},
    {8704, "forall"},
    {8706, "part exist"},
    {8709, "empty"},
    {8711, "nabla isin notin"},
    {8715, "ni"},
    {8719, "prod"},
    {8721, "sum minus"},
    {8727, "lowast"},
    {8730, "radic"},
    {8733, "prop infin"},
    {8736, "ang"},
    {8743, "and or cap cup int"},
    {8756, "there4"},
    {8764, "sim"},
    {8773, "cong"},
    {8776, "asymp"},
    {8800, "ne equiv"},
    {8804, "le ge"},
    {8834, "sub sup nsub"},
    {8838, "sube supe"},
    {8853, "oplus"},
    {8855, "otimes"},
    {8869, "perp"},
    {8901, "sdot"},
    {8968, "lceil rceil lfloor rfloor"},
    {9001, "lang rang"},
    {9674, "loz"},
    {9824, "spades"},
    {9827, "clubs"},
    {9829, "hearts diams"},
};

constexpr qsizetype longestEntity = 32; // between its ampersand and its semicolon

QHash<QString, QChar> namedCharacters() {
    QHash<QString, QChar> named{{QStringLiteral("quot"), u'"'},
                                {QStringLiteral("amp"), u'&'},
                                {QStringLiteral("apos"), u'\''},
                                {QStringLiteral("lt"), u'<'},
                                {QStringLiteral("gt"), u'>'}};
    for (const Run &run : runs) {
        int character = run.first;
        for (const QString &name : QString::fromLatin1(run.names).split(u' '))
            named.insert(name, QChar(character++));
    }
    return named;
}

// Empty for what is no number.
QString numberedCharacter(QStringView number) {
    static constexpr std::array<char16_t, 32> ofWindows{
        0x20AC, 0xFFFD, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
        0x2039, 0x0152, 0xFFFD, 0x017D, 0xFFFD, 0xFFFD, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
        0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0xFFFD, 0x017E, 0x0178};
    const bool isHex = number.startsWith(u'x') || number.startsWith(u'X');
    bool isNumber = false;
    const uint code = number.sliced(isHex ? 1 : 0).toUInt(&isNumber, isHex ? 16 : 10);
    if (!isNumber)
        return {};
    if (code >= 128 && code < 160)
        return QChar(ofWindows.at(code - 128));
    if (code == 0 || code > QChar::LastValidCodePoint || QChar::isSurrogate(code))
        return QChar(QChar::ReplacementCharacter);
    const auto character = static_cast<char32_t>(code);
    return QString::fromUcs4(&character, 1);
}

// Empty for what is no entity.
QString characterOf(QStringView entity) {
    static const QHash<QString, QChar> named = namedCharacters();
    if (entity.startsWith(u'#'))
        return entity.size() > 1 ? numberedCharacter(entity.sliced(1)) : QString();
    const auto found = named.constFind(entity.toString());
    return found == named.cend() ? QString() : QString(*found);
}

} // namespace

QString withoutHtmlEntities(QStringView text) {
    QString result;
    while (!text.isEmpty()) {
        const qsizetype begin = text.indexOf(u'&');
        result += begin < 0 ? text : text.first(begin);
        if (begin < 0)
            break;
        text = text.sliced(begin);
        const qsizetype end = text.left(longestEntity).indexOf(u';');
        const QString character = end < 0 ? QString() : characterOf(text.sliced(1, end - 1));
        result += character.isEmpty() ? QStringView(u"&") : QStringView(character);
        text = text.sliced(character.isEmpty() ? 1 : end + 1);
    }
    return result;
}

QByteArray htmlEntityDeclarations() {
    QByteArray declarations;
    for (const Run &run : runs) {
        int character = run.first;
        for (const QByteArray &name : QByteArray(run.names).split(' '))
            declarations += "<!ENTITY " + name + " '&#" + QByteArray::number(character++) + ";'>";
    }
    return declarations;
}

} // namespace tidebrook
