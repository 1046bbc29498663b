#include "feed/article_ingestion.h"

#include "feed/pub_date.h"
#include "platform/text.h"
#include "store/escape_sql.h"

#include <QStringBuilder>

namespace tidebrook {

namespace {

constexpr QChar quote = u'\'';
constexpr quint16 articleLifeDays = 7;
constexpr qsizetype storedDescriptionLength = 2999;

void trim(QString &text) {
    if (!text.startsWith(missingText))
        text.truncate(trimTrailingBlanks(text).size());
}

// The description loses as many characters at its end as it has quotes: its length counts before
// they are doubled, and the cut falls after. A doubled quote is never halved.
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

bool ArticleIngestion::execute() {
    command_.setText(statement_);
    lastStatus_ = command_.execute();
    return lastStatus_ != ExecuteStatus::Failed;
}

bool ArticleIngestion::pruneChannel() {
    statement_ = QStringLiteral("DELETE FROM RSSRecord WHERE CHANNEL_NAME='%1' and TIMESTAMP < "
                                "'%2' ")
                     .arg(channelName_, QString::number(ingestionClock(articleLifeDays)));
    return execute();
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
    // These go into the statement as they are. A quote in one would end its literal, so that what
    // follows could become SQL: such an item is refused before there is a statement.
    if (item.guid.contains(quote) || item.link.contains(quote) || date.contains(quote) ||
        category_.contains(quote))
        return false;
    formatInsert(item, date);
    const bool isIngested = execute();
    storedCount_ += lastStatus_ == ExecuteStatus::Done ? 1 : 0;
    return isIngested;
}

void ArticleIngestion::formatInsert(const ItemRecord &item, const QString &date) {
    // A title of dropped characters alone is none; stored empty, it would end the list it is in.
    QString title = escapeFeedText(item.title, titleCapacity);
    if (title.isEmpty())
        title = missingText.toString();
    const qsizetype length = qMin(item.description.size(), storedDescriptionLength);
    const QString description = escapeFeedText(item.description, descriptionCapacity);
    const auto stamp = static_cast<quint32>(item.timestamp);
    statement_ = u"INSERT INTO RSSRecord VALUES ('" % channelName_ % u"', '" % item.guid % u"', '" %
                 title % u"', '" % item.link % u"' ,'" % cutDescription(description, length) %
                 u"' ,'" % date % u"',0, " % QString::number(stamp) % u" ,'" % category_ % u"')";
}

} // namespace tidebrook
