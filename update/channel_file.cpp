#include "update/channel_file.h"

#include "platform/base/plain_file.h"
#include "platform/base/text.h"
#include "store/escape_sql.h"

#include <QStringDecoder>
#include <QStringEncoder>

namespace tidebrook {

QByteArray encodeChannelFile(const QString &text) {
    return QStringEncoder(QStringConverter::Utf16LE).encode(text);
}

std::optional<QString> readChannelFile(const QString &path, qint64 byteLimit) {
    const std::optional<QByteArray> bytes = readPlainFile(path, byteLimit);
    if (!bytes)
        return std::nullopt;
    QString text = QStringDecoder(QStringConverter::Utf16LE).decode(*bytes);
    if (bytes->size() % 2 != 0)
        text.chop(text.endsWith(QChar::ReplacementCharacter) ? 1 : 0);
    return text;
}

QString channelLine(const RefreshJob &job) {
    return job.channelName + u'\t' + job.url + u'\t' + job.category + u'\n';
}

std::optional<RefreshJob> parseChannelLine(QStringView line) {
    const QList<QStringView> fields = line.split(u'\t');
    if (fields.size() != 3 || line.contains(u'\n'))
        return std::nullopt;
    const auto field = [&fields](qsizetype index, qsizetype capacity) {
        return TrimTrailingBlanks(cutText(fields[index], capacity)).toString();
    };
    const RefreshJob job{field(1, linkCapacity), field(0, channelNameCapacity),
                         field(2, categoryCapacity)};
    if (job.url.isEmpty() || job.channelName.isEmpty())
        return std::nullopt;
    return job;
}

} // namespace tidebrook
