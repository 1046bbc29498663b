#include "ui/article_page.h"

namespace tidebrook {

namespace {

// A feed that had no description for the article.
bool isMissing(const QString &description) {
    return description.startsWith(QLatin1String("DEFAULT"));
}

} // namespace

QString articlePage(const QString &channel, const QString &title, const ArticleExtract &detail) {
    const QString description =
        isMissing(detail.description) ? QStringLiteral(" ") : detail.description;
    return QStringLiteral(
               "<html><head><meta http-equiv=Content-type content=text/html; charset=utf-8/>"
               "</head><body><p style=font-weight:bold;font-size:8pt;><font color=#005091>") +
           channel + QStringLiteral("</font></p><div style=font-weight:bold><a href=\"") +
           detail.itemLink + QStringLiteral("\">") + title +
           QStringLiteral("</a></div>"
                          "<div style=text-align:right;font-size:8pt;><font color=gray>") +
           detail.publicationDate +
           QStringLiteral("</font></div><hr size=1 width=100% color=#C7AFFF "
                          "style=filter:alpha(opacity=10,finishopacity=100,style=1,startX=100,"
                          "startY=100,finishX=0,finishY=0) /><p>") +
           description + QStringLiteral("</p><br><p><a href=\"") + detail.itemLink +
           QStringLiteral("\">more</a></p></body></html>");
}

} // namespace tidebrook
