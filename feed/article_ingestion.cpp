#include "feed/article_ingestion.h"

#include "feed/pub_date.h"
#include "platform/base/text.h"
#include "store/escape_sql.h"

namespace tidebrook {

using namespace Qt::StringLiterals;

namespace {

constexpr char quote = '\'';
constexpr quint16 articleLifeDays = 7;
constexpr qsizetype storedDescriptionLength = 2999;
constexpr qsizetype skippedLimit = 1000; // a document can have a hundred times as many

void trim(QByteArray &text) {
    const QByteArrayView trimmed = TrimTrailingBlanks(QByteArrayView(text));
    if (trimmed.size() != text.size() && !text.startsWith(missingUtf8))
        text.truncate(trimmed.size());
}

} // namespace

ArticleIngestion::ArticleIngestion(SqlCommand &command, const QString &channelName,
                                   const QString &category)
    : command_(command), channelName_(escapedChannelName(channelName)), category_(category) {}

qint64 ArticleIngestion::oldestKept() { return ingestionClock(articleLifeDays); }

bool ArticleIngestion::pruneChannel() {
    return command_.execute(
               {"DELETE FROM RSSRecord WHERE CHANNEL_NAME='%s' and TIMESTAMP < '%I64d' ",
                channelName_, oldestKept()}) != SqliteStep::Failed;
}

bool ArticleIngestion::insertItem(ItemRecord item) {
    trim(item.description);
    trim(item.publicationDate);
    trim(item.title);
    if (item.guid == missingUtf8) {
        if (item.link == missingUtf8)
            return false;
        item.guid = item.link;
    }
    trim(item.guid);
    trim(item.link);
    const QString date = normalisePubDate(QString::fromUtf8(item.publicationDate));
    // These are stored as they are, and other statements take them without escaping.
    if (item.guid.contains(quote) || item.link.contains(quote) || date.contains(QLatin1Char(quote)))
        return false;
    const SqliteStep ended = insert(articleOf(item, date));
    storedCount_ += ended == SqliteStep::Done ? 1 : 0;
    if (ended == SqliteStep::IntegrityViolation && skippedGuids_.size() < skippedLimit)
        skippedGuids_.insert(item.guid);
    return ended != SqliteStep::Failed;
}

SqliteStep ArticleIngestion::insert(const ArticleRecord &article) {
    return command_.execute(
        {"INSERT INTO RSSRecord VALUES ('%s', '%s', '%s', '%s' ,'%s' ,'%s',%d, %lu ,'%s')",
         article.channelName, PlainText{article.guid}, PlainText{article.title},
         PlainText{article.itemLink}, PlainText{article.description}, article.publicationDate,
         article.isRead, article.timestamp, article.category});
}

SharedArticles ArticleIngestion::sharedArticles() {
    const QByteArray own = QString(channelName_).replace(u"''"_s, u"'"_s).toUtf8();
    SharedArticles shared;
    for (const QByteArray &guid : std::as_const(skippedGuids_)) {
        SqliteStatement row =
            command_.query({"SELECT CHANNEL_NAME FROM RSSRecord WHERE GUID='%s'", PlainText{guid}});
        if (!row.next()) // its title is this channel's already
            continue;
        const QByteArrayView owner = TrimTrailingBlanks(row.utf8(0));
        if (owner == TrimTrailingBlanks(QByteArrayView(own)))
            continue;
        const QString name = QString::fromUtf8(owner);
        shared.owner = shared.count++ == 0 ? name : std::min(shared.owner, name);
    }
    return shared;
}

ArticleRecord ArticleIngestion::articleOf(const ItemRecord &item, const QString &date) const {
    // An item whose title has dropped characters alone would be a row without a text.
    QByteArray title = storedFeedText(item.title, titleCapacity, HalvedQuote::Kept);
    if (title.isEmpty())
        title = missingUtf8.toByteArray();
    // The length is counted before quotes are doubled: a description loses a character at its end
    // for each quote.
    const qsizetype length = qMin(unitsOfUtf8(item.description), storedDescriptionLength);
    const QByteArray description = storedFeedText(item.description, length, HalvedQuote::Dropped);
    return {channelName_, item.guid, title, item.link,
            description,  date,      false, static_cast<quint32>(item.timestamp),
            category_};
}

} // namespace tidebrook
