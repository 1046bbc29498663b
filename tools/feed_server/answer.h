#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <chrono>
#include <optional>
#include <utility>

namespace tidebrook {

struct Answer {
    /// Raw: the body is the whole answer, headers included; then `repeated` goes out until the
    /// client leaves, or without it the connection is closed.
    enum class Manner { Whole, Trickled, Raw, Never };
    Manner manner = Manner::Whole;
    QByteArray body = {};
    QByteArray contentType = "text/xml";
    int status = 200;
    QList<std::pair<QByteArray, QByteArray>> headers = {};
    std::chrono::milliseconds interval{0}; // between the bytes of a trickled body
    QByteArray etag = {};                  // empty: none
    QByteArray lastModified = {};          // empty: none
    QByteArray repeated = {};

    /// The status line and headers; with the body's length.
    QByteArray head() const;
};

/// `body` in gzip's format.
QByteArray compressed(const QByteArray &body);

/// What comes behind `prefix`, without its slash; null if the path is not below it.
QString below(const QString &prefix, const QString &path);

/// The file of that path below `directory`; nothing if there is none that can be read.
std::optional<Answer> fileAnswer(const QString &directory, const QString &relativePath);

} // namespace tidebrook
