#include "feed_server/answer.h"

#include <zlib.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>

#include <stdexcept>

namespace tidebrook {

namespace {

QByteArray contentTypeOf(const QString &fileName) {
    static const QHash<QString, QByteArray> types{
        {QStringLiteral("xml"), "text/xml"},     {QStringLiteral("rss"), "application/rss+xml"},
        {QStringLiteral("html"), "text/html"},   {QStringLiteral("txt"), "text/plain"},
        {QStringLiteral("png"), "image/png"},    {QStringLiteral("jpg"), "image/jpeg"},
        {QStringLiteral("opml"), "text/x-opml"},
    };
    return types.value(QFileInfo(fileName).suffix().toLower(), "application/octet-stream");
}

} // namespace

QByteArray Answer::head() const {
    constexpr int unchanged = 304;
    QByteArray text = "HTTP/1.1 " + QByteArray::number(status) + " Status\r\n";
    const auto add = [&text](const QByteArray &name, const QByteArray &value) {
        if (!value.isEmpty())
            text += name + ": " + value + "\r\n";
    };
    for (const auto &[name, value] : headers)
        add(name, value);
    add("ETag", etag);
    add("Last-Modified", lastModified);
    if (status != unchanged) {
        add("Content-Type", contentType);
        add("Content-Length", QByteArray::number(body.size()));
    }
    return text + "\r\n";
}

QByteArray compressed(const QByteArray &body) {
    constexpr int gzipWrapper = 16;
    z_stream stream{};
    if (deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, MAX_WBITS + gzipWrapper, 8,
                     Z_DEFAULT_STRATEGY) != Z_OK)
        throw std::runtime_error("zlib cannot be used");
    QByteArray input = body;
    QByteArray output(
        static_cast<qsizetype>(deflateBound(&stream, static_cast<uLong>(body.size()))),
        Qt::Uninitialized);
    stream.next_in = reinterpret_cast<Bytef *>(input.data());
    stream.avail_in = static_cast<uInt>(input.size());
    stream.next_out = reinterpret_cast<Bytef *>(output.data());
    stream.avail_out = static_cast<uInt>(output.size());
    const int result = deflate(&stream, Z_FINISH);
    output.resize(static_cast<qsizetype>(stream.total_out));
    deflateEnd(&stream);
    if (result != Z_STREAM_END)
        throw std::runtime_error("a body cannot be compressed");
    return output;
}

QString below(const QString &prefix, const QString &path) {
    const QString folder = prefix.endsWith(u'/') ? prefix : prefix + u'/';
    return path.startsWith(folder) ? path.sliced(folder.size()) : QString();
}

std::optional<Answer> fileAnswer(const QString &directory, const QString &relativePath) {
    const QString root = QFileInfo(directory).canonicalFilePath();
    const QString wanted = QFileInfo(QDir(root).filePath(relativePath)).canonicalFilePath();
    if (root.isEmpty() || below(root, wanted).isEmpty())
        return std::nullopt;
    QFile file(wanted);
    if (!QFileInfo(file).isFile() || !file.open(QIODevice::ReadOnly))
        return std::nullopt;
    Answer answer;
    answer.body = file.readAll();
    answer.contentType = contentTypeOf(wanted);
    return answer;
}

} // namespace tidebrook
