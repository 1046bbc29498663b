#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <chrono>
#include <optional>
#include <utility>

namespace tidebrook {

struct Answer {
    enum class Manner { Whole, Half, Trickled, Endless, Never };
    Manner manner = Manner::Whole;
    QByteArray body;
    QByteArray contentType = "text/xml";
    int status = 200;
    QList<std::pair<QByteArray, QByteArray>> headers;
    std::chrono::milliseconds interval{0};
    QByteArray etag;         // empty: none
    QByteArray lastModified; // empty: none
};

Answer notFound();

/// `body` in gzip's format.
QByteArray compressed(const QByteArray &body);

/// What comes behind `prefix`, without its slash; null if the path is not below it.
QString below(const QString &prefix, const QString &path);

/// The file of that path below `directory`; nothing if there is none that can be read.
std::optional<Answer> fileAnswer(const QString &directory, const QString &relativePath);

/// The items and the seed that a generated feed's path below its prefix names.
std::optional<std::pair<int, quint32>> generatedNumbers(const QString &relativePath);

} // namespace tidebrook
