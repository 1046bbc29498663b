#include "platform/desktop/own_program.h"

#include <QFileInfo>
#include <QStandardPaths>

namespace tidebrook {

QString ownProgram(const QString &name) {
    const QString running = QFile::symLinkTarget(QStringLiteral("/proc/self/exe"));
    const QFileInfo beside(QFileInfo(running).path() + u'/' + name);
    if (beside.isFile() && beside.isExecutable())
        return beside.filePath();
    return QStandardPaths::findExecutable(name);
}

} // namespace tidebrook
