#include "platform/desktop/shell.h"

#include "platform/base/text.h"
#include "platform/desktop/detached_program.h"

#include <QStringList>
#include <QUrl>
#include <QUrlQuery>

namespace tidebrook {

namespace {

// One that fails does so at once; one that is the program itself stays for as long as that does.
constexpr std::chrono::seconds timeout{3};

bool openByDesktop(const QString &address) {
    return startDetached(QStringLiteral("xdg-open"), {address}, timeout);
}

// Feeds leave out what a browser's address bar puts in.
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

// What else a message could be told to have, as a file to go with it, is no concern of a feed.
// Composers take an address apart again, some at signs that have no meaning in one: so that only
// the signs that are meant to be there are left.
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
    const QString address = u"mailto:?subject=" + encoded(withoutControls(subject)) + u"&body=" +
                            encoded(withLineEnds(body, QLatin1String("\r\n")));
    return openByDesktop(address);
}

bool composeSms(const QString &text) {
    const QString address = u"sms:?body=" + encoded(withLineEnds(text, QLatin1String("\n")));
    return openByDesktop(address);
}

} // namespace tidebrook
