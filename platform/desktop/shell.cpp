#include "platform/desktop/shell.h"

#include "platform/base/text.h"
#include "platform/desktop/detached_program.h"

#include <QStringList>
#include <QUrl>
#include <QUrlQuery>

namespace tidebrook {

namespace {

// On some desktops xdg-open is the program itself and goes on running.
bool openByDesktop(const QString &address) {
    return startDetached(QStringLiteral("xdg-open"), address);
}

// Feeds leave out the scheme, which a browser would add.
QUrl urlOf(const QString &link) {
    QString address = link.trimmed();
    if (address.startsWith(QLatin1String("//")))
        address.prepend(QLatin1String("http:"));
    else if (address.startsWith(QLatin1String("www."), Qt::CaseInsensitive))
        address.prepend(QLatin1String("http://"));
    return QUrl(address);
}

QString encoded(const QString &text, const QByteArray &kept = {}) {
    return QString::fromLatin1(QUrl::toPercentEncoding(text, kept));
}

// A feed must not make a composer attach a file, so only the harmless fields stay. Composers take
// the address apart again, some at other signs than the standard's, so every other sign is encoded.
QString messageAlone(const QUrl &url) {
    static const QStringList harmless{QStringLiteral("subject"), QStringLiteral("body"),
                                      QStringLiteral("cc"), QStringLiteral("bcc")};
    QString address = u"mailto:" + encoded(url.path(QUrl::FullyDecoded), "@");
    QChar separator = u'?';
    for (const auto &[name, value] : QUrlQuery(url).queryItems(QUrl::FullyEncoded)) {
        if (!harmless.contains(name.toLower()))
            continue;
        address +=
            separator + name + u'=' + encoded(QUrl::fromPercentEncoding(value.toLatin1()), "@");
        separator = u'&';
    }
    return address;
}

QString withLineEnds(QString text, QLatin1String lineEnd) {
    text.replace(QLatin1String("\r\n"), QLatin1String("\n")).replace(u'\r', u'\n');
    return text.replace(u'\n', lineEnd);
}

} // namespace

bool isOpenable(const QString &link) {
    const QUrl url = urlOf(link);
    if (!url.isValid())
        return false;
    if (url.scheme() == QLatin1String("mailto"))
        return !url.path().isEmpty();
    const QStringList schemes{QStringLiteral("http"), QStringLiteral("https"),
                              QStringLiteral("ftp")};
    return schemes.contains(url.scheme()) && !url.host().isEmpty();
}

bool openLink(const QString &link) {
    if (!isOpenable(link))
        return false;
    const QUrl url = urlOf(link);
    const bool isMessage = url.scheme() == QLatin1String("mailto");
    return openByDesktop(isMessage ? messageAlone(url) : QString::fromLatin1(url.toEncoded()));
}

bool composeMail(const QString &subject, const QString &body) {
    return openByDesktop(u"mailto:?subject=" + encoded(withoutControls(subject)) + u"&body=" +
                         encoded(withLineEnds(body, QLatin1String("\r\n"))));
}

bool composeSms(const QString &text) {
    return openByDesktop(u"sms:?body=" + encoded(withLineEnds(text, QLatin1String("\n"))));
}

} // namespace tidebrook
