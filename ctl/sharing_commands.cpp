#include "ctl/article_operand.h"
#include "ctl/commands.h"
#include "ctl/output.h"
#include "platform/base/plain_file.h"
#include "platform/base/replace_file.h"
#include "share/article_sharing.h"
#include "share/opml_reader.h"
#include "share/opml_writer.h"

#include <QFile>

namespace tidebrook {

namespace {

bool isAddress(const QString &operand) {
    return operand.startsWith(QLatin1String("http://"), Qt::CaseInsensitive) ||
           operand.startsWith(QLatin1String("https://"), Qt::CaseInsensitive);
}

const QString standardStream = QStringLiteral("-"); // in the place of a file

// One byte more than `limit` at most.
QByteArray readStandardInput(qint64 limit) {
    QByteArray bytes;
    QFile input;
    if (input.open(stdin, QIODevice::ReadOnly))
        bytes = input.read(limit + 1);
    return bytes;
}

bool openList(OpmlReader &reader, const QString &source) {
    if (source == standardStream)
        return reader.openDocument(readStandardInput(HttpLimits().bodyBytes));
    return reader.open(isAddress(source) ? AddMode::ListFromUrl : AddMode::ListFromFile, source);
}

int failReading(const OpmlReader &reader, const QString &source) {
    const bool isMissing = source != standardStream && !isAddress(source) &&
                           fileKindAt(source, Links::Followed) == FileKind::Missing;
    return fail(source + u": " +
                (isMissing ? QStringLiteral("no such file") : messageWithCode(reader.error())));
}

int failWriting(const QString &path) {
    return fail(QStringLiteral("%1: the file cannot be written").arg(path));
}

// Reports what has become of a channel of a list.
bool importChannel(CommandDevice &device, const QString &category, const ChannelRecord &offered) {
    const QString name = storableName(offered.channelName);
    if (name.isEmpty()) {
        fail(offered.channelName + u": a channel needs a name");
        return false;
    }
    QString storedName;
    const ChangeEnd end =
        device.subscriptions().addChannel({category, name, offered.channelLink}, &storedName);
    if (end == ChangeEnd::Done)
        printLine(storedName);
    else
        fail(offered.channelName + u": " + failureOf(device, end));
    return end == ChangeEnd::Done;
}

} // namespace

int runImport(CommandDevice &device, const Arguments &arguments) {
    const QString source = arguments.operands[0];
    if (source.isEmpty())
        return fail(QStringLiteral("a list needs a file or an address"));
    OpmlReader reader(device.root, device.registry);
    if (!openList(reader, source))
        return failReading(reader, source);
    // Only now: others must not wait for the server that this waits for.
    if (!device.lock())
        return ExitFailed;
    const QString category = wantedCategory(device, arguments.operands[1].trimmed());
    if (category.isEmpty())
        return ExitFailed;
    bool isWhole = true;
    for (const ChannelRecord &offered : reader.takeChannels())
        isWhole = importChannel(device, category, offered) && isWhole;
    return isWhole ? ExitDone : ExitFailed;
}

int runExport(CommandDevice &device, const Arguments &arguments) {
    const QString category = arguments.operands.first();
    const QString channel = arguments.operands.size() == 3 ? arguments.operands[1] : QString();
    const QString path = arguments.operands.last();
    if (!device.hasCategory(category) || (!channel.isNull() && !jobOf(device, category, channel)))
        return ExitFailed;
    const auto document = opmlOf(device.store, category, channel);
    if (!document)
        return failStore(device);
    if (path != standardStream)
        return replaceFile(path, *document, Readers::Usual) ? ExitDone : failWriting(path);
    printDocument(*document);
    return ExitDone;
}

int runSave(CommandDevice &device, const Arguments &arguments) {
    const QString channel = arguments.operands[0];
    const QString what = arguments.operands[2];
    const QString path = arguments.operands[3];
    if (what != u"link" && what != u"article")
        return failUsage(QStringLiteral("what is saved is the \"link\" or the \"article\""));
    const auto article = wantedArticle(device, channel, arguments.operands[1]);
    if (!article)
        return ExitFailed;
    ArticleExtract extract{article->publicationDate, {}, article->itemLink};
    if (!device.store.ReadDescription(article->guid, extract.description))
        return failStore(device);
    const SaveKind kind = what == u"link" ? SaveKind::Link : SaveKind::Article;
    return saveArticleHtml(article->title, extract, path, kind) ? ExitDone : failWriting(path);
}

} // namespace tidebrook
