#include "feed/formats/parse_feed.h"

#include "feed/formats/atom.h"
#include "feed/formats/json_feed.h"
#include "feed/formats/rdf.h"
#include "store/settings_store.h"

#include <QUrl>

#include <utility>

namespace tidebrook {

namespace {

// Nothing for a document of none of the formats.
std::optional<QByteArray> rssOf(const XmlDocument &document, const QUrl &address) {
    const ScopedElement root(document.root(), address);
    const QByteArray name = root.name();
    if (name == "feed")
        return rssOfAtom(root);
    return name == "rdf:RDF" ? rssOfRdf(root) : std::nullopt;
}

// Links are sent and saved, so a feed's login does not go into them.
QUrl baseOf(const QString &address) { return QUrl(address).adjusted(QUrl::RemoveUserInfo); }

} // namespace

bool readsOtherFormats(Registry &registry) {
    return SettingsStore(registry).dword(programKey, u"OtherFormats") != 0;
}

std::optional<XmlDocument> parseFeed(Registry &registry, QByteArrayList body,
                                     QByteArrayView charset, const QString &address) {
    if (looksLikeJson(body) && readsOtherFormats(registry))
        return XmlDocument::parse({rssOfJson(std::move(body), baseOf(address))});
    std::optional<XmlDocument> document = XmlDocument::parse(std::move(body), charset);
    if (!document || document->root().name() == "rss" || !readsOtherFormats(registry))
        return document;
    const std::optional<QByteArray> rss = rssOf(*document, baseOf(address));
    if (!rss)
        return document;
    document.reset(); // or there would be two of them
    return XmlDocument::parse({*rss});
}

} // namespace tidebrook
