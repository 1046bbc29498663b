#pragma once

#include "feed_server/answer.h"

#include <QHash>
#include <QStringList>

#include <mutex>

namespace tidebrook {

/// What is answered to which path. Thread-safe.
class AnswerBook {
public:
    void set(const QString &path, const Answer &answer);
    void addDirectory(const QString &prefix, const QString &directory);
    void addGenerated(const QString &prefix);
    void setDirectoryValidators(bool areSent);
    void setGeneratedValidators(bool areSent);

    Answer find(const QString &path);

private:
    std::optional<Answer> inDirectories(const QString &path) const;
    std::optional<Answer> generated(const QString &path);

    using Directories = QList<std::pair<QString, QString>>; // prefixes and folders

    mutable std::mutex mutex_; // guards what follows
    QHash<QString, Answer> answers_;
    Directories directories_; // the last one first
    QStringList generatedPrefixes_;
    QHash<std::pair<int, quint32>, QByteArray> generatedFeeds_;
    bool haveFilesValidators_ = false;
    bool haveGeneratedValidators_ = false;
};

} // namespace tidebrook
