#include "share/page_feeds.h"

#include "platform/html/html_tokens.h"
#include "platform/xml/html_entities.h"
#include "platform/xml/xml_encoding.h"

#include <QStringList>
#include <QUrl>

#include <algorithm>

namespace tidebrook {

namespace {

constexpr int statusDone = 200;
constexpr qsizetype feedLimit = 100;

/// Reads the head of a page, which may lack the tags that begin and end it.
class PageHead {
public:
    PageHead(const QString &page, const QUrl &address) : tokens_(page), base_(address) {}

    std::optional<QList<PageFeed>> read() {
        if (!beginsAsPage())
            return std::nullopt;
        do {
            if (tokens_.kind() == HtmlTokens::Kind::Tag)
                takeTag(tokens_.tag());
        } while (!isEnded_ && feeds_.size() < feedLimit && tokens_.next());
        return feeds_;
    }

private:
    bool beginsAsPage() {
        static const QStringList first{QStringLiteral("html"),  QStringLiteral("head"),
                                       QStringLiteral("title"), QStringLiteral("meta"),
                                       QStringLiteral("link"),  QStringLiteral("base")};
        while (tokens_.next()) {
            if (tokens_.kind() == HtmlTokens::Kind::Tag)
                return first.contains(tokens_.tag().name);
            if (!tokens_.text().trimmed().isEmpty())
                return false;
        }
        return false;
    }

    void takeTag(const HtmlTag &tag) {
        isEnded_ = tag.name == (tag.isEnd ? u"head" : u"body");
        if (tag.isEnd)
            return;
        if (tag.name == u"link")
            takeLink(tag.attributes);
        else if (tag.name == u"base" && !hasBase_)
            takeBase(tag.attributes);
        else if (tag.name == u"script" || tag.name == u"style" || tag.name == u"title")
            tokens_.skipContents();
    }

    static QString valueOf(const QHash<QString, QString> &attributes, const QString &name) {
        return withoutHtmlEntities(attributes.value(name)).simplified();
    }

    QUrl wholeAddress(const QHash<QString, QString> &attributes) const {
        return base_.resolved(QUrl(valueOf(attributes, QStringLiteral("href"))));
    }

    void takeBase(const QHash<QString, QString> &attributes) {
        hasBase_ = attributes.contains(QStringLiteral("href"));
        base_ = wholeAddress(attributes);
    }

    void takeLink(const QHash<QString, QString> &attributes) {
        const QStringList types{
            QStringLiteral("application/rss+xml"), QStringLiteral("application/atom+xml"),
            QStringLiteral("application/feed+json"), QStringLiteral("application/json")};
        const QStringList relations =
            valueOf(attributes, QStringLiteral("rel")).toLower().split(u' ');
        const QString type =
            valueOf(attributes, QStringLiteral("type")).toLower().section(u';', 0, 0).trimmed();
        if (!relations.contains(QLatin1String("alternate")) || !types.contains(type))
            return;
        const QUrl address = wholeAddress(attributes);
        if (address.scheme() == u"http" || address.scheme() == u"https")
            add({valueOf(attributes, QStringLiteral("title")), address.toString(QUrl::FullyEncoded),
                 type == types.first()});
    }

    void add(const PageFeed &feed) {
        const bool isKnown = std::ranges::any_of(
            feeds_, [&](const PageFeed &known) { return known.address == feed.address; });
        if (!isKnown)
            feeds_.append(feed);
    }

    HtmlTokens tokens_;
    QUrl base_;
    QList<PageFeed> feeds_;
    bool hasBase_ = false;
    bool isEnded_ = false;
};

} // namespace

std::optional<QList<PageFeed>> feedsOfPage(const QString &url, const HttpLimits &limits) {
    const HttpAnswer answer = httpGet({url}, limits);
    if (answer.progress != HttpProgress::Complete || answer.status != statusDone)
        return std::nullopt;
    XmlUtf8Reader reader(answer.body, answer.charset);
    const std::optional<QByteArrayView> text = reader.next();
    // Where a byte is wrong, its tags and addresses can be read all the same.
    const QString page =
        text ? QString::fromUtf8(*text) : QString::fromLatin1(answer.body.value(0));
    return PageHead(page, QUrl(answer.address)).read();
}

} // namespace tidebrook
