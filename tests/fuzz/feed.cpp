// A feed's way from an answer's bytes to the rows of the database, in every format: without the
// others RSS goes the same way, and they are refused at once. Byte 1 to 7 in front chooses the
// charset that the server names.

#include "feed/feed_fetcher.h"
#include "fuzz/fuzz.h"
#include "store/category_list.h"
#include "store/settings_store.h"
#include "store/store_check.h"
#include "test_device/test_device.h"
#include "update/refresh.h"

#include <array>

namespace tidebrook {

using namespace Qt::StringLiterals;

static const RefreshJob job{u"http://x/"_s, u"ch's"_s, u"C's"_s};
static const ChannelRecord record{job.category, job.channelName, job.url};

static TestDevice &device() {
    static TestDevice device;
    static const bool isOpen = device.store->Open() &&
                               device.registry->write(programKey, u"OtherFormats", quint32{1}) &&
                               CategoryListStore(*device.registry).ensureListed(job.category) &&
                               device.store->InsertChannel(record);
    require(isOpen, "the device is there");
    return device;
}

static RefreshResult refresh(HttpAnswer answer) {
    FeedFetcher fetcher(device().root, *device().registry, {}, {.keepsPauses = false});
    const bool isTaken = fetcher.takeAnswer(answer) == FeedFetcher::Taken::Document;
    return storeFetched({device().root, *device().registry, *device().store}, job, fetcher,
                        isTaken);
}

static int checkArticles(FeedStore &store) {
    int count = 0;
    const auto check = [&](const ListedArticle &article) {
        requireText(article.title, titleCapacity, "a title");
        requireText(article.guid, linkCapacity, "a guid");
        requireText(article.itemLink, linkCapacity, "a link");
        requireText(article.description, descriptionCapacity, "a description");
        requireText(article.publicationDate, 10, "a date");
        const QString all = article.title + article.guid + article.itemLink + article.description;
        require(!all.contains(QChar(u'\0')), "no text has a terminator", all);
        require(!article.title.isEmpty() && article.channel == job.channelName &&
                    article.category == job.category && !article.isRead,
                "an article is one of its channel", article.title);
        return ++count > 0;
    };
    require(store.VisitArticles({.channel = job.channelName, .withDescription = true}, check),
            "articles can be read");
    return count;
}

static void checkList(FeedStore &store) {
    QList<ArticleRow> rows;
    require(store.ListArticles(job.channelName, SortMode::Date, rows), "articles can be listed");
    for (const ArticleRow &row : std::as_const(rows)) {
        ArticleExtract extract;
        require(store.GetArticleExtract(job.channelName, row.title, extract),
                "a listed article opens", row.title);
    }
}

void fuzz(const QByteArray &input) {
    static constexpr std::array charsets{"",           "utf-8",     "windows-1251", "UTF-16",
                                         "iso-8859-1", "Shift_JIS", "UTF-7",        "none"};
    FeedStore &store = *device().store;
    store.changeAtOnce([&](auto &) {
        require(store.DeleteChannel(job.channelName) && store.InsertChannel(record),
                "the channel can be made anew");
    });
    QByteArray document = input;
    HttpAnswer answer{.progress = HttpProgress::Complete, .status = 200};
    answer.charset = charsets.at(takeChoice(document));
    answer.body = {document};
    answer.address = job.url;
    const RefreshResult first = refresh(answer);
    require(first.isCounted && first.storedCount == first.counts.total &&
                first.counts.unread == first.counts.total &&
                checkArticles(store) == first.counts.total,
            "the counts are those of the articles");
    checkList(store);
    const RefreshResult second = refresh(answer);
    require(second.storedCount == 0 && second.counts.total == first.counts.total &&
                second.error == first.error,
            "the same document again stores nothing");
    static int runs = 0;
    if (++runs % 2000 == 0)
        require(checkStore(device().root, *device().registry).isEmpty(), "the store is sound");
}

} // namespace tidebrook
