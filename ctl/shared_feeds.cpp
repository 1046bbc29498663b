#include "ctl/shared_feeds.h"

#include "update/update_history.h"

#include <QStringList>
#include <QUrl>

namespace tidebrook {

namespace {

// In small letters, since the wizard of the reader stores addresses in these.
QString comparableAddress(const QString &link) {
    QUrl url(link.contains(QLatin1String("://")) ? link : u"http://" + link);
    if (!url.isValid())
        return link;
    if (url.port() == 80 || url.port() == 443)
        url.setPort(-1);
    const QString address =
        url.toString(QUrl::RemoveScheme | QUrl::RemoveFragment | QUrl::NormalizePathSegments)
            .toLower();
    return address.endsWith(u'/') ? address.chopped(1) : address;
}

QString addressInWords(const QStringList &sharing, const QString &name) {
    const QString &first = sharing[0] == name ? sharing[1] : sharing[0];
    const QString words = QStringLiteral("the same address as \"%1\"").arg(first);
    const qsizetype more = sharing.size() - 2; // than this channel and that
    return more == 0 ? words : words + QStringLiteral(" and %1 more").arg(more);
}

QString articlesInWords(const SharedArticles &shared) {
    return QStringLiteral("articles of its feed that other channels have, as \"%1\": %2")
        .arg(shared.owner, QString::number(shared.count));
}

} // namespace

QHash<QString, QString> sharedFeeds(const QList<ChannelRecord> &feeds,
                                    const QHash<QString, UpdateState> &states) {
    QHash<QString, QStringList> names; // of the channels, by their addresses
    QHash<QString, QString> addresses; // by their names
    for (const ChannelRecord &feed : feeds) {
        const QString address = comparableAddress(feed.channelLink);
        names[address].append(feed.channelName);
        addresses.insert(feed.channelName, address);
    }
    QHash<QString, QString> words;
    for (const ChannelRecord &feed : feeds) {
        const QString &name = feed.channelName;
        const QStringList sharing = names.value(addresses.value(name));
        const SharedArticles shared = stateAt(states.value(name), feed.channelLink).shared;
        if (sharing.size() > 1)
            words.insert(name, addressInWords(sharing, name));
        else if (shared.count > 0 && addresses.contains(shared.owner))
            words.insert(name, articlesInWords(shared));
    }
    return words;
}

} // namespace tidebrook
