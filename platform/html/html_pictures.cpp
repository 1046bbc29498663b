#include "platform/html/html_pictures.h"

#include <QUrl>

#include <algorithm>
#include <array>

namespace tidebrook {

namespace {

using namespace Qt::StringLiterals;

QString fileNameOf(QStringView address) {
    for (const QChar end : {u'?', u'#'}) {
        if (const qsizetype at = address.indexOf(end); at >= 0)
            address.truncate(at);
    }
    while (address.endsWith(u'/'))
        address.chop(1);
    return QUrl::fromPercentEncoding(address.mid(address.lastIndexOf(u'/') + 1).toUtf8());
}

} // namespace

bool isPixel(const HtmlTag &picture) {
    return std::ranges::any_of(std::array{u"width"_s, u"height"_s}, [&](const QString &side) {
        const QString pixels = picture.attributes.value(side, u"?"_s).trimmed();
        return pixels.startsWith(u'0') || pixels == u"1" || pixels == u"1px";
    });
}

bool isInlineData(const HtmlTag &picture) {
    return picture.attributes.value(u"src"_s).trimmed().startsWith(u"data:", Qt::CaseInsensitive);
}

QString pictureText(const HtmlTag &picture) {
    QString text = picture.attributes.value(u"alt"_s).trimmed();
    if (!text.isEmpty() || isInlineData(picture))
        return text;
    const QString source = picture.attributes.value(u"src"_s);
    return fileNameOf(QStringView(source).trimmed());
}

} // namespace tidebrook
