#include "platform/replace_file.h"

#include <QFileInfo>
#include <QSaveFile>

namespace tidebrook {

bool isReplaceable(const QString &path) {
    const QFileInfo there(path);
    return !there.exists() || there.isFile();
}

bool replaceFile(const QString &path, const QByteArray &content) {
    QSaveFile file(path);
    // With a buffer, commit would not notice that writing it has failed, and put half a file in
    // place.
    return file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) &&
           file.write(content) == content.size() && file.commit();
}

} // namespace tidebrook
