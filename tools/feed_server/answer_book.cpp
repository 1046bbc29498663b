#include "feed_server/answer_book.h"

#include "feed_server/generated_feed.h"

#include <QCryptographicHash>
#include <QStringList>

namespace tidebrook {

namespace {

constexpr int largestGeneratedFeed = 1'000'000;

} // namespace

void AnswerBook::set(const QString &path, const Answer &answer) {
    const std::lock_guard lock(mutex_);
    answers_.insert(path, answer);
}

void AnswerBook::addDirectory(const QString &prefix, const QString &directory) {
    const std::lock_guard lock(mutex_);
    directories_.prepend({prefix, directory});
}

void AnswerBook::setValidators(bool areSent) {
    const std::lock_guard lock(mutex_);
    haveValidators_ = areSent;
}

Answer AnswerBook::find(const QString &path) {
    const std::lock_guard lock(mutex_);
    const auto told = answers_.constFind(path);
    if (told != answers_.constEnd())
        return *told;
    std::optional<Answer> found = inDirectories(path);
    if (!found)
        found = generated(path);
    if (!found)
        return {.body = "There is nothing here.\n", .contentType = "text/plain", .status = 404};
    if (haveValidators_)
        found->etag =
            '"' + QCryptographicHash::hash(found->body, QCryptographicHash::Sha1).toHex() + '"';
    return *std::move(found);
}

std::optional<Answer> AnswerBook::inDirectories(const QString &path) const {
    for (const auto &[prefix, directory] : directories_) {
        const QString relativePath = below(prefix, path);
        if (relativePath.isEmpty())
            continue;
        if (std::optional<Answer> file = fileAnswer(directory, relativePath))
            return file;
    }
    return std::nullopt;
}

std::optional<Answer> AnswerBook::generated(const QString &path) {
    const QStringList numbers = below(QStringLiteral("/generated"), path).split(u'/');
    bool isCount = false;
    bool isSeed = false;
    const int items = numbers.constFirst().toInt(&isCount);
    const quint32 seed = numbers.constLast().toUInt(&isSeed);
    if (numbers.size() != 2 || !isCount || !isSeed || items < 0 || items > largestGeneratedFeed)
        return std::nullopt;
    QByteArray &feed = generatedFeeds_[path];
    if (feed.isEmpty())
        feed = generatedFeed(items, seed);
    return Answer{.body = feed};
}

} // namespace tidebrook
