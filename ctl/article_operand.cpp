#include "ctl/article_operand.h"

#include "ctl/commands.h"
#include "ctl/output.h"
#include "ctl/table.h"
#include "platform/base/text.h"

#include <array>

namespace tidebrook {

namespace {

constexpr qsizetype mostNamed = 5;         // of several articles, in a message
constexpr qsizetype namedTitleLength = 60; // of each one's title

/// The articles that an operand may mean in one way, of which a message names a few.
struct Matches {
    QList<ListedArticle> first;
    qsizetype count = 0;

    void add(const ListedArticle &article) {
        if (++count <= mostNamed)
            first.append(article);
    }
};

/// What an operand may mean, the surest first.
class OperandMatches {
public:
    explicit OperandMatches(const QString &operand) : operand_(operand) {
        bool isNumber = false;
        const qint64 number = operand.toLongLong(&isNumber);
        number_ = isNumber && operand.front().isDigit() ? number : 0;
    }

    void add(const ListedArticle &article) {
        const QString title = printable(article.title);
        const std::array<bool, 5> isMatch{article.title == operand_, title == operand_,
                                          article.guid == operand_,
                                          number_ > 0 && article.number == number_,
                                          title.startsWith(operand_, Qt::CaseInsensitive)};
        for (std::size_t way = 0; way < isMatch.size(); ++way) {
            if (isMatch.at(way))
                ways_.at(way).add(article);
        }
    }

    const Matches &surest() const {
        for (const Matches &way : ways_) {
            if (way.count > 0)
                return way;
        }
        return ways_.back();
    }

private:
    const QString operand_;
    qint64 number_ = 0;
    std::array<Matches, 5> ways_;
};

void failSeveral(const QString &operand, const Matches &matches) {
    QStringList names;
    for (const ListedArticle &article : matches.first) {
        const QString title = cutText(article.title, namedTitleLength).toString();
        names.append(QStringLiteral("%1 \"%2\"")
                         .arg(QString::number(article.number), title.size() < article.title.size()
                                                                   ? QString(title + u"...")
                                                                   : title));
    }
    const qsizetype more = matches.count - matches.first.size();
    fail(QStringLiteral("\"%1\" names several articles: %2%3")
             .arg(operand, names.join(QStringLiteral(", ")),
                  more > 0 ? QStringLiteral(" and %1 more").arg(more) : QString()));
}

} // namespace

std::optional<ListedArticle> wantedArticle(CommandDevice &device, const QString &channel,
                                           const QString &operand) {
    if (!device.hasChannel(channel))
        return std::nullopt;
    // An empty operand would be the beginning of every title.
    const QString missing = QStringLiteral("there is no article \"%1\"").arg(operand);
    if (operand.isEmpty()) {
        fail(missing);
        return std::nullopt;
    }
    OperandMatches matches(operand);
    const auto add = [&](const ListedArticle &article) {
        matches.add(article);
        return true;
    };
    if (!device.store.VisitArticles({.channel = channel, .category = {}}, add)) {
        failStore(device);
        return std::nullopt;
    }
    const Matches &found = matches.surest();
    if (found.count == 1)
        return found.first[0];
    if (found.count == 0)
        fail(missing);
    else
        failSeveral(operand, found);
    return std::nullopt;
}

QJsonObject articleObject(const ListedArticle &article) {
    return {{QStringLiteral("read"), article.isRead},
            {QStringLiteral("date"), jsonText(article.publicationDate)},
            {QStringLiteral("title"), article.title},
            {QStringLiteral("number"), article.number},
            {QStringLiteral("channel"), article.channel},
            {QStringLiteral("category"), article.category},
            {QStringLiteral("link"), jsonText(article.itemLink)},
            {QStringLiteral("guid"), article.guid}};
}

QString readLetter(const ListedArticle &article) {
    return article.isRead ? QStringLiteral("r") : QStringLiteral("u");
}

} // namespace tidebrook
