#include "feed_server/answer_book.h"

#include "feed_server/generated_feed.h"

#include <QCryptographicHash>

namespace tidebrook {

namespace {

QByteArray quoted(const QByteArray &text) { return '"' + text + '"'; }

QByteArray etagOf(const QByteArray &body) {
    return quoted(QCryptographicHash::hash(body, QCryptographicHash::Sha1).toHex());
}

} // namespace

void AnswerBook::set(const QString &path, const Answer &answer) {
    const std::lock_guard lock(mutex_);
    answers_.insert(path, answer);
}

void AnswerBook::addDirectory(const QString &prefix, const QString &directory) {
    const std::lock_guard lock(mutex_);
    directories_.prepend({prefix, directory});
}

void AnswerBook::addGenerated(const QString &prefix) {
    const std::lock_guard lock(mutex_);
    generatedPrefixes_.append(prefix);
}

void AnswerBook::setDirectoryValidators(bool areSent) {
    const std::lock_guard lock(mutex_);
    haveFilesValidators_ = areSent;
}

void AnswerBook::setGeneratedValidators(bool areSent) {
    const std::lock_guard lock(mutex_);
    haveGeneratedValidators_ = areSent;
}

Answer AnswerBook::find(const QString &path) {
    {
        const std::lock_guard lock(mutex_);
        const auto told = answers_.constFind(path);
        if (told != answers_.constEnd())
            return *told;
    }
    if (std::optional<Answer> file = inDirectories(path))
        return *std::move(file);
    return generated(path).value_or(notFound());
}

std::optional<Answer> AnswerBook::inDirectories(const QString &path) const {
    std::unique_lock lock(mutex_);
    const Directories directories = directories_;
    const bool hasValidators = haveFilesValidators_;
    lock.unlock();
    for (const auto &[prefix, directory] : directories) {
        const QString relativePath = below(prefix, path);
        if (relativePath.isEmpty())
            continue;
        if (std::optional<Answer> file = fileAnswer(directory, relativePath)) {
            if (hasValidators)
                file->etag = etagOf(file->body);
            return file;
        }
    }
    return std::nullopt;
}

std::optional<Answer> AnswerBook::generated(const QString &path) {
    const std::lock_guard lock(mutex_);
    for (const QString &prefix : generatedPrefixes_) {
        const auto numbers = generatedNumbers(below(prefix, path));
        if (!numbers)
            continue;
        const auto [items, seed] = *numbers;
        QByteArray &feed = generatedFeeds_[*numbers];
        if (feed.isEmpty())
            feed = generatedFeed(items, seed);
        Answer answer;
        answer.body = feed;
        if (haveGeneratedValidators_)
            answer.etag = quoted(QByteArray::number(items) + '-' + QByteArray::number(seed));
        return answer;
    }
    return std::nullopt;
}

} // namespace tidebrook
