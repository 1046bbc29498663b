#include "platform/shell.h"

#include "platform/detached_program.h"
#include "platform/text.h"

#include <QStringList>
#include <QUrl>
#include <QUrlQuery>

namespace tidebrook {

namespace {

// One that fails does so at once; one that is the program itself stays for as long as that does.
constexpr std::chrono::seconds patience{3};

bool openByDesktop(const QString &address) {
    return startDetached(QStringLiteral("xdg-open"), {address}, patience);
}

// What else a message could be told to have, as a file to go with it, is no concern of a feed.
void leaveMessageAlone(QUrl &url) {
    static const QStringList harmless{QStringLiteral("subject"), QStringLiteral("body"),
                                      QStringLiteral("cc"), QStringLiteral("bcc")};
    QUrlQuery kept;
    for (const auto &[name, value] : QUrlQuery(url).queryItems(QUrl::FullyEncoded)) {
        if (harmless.contains(name.toLower()))
            kept.addQueryItem(name, value);
    }
    url.setQuery(kept);
}

QString encoded(const QString &text) { return QString::fromLatin1(QUrl::toPercentEncoding(text)); }

QString withLineEnds(QString text, QLatin1String lineEnd) {
    text.replace(QLatin1String("\r\n"), QLatin1String("\n")).replace(u'\r', u'\n');
    return text.replace(u'\n', lineEnd);
}

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
    if (!isOpenable(link))
        return false;
    QUrl url(link.trimmed());
    if (url.scheme() == QLatin1String("mailto") && url.hasQuery())
        leaveMessageAlone(url);
    return openByDesktop(QString::fromLatin1(url.toEncoded()));
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
