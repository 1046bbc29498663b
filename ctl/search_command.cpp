#include "ctl/article_operand.h"
#include "ctl/commands.h"
#include "ctl/output.h"
#include "ctl/table.h"
#include "feed/feed_records.h"
#include "platform/base/text.h"
#include "platform/html/readable_text.h"

#include <algorithm>

namespace tidebrook {

namespace {

// Equal for texts that differ in upper and lower case alone, or in how an accent is coded. Folding
// goes letter by letter, so that letters which become two in upper case are written so before.
QString comparable(const QString &text) {
    return withoutSoftBreaks(text).toUpper().toCaseFolded().normalized(
        QString::NormalizationForm_C);
}

QStringList wordsOf(const QStringList &operands) {
    return comparable(operands.join(u' ')).simplified().split(u' ', Qt::SkipEmptyParts);
}

bool hasWords(const ListedArticle &article, const QStringList &words) {
    const QString title = comparable(article.title);
    QStringList others; // than the title has
    std::copy_if(words.begin(), words.end(), std::back_inserter(others),
                 [&](const QString &word) { return !title.contains(word); });
    if (others.isEmpty())
        return true;
    if (isMissing(article.description))
        return false;
    const QString text = comparable(readableText(article.description).joined());
    return std::all_of(others.begin(), others.end(),
                       [&](const QString &word) { return text.contains(word); });
}

} // namespace

int runSearch(CommandDevice &device, const Arguments &arguments) {
    const QStringList words = wordsOf(arguments.operands);
    if (words.isEmpty())
        return failUsage(QStringLiteral("there is no word to search for"));
    ArticleChoice choice{.channel = {}, .category = {}, .withDescription = true};
    if (arguments.has(u"unread"))
        choice.order = SortMode::UnreadOnly;
    if (arguments.has(u"category")) {
        choice.category = arguments.category;
        if (!device.hasCategory(choice.category))
            return ExitFailed;
    }
    Table table(arguments,
                {QStringLiteral("state"), QStringLiteral("date"), QStringLiteral("title"),
                 QStringLiteral("channel"), QStringLiteral("number")});
    const auto add = [&](const ListedArticle &article) {
        if (hasWords(article, words))
            table.add({readLetter(article), article.publicationDate, article.title, article.channel,
                       QString::number(article.number)},
                      articleObject(article));
        return true;
    };
    return device.store.VisitArticles(choice, add) ? table.end() : failStore(device);
}

} // namespace tidebrook
