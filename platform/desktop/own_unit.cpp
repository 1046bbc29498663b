#include "platform/desktop/own_unit.h"

#include <QStandardPaths>

#include <unistd.h>

namespace tidebrook {

namespace {

using namespace Qt::StringLiterals;

// Children inherit the variable, with the number of a process that they are not.
bool isUnit() { return qgetenv("SYSTEMD_EXEC_PID") == QByteArray::number(getpid()); }

} // namespace

QStringList outsideOwnUnit(const QStringList &command, const QStringList &unitOptions) {
    const QString starter = isUnit() ? QStandardPaths::findExecutable(u"systemd-run"_s) : QString();
    if (starter.isEmpty())
        return command;
    return QStringList{starter, u"--user"_s, u"--quiet"_s, u"--collect"_s} + unitOptions +
           QStringList{u"--"_s} + command;
}

} // namespace tidebrook
