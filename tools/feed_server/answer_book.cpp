#include "feed_server/answer_book.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>

namespace tidebrook {

QByteArray Answer::head() const {
    QByteArray text = "HTTP/1.1 " + QByteArray::number(status) + " Status\r\n";
    const auto add = [&text](const QByteArray &name, const QByteArray &value) {
        if (!value.isEmpty())
            text += name + ": " + value + "\r\n";
    };
    for (const auto &[name, value] : headers)
        add(name, value);
    add("ETag", etag);
    add("Last-Modified", lastModified);
    if (status != 304) {
        add("Content-Type", contentType);
        add("Content-Length", QByteArray::number(body.size()));
    }
    return text + "\r\n";
}

void AnswerBook::set(const QString &path, const Answer &answer) {
    const std::lock_guard lock(mutex_);
    answers_.insert(path, answer);
}

void AnswerBook::setDirectory(const QString &directory) {
    const std::lock_guard lock(mutex_);
    directory_ = directory;
}

Answer AnswerBook::find(const QString &path) const {
    const std::lock_guard lock(mutex_);
    const auto told = answers_.constFind(path);
    if (told != answers_.constEnd())
        return *told;
    return file(path);
}

Answer AnswerBook::file(const QString &path) const {
    QFile file(directory_ + path);
    if (directory_.isNull() || path.contains(u"..") || !QFileInfo(file).isFile() ||
        !file.open(QIODevice::ReadOnly))
        return {.body = "There is nothing here.\n", .contentType = "text/plain", .status = 404};
    const QByteArray body = file.readAll();
    const QByteArray hash = QCryptographicHash::hash(body, QCryptographicHash::Sha1).toHex();
    return {.body = body, .etag = '"' + hash + '"'};
}

} // namespace tidebrook
