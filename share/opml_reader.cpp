#include "share/opml_reader.h"

#include "platform/base/plain_file.h"
#include "platform/base/replace_file.h"
#include "platform/base/text.h"
#include "share/download_failure.h"
#include "store/error_codes.h"
#include "store/settings_store.h"

#include <QBuffer>

#include <algorithm>

namespace tidebrook {

namespace {

constexpr QStringView downloadFile = u"\\Temp\\TmpOpml.opml";
constexpr int capacity = 223;

XmlNode childOf(const XmlNode &parent, QByteArrayView name) {
    XmlNode child = parent.firstChild();
    while (!child.isNull() && child.name() != name)
        child = child.nextSibling();
    return child;
}

QString eitherAttribute(const XmlNode &node, QByteArrayView first, QByteArrayView second) {
    const QString value = node.attribute(first);
    return value.isNull() ? node.attribute(second) : value;
}

template <std::size_t size> void copyText(const QString &text, char16_t (&out)[size]) {
    const QStringView kept = TrimTrailingBlanks(cutText(text, size - 1));
    std::copy_n(kept.utf16(), kept.size(), out);
}

} // namespace

OpmlReader::OpmlReader(const DeviceRoot &device, Registry &registry, const HttpLimits &limits)
    : device_(device), registry_(registry), limits_(limits) {}

bool OpmlReader::open(AddMode mode, const QString &source) {
    close();
    error_ = 0;
    std::optional<QByteArray> document;
    if (mode == AddMode::ListFromUrl)
        document = download(source);
    else if (mode == AddMode::ListFromFile && !source.isEmpty())
        document = readFile(source);
    return document && openDocument(*document);
}

bool OpmlReader::openDocument(const QByteArray &document) {
    close();
    error_ = 0;
    const bool isWhole = document.size() <= limits_.bodyBytes ? parse(document) : fail(FeedNotXml);
    if (!isWhole)
        close();
    return isWhole;
}

bool OpmlReader::fail(quint32 code) {
    error_ = code;
    SetLastErrorCode(registry_, code);
    return false;
}

// The file has one fixed place, and two lists may be downloaded at once: each is parsed from
// memory.
std::optional<QByteArray> OpmlReader::download(const QString &url) {
    QBuffer body;
    body.open(QIODevice::WriteOnly);
    const HttpProgress progress = httpDownloadDirect(url, body, limits_);
    if (progress != HttpProgress::Complete)
        error_ = recordDownloadFailure(registry_, progress, limits_);
    else if (replaceFile(device_.filePath(downloadFile), body.data()))
        return body.data();
    else
        fail(FileNotWritten);
    return std::nullopt;
}

// Reading a pipe or a device could block for ever.
std::optional<QByteArray> OpmlReader::readFile(const QString &path) {
    std::optional<QByteArray> bytes = readPlainFile(path, limits_.bodyBytes, Links::Followed);
    if (!bytes)
        fail(FeedNotXml);
    return bytes;
}

bool OpmlReader::parse(const QByteArray &bytes) {
    const std::optional<XmlDocument> document = XmlDocument::parse({bytes});
    if (!document)
        return fail(FeedNotXml);
    const XmlNode body =
        document->root().name() == "opml" ? childOf(document->root(), "body") : XmlNode();
    if (body.isNull())
        return fail(FeedNotRss);
    entries_.fill({}, capacity + 1); // all of them holes
    return walk(body) || fail(FeedNotRss);
}

// The limit of a document's depth keeps the recursion from exhausting the stack.
bool OpmlReader::walk(const XmlNode &parent) {
    for (XmlNode child = parent.firstChild(); !child.isNull() && count_ < capacity;
         child = child.nextSibling()) {
        if (!(child.firstChild().isNull() ? takeLeaf(child) : walk(child)))
            return false;
    }
    return true;
}

bool OpmlReader::takeLeaf(const XmlNode &leaf) {
    const QString url = eitherAttribute(leaf, "xmlUrl", "url");
    if (url.isNull())
        return true;
    const QString type = leaf.attribute("type");
    if (type.isNull())
        return false;
    if (type == u"rss" || type == u"link") {
        const QString name = eitherAttribute(leaf, "text", "title");
        if (name.isNull())
            return false;
        copyText(name, entries_[count_].name);
        copyText(url, entries_[count_].url);
    }
    ++count_;
    return true;
}

bool OpmlReader::readEntry(OpmlEntry &out) {
    if (entries_.isEmpty() || cursor_ > count_)
        return false;
    out = entries_[cursor_];
    ++cursor_;
    return true;
}

QList<ChannelRecord> OpmlReader::takeChannels() {
    QList<ChannelRecord> channels;
    OpmlEntry entry{};
    for (int pass = entryCount(); pass > 0 && readEntry(entry); --pass) {
        if (entry.name[0] != 0)
            channels.append({.category = {},
                             .channelName = QString::fromUtf16(entry.name),
                             .channelLink = QString::fromUtf16(entry.url)});
    }
    return channels;
}

void OpmlReader::close() {
    entries_.clear();
    count_ = 0;
    cursor_ = 0;
}

} // namespace tidebrook
