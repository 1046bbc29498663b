#include "ui/row_speech.h"

#include "res/strings.h"
#include "ui/row_painter.h"

#include <QStringList>

namespace tidebrook {

namespace {

// The row has them as "unread/total".
QString countsInWords(const QString &counts) {
    const QString unread = counts.section(u'/', 0, 0);
    const QString total = counts.section(u'/', 1);
    return total == QLatin1Char('0') ? resourceString(notUpdatedString)
                                     : resourceString(unreadOfString).arg(unread, total);
}

} // namespace

QString rowSpeech(const ListRow &row) {
    QStringList parts{row.text};
    parts.append(row.image == ChannelImage ? countsInWords(row.detail) : row.detail);
    if (row.image == UnreadImage)
        parts.append(resourceString(unreadString));
    parts.removeAll(QString());
    return parts.join(QStringLiteral(", "));
}

} // namespace tidebrook
