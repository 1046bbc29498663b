#include "platform/shell.h"

#include <QProcess>
#include <QStringList>
#include <QUrl>

namespace tidebrook {

namespace {

const QString opener = QStringLiteral("xdg-open");

} // namespace

bool isOpenable(const QString &link) {
    const QUrl url(link.trimmed());
    if (!url.isValid())
        return false;
    if (url.scheme() == QLatin1String("mailto"))
        return !url.path().isEmpty();
    const QStringList schemes{QStringLiteral("http"), QStringLiteral("https"),
                              QStringLiteral("ftp")};
    return schemes.contains(url.scheme()) && !url.host().isEmpty();
}

bool openLink(const QString &link) {
    const QString address = QString::fromLatin1(QUrl(link.trimmed()).toEncoded());
    return isOpenable(link) && QProcess::startDetached(opener, {address});
}

} // namespace tidebrook
