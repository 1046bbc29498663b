#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>

#include <chrono>
#include <mutex>
#include <utility>

namespace tidebrook {

struct Answer {
    /// Raw: the body is the whole answer, headers included; then `repeated` goes out until the
    /// client leaves, or without it the connection ends.
    enum class Manner { Whole, Raw, Never };
    /// Of a raw answer. Hold: the connection stays open until the client leaves.
    enum class Ending { Close, Reset, Hold };
    using Headers = QList<std::pair<QByteArray, QByteArray>>;

    Manner manner = Manner::Whole;
    QByteArray body = {};
    QByteArray contentType = "text/xml";
    int status = 200;
    Headers headers = {};
    std::chrono::milliseconds interval{0}; // between the body's bytes; 0: it is sent at once
    QByteArray etag = {};                  // empty: none
    QByteArray lastModified = {};          // empty: none
    QByteArray repeated = {};
    Ending ending = Ending::Close;

    /// The status line and headers; with the body's length.
    QByteArray head() const;
};

/// `body` in gzip's format.
QByteArray gzipped(const QByteArray &body);

/// What is answered to which path. Thread-safe.
class AnswerBook {
public:
    void set(const QString &path, const Answer &answer);
    void setDirectory(const QString &directory);

    Answer find(const QString &path) const;

private:
    Answer file(const QString &path) const;

    mutable std::mutex mutex_; // guards what follows
    QHash<QString, Answer> answers_;
    QString directory_; // null: none
};

} // namespace tidebrook
