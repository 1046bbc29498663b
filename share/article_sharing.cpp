#include "share/article_sharing.h"

#include "platform/base/replace_file.h"
#include "platform/base/text.h"
#include "platform/desktop/shell.h"
#include "store/error_codes.h"

namespace tidebrook {

namespace {

constexpr qsizetype pageSize = 65'536; // bytes of a saved file, whatever is in it
constexpr qsizetype linkValueLimit = 967;
constexpr qsizetype articleValueLimit = 3967;
constexpr qsizetype messageLimit = 602; // UTF-16 units

QByteArray valueOf(const QString &text, qsizetype limit) {
    return cutUtf8(text.toUtf8(), limit).toByteArray();
}

QByteArray linkPage(const QString &title, const ArticleExtract &article) {
    return "<html>\n<head><meta http-equiv=\"Content-Type\" content=\"text/html; charset=UTF-8\">\n"
           "</head>\n<body><a href=\"" +
           valueOf(article.itemLink, linkValueLimit) + "\">" + valueOf(title, linkValueLimit) +
           "</a>\n</body>\n</html>";
}

// Nothing is escaped: a description is markup already.
QByteArray articlePage(const QString &title, const ArticleExtract &article) {
    const QByteArray link = valueOf(article.itemLink, articleValueLimit);
    const QByteArray titleText = valueOf(title, articleValueLimit);
    return "<html>\n<head><meta http-equiv=\"Content-Type\" content=\"text/html; charset=UTF-8\">\n"
           "<title>" +
           titleText + "</title>\n</head>\n<body><h4><a href =\"" + link + "\">" + titleText +
           "</a></h4>\n<p>" + valueOf(article.description, articleValueLimit) +
           "</p>\n<br><br><a href=\"" + link + "\">more</a>\n</body>\n</html>";
}

} // namespace

bool saveArticleHtml(FeedStore &store, const QString &channel, const QString &title,
                     const QString &path, SaveKind kind) {
    const bool isKind = kind == SaveKind::Link || kind == SaveKind::Article;
    if (!isKind || channel.isNull() || title.isNull() || path.isNull())
        return false;
    ArticleExtract article;
    if (!store.GetArticleExtract(channel, title, article))
        return false;
    if (saveArticleHtml(title, article, path, kind))
        return true;
    store.recordError(FileNotWritten);
    return false;
}

bool saveArticleHtml(const QString &title, const ArticleExtract &article, const QString &path,
                     SaveKind kind) {
    QByteArray page =
        kind == SaveKind::Link ? linkPage(title, article) : articlePage(title, article);
    page.resize(pageSize, '\0');
    return replaceFile(path, page, Readers::Usual);
}

bool sendArticleLink(FeedStore &store, const QString &channel, const QString &title,
                     SendKind kind) {
    ArticleExtract article;
    if (!store.GetArticleExtract(channel, title, article))
        return false;
    const QString whole = QStringLiteral("Title: ") + title + QStringLiteral("\nDate: ") +
                          article.publicationDate + QStringLiteral("\n ") + article.itemLink;
    const QString body = cutText(whole, messageLimit).toString();
    return kind == SendKind::Sms ? composeSms(body) : composeMail(title, body);
}

} // namespace tidebrook
