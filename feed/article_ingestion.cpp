#include "feed/article_ingestion.h"

#include "feed/pub_date.h"
#include "platform/base/text.h"
#include "store/escape_sql.h"

namespace tidebrook {

namespace {

constexpr QChar quote = u'\'';
constexpr quint16 articleLifeDays = 7;
constexpr qsizetype storedDescriptionLength = 2999;
constexpr qsizetype skippedLimit = 1000; // a document can have a hundred times as many

void trim(QString &text) {
    if (!text.startsWith(missingText))
        text.truncate(TrimTrailingBlanks(text).size());
}

// `length` counts the description before its quotes are doubled, so that it loses a character at
// its end for each quote. A doubled quote is never halved.
QStringView cutDescription(QStringView escaped, qsizetype length) {
    QStringView cut = cutText(escaped, length);
    qsizetype quotes = 0;
    while (quotes < cut.size() && cut[cut.size() - 1 - quotes] == quote)
        ++quotes;
    if (quotes % 2 != 0)
        cut.chop(1);
    return cut;
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
    if (item.guid == missingText) {
        if (item.link == missingText)
            return false;
        item.guid = item.link;
    }
    trim(item.guid);
    trim(item.link);
    const QString date = normalisePubDate(item.publicationDate);
    // These are not escaped. A doubled quote in them would be stored as one.
    if (item.guid.contains(quote) || item.link.contains(quote) || date.contains(quote))
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
         article.channelName, article.guid, article.title, article.itemLink, article.description,
         article.publicationDate, article.isRead, article.timestamp, article.category});
}

SharedArticles ArticleIngestion::sharedArticles() {
    SharedArticles shared;
    if (skippedGuids_.isEmpty())
        return shared;
    SqliteStatement own =
        command_.query({"SELECT GUID FROM RSSRecord WHERE CHANNEL_NAME='%s'", channelName_});
    while (own.next())
        skippedGuids_.remove(own.text(0));
    // What is left is another channel's, or has a title that this channel has already.
    for (const QString &guid : std::as_const(skippedGuids_)) {
        SqliteStatement row =
            command_.query({"SELECT CHANNEL_NAME FROM RSSRecord WHERE GUID='%s'", guid});
        if (!row.next())
            continue;
        const QString owner = TrimTrailingBlanks(row.text(0)).toString();
        shared.owner = shared.count++ == 0 ? owner : std::min(shared.owner, owner);
    }
    return shared;
}

ArticleRecord ArticleIngestion::articleOf(const ItemRecord &item, const QString &date) const {
    // An item whose title has dropped characters alone would be a row without a text.
    QString title = escapeFeedText(item.title, titleCapacity);
    if (title.isEmpty())
        title = missingText.toString();
    const qsizetype length = qMin(item.description.size(), storedDescriptionLength);
    QString description = escapeFeedText(item.description, descriptionCapacity);
    description.truncate(cutDescription(description, length).size());
    return {channelName_, item.guid, title, item.link,
            description,  date,      false, static_cast<quint32>(item.timestamp),
            category_};
}

} // namespace tidebrook
