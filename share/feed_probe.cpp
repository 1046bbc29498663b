#include "share/feed_probe.h"

#include "platform/base/text.h"
#include "share/download_failure.h"

#include <QIODevice>

#include <functional>

namespace tidebrook {

namespace {

constexpr qsizetype openingSize = 1024;    // bytes of the document that are looked at
constexpr qsizetype typePositions = 1020;  // where in them a type's tag can begin,
constexpr qsizetype titlePositions = 1017; // and a tag of the title
constexpr qsizetype titleLimit = 49;       // bytes

/// What is found in the opening of a document, if it can be found yet.
using Scan = std::function<std::optional<QString>(const QByteArray &opening)>;

/// Scans a document while it is received, and ends the download when something is found, or no
/// longer can be.
class Opening : public QIODevice {
public:
    explicit Opening(const Scan &scan) : scan_(scan) { open(WriteOnly | Unbuffered); }

    bool isSettled() const { return found_ || bytes_.size() >= openingSize; }
    const std::optional<QString> &found() const { return found_; }

protected:
    qint64 readData(char *, qint64) override { return -1; }
    qint64 writeData(const char *data, qint64 size) override {
        bytes_.append(data, qMin(size, openingSize - bytes_.size()));
        found_ = scan_(bytes_);
        return isSettled() ? -1 : size;
    }

private:
    const Scan scan_;
    QByteArray bytes_;
    std::optional<QString> found_;
};

// Where a tag begins; `openingSize` when it does not come in time.
qsizetype positionOf(QByteArrayView tag, const QByteArray &opening, qsizetype positions) {
    const qsizetype position = opening.indexOf(tag);
    return position >= 0 && position < positions ? position : openingSize;
}

std::optional<QString> typeIn(const QByteArray &opening) {
    const QByteArray lower = opening.toLower();
    const qsizetype list = positionOf("<opml", lower, typePositions);
    const qsizetype feed = positionOf("<rss", lower, typePositions);
    if (list == feed)
        return std::nullopt;
    return list < feed ? QStringLiteral("<opml") : QStringLiteral("<rss");
}

// Empty for a document without a title.
std::optional<QString> titleIn(const QByteArray &opening) {
    constexpr QByteArrayView startTag = "<title>";
    const qsizetype end = positionOf("</title>", opening, titlePositions);
    if (end == openingSize)
        return std::nullopt;
    const QByteArrayView before = QByteArrayView(opening).first(end);
    const qsizetype start = before.lastIndexOf(startTag);
    if (start < 0)
        return QString();
    return QString::fromUtf8(cutUtf8(before.sliced(start + startTag.size()), titleLimit));
}

std::optional<QString> probe(Registry &registry, const QString &url, const HttpLimits &limits,
                             const Scan &scan) {
    Opening opening(scan);
    const HttpProgress progress = httpDownloadDirect(url, opening, limits);
    if (opening.isSettled() || progress == HttpProgress::Complete)
        return opening.found();
    recordDownloadFailure(registry, progress, limits);
    return std::nullopt;
}

} // namespace

std::optional<QString> probeType(Registry &registry, const QString &url, const HttpLimits &limits) {
    return probe(registry, url, limits, typeIn);
}

std::optional<QString> probeTitle(Registry &registry, const QString &url,
                                  const HttpLimits &limits) {
    const std::optional<QString> title = probe(registry, url, limits, titleIn);
    return title && !title->isEmpty() ? title : std::nullopt;
}

} // namespace tidebrook
