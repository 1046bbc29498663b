#pragma once

#include "feed_server/answer.h"

#include <QHash>

#include <mutex>

namespace tidebrook {

/// What is answered to which path. Thread-safe.
class AnswerBook {
public:
    void set(const QString &path, const Answer &answer);
    void addDirectory(const QString &prefix, const QString &directory);
    void setValidators(bool areSent);

    Answer find(const QString &path);

private:
    std::optional<Answer> inDirectories(const QString &path) const;
    std::optional<Answer> generated(const QString &path);

    mutable std::mutex mutex_; // guards what follows
    QHash<QString, Answer> answers_;
    QList<std::pair<QString, QString>> directories_; // prefixes and folders, the last one first
    QHash<QString, QByteArray> generatedFeeds_;      // by path
    bool haveValidators_ = false;
};

} // namespace tidebrook
