#include "platform/base/file_identity.h"

#include <QFile>

#include <sys/stat.h>

namespace tidebrook {

FileIdentities identitiesOf(const QStringList &paths) {
    FileIdentities found;
    found.reserve(paths.size());
    for (const QString &path : paths) {
        struct stat status {};
        if (stat(QFile::encodeName(path).constData(), &status) != 0)
            return {};
        found.append({status.st_dev, status.st_ino});
    }
    return found;
}

} // namespace tidebrook
