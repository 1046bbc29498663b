#include "kit/files/file_name.h"

#include "platform/base/text.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace tidebrook {

namespace {

constexpr qsizetype nameBytes = 255; // of most file systems

qsizetype byteCount(QStringView text) { return text.toUtf8().size(); }

QStringView cutToBytes(QStringView text, qsizetype bytes) {
    QStringView cut = cutText(text, bytes);
    while (byteCount(cut) > bytes)
        cut = cutText(cut, cut.size() - 1);
    return cut;
}

bool hasEnding(const QString &name, const QString &ending) {
    return name.endsWith(ending, Qt::CaseInsensitive);
}

} // namespace

QString possibleFileName(const QString &text, const QString &ending, qsizetype limit) {
    const QString name = withoutHidden(text).replace(u'/', u' ').trimmed();
    const QString kept = hasEnding(name, ending) ? name.last(ending.size()) : QString();
    QStringView stem = QStringView(name).chopped(kept.size());
    while (!stem.isEmpty() && (stem.front() == u'.' || stem.front().isSpace()))
        stem = stem.sliced(1);
    stem = cutText(stem, limit - ending.size());
    stem = cutToBytes(stem, nameBytes - byteCount(ending)).trimmed();
    return stem.isEmpty() ? QString() : QString(stem.toString() + kept);
}

QString withEnding(const QString &path, const QString &ending) {
    return hasEnding(path, ending) ? path : QString(path + ending);
}

bool isNameTooLong(const QString &name) { return QFile::encodeName(name).size() > nameBytes; }

QString pathIn(const QString &folder, const QString &name) {
    if (folder.endsWith(u'/'))
        return folder + name;
    return folder + u'/' + name;
}

QString nearestFolder(const QString &folder) {
    QFileInfo place(folder);
    while (!place.isDir() && !place.isRoot())
        place.setFile(place.path());
    return place.filePath();
}

// Not by QDir::isAbsolutePath, which takes a leading colon for an absolute path.
QString pathMeant(const QString &text, const QString &folder) {
    if (text == u'~' || text.startsWith(QLatin1String("~/")))
        return QDir::cleanPath(QDir::homePath() + text.sliced(1));
    if (text.startsWith(u'/'))
        return QDir::cleanPath(text);
    return QDir::cleanPath(pathIn(folder, text));
}

QString documentsFolder() {
    return QDir::cleanPath(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
}

QString pathFromDocuments(const QString &path) {
    const QString inside = documentsFolder() + u'/';
    return path.startsWith(inside) ? path.sliced(inside.size()) : path;
}

} // namespace tidebrook
