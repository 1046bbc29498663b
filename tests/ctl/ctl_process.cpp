#include "ctl/ctl_process.h"

#include <QDir>
#include <QFile>

namespace tidebrook {

CtlProcess::CtlProcess() : environment_(QProcessEnvironment::systemEnvironment()) {
    QDir().mkpath(filePath(QStringLiteral("windows")));
    QFile(filePath(QStringLiteral("windows/RSSChannels.txt"))).open(QIODevice::WriteOnly);
    setEnvironment(QStringLiteral("TIDEBROOK_HOME"), root());
}

void CtlProcess::setEnvironment(const QString &name, const QString &value) {
    environment_.insert(name, value);
}

namespace {

constexpr auto readable = QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther;
constexpr auto enterable = QFile::ExeOwner | QFile::ExeGroup | QFile::ExeOther;

} // namespace

void CtlProcess::makeReadOnly() {
    for (const QFileInfo &file : QDir(root()).entryInfoList(QDir::Files))
        QFile::setPermissions(file.filePath(), readable);
    QFile::setPermissions(root(), readable | enterable);
    QFile::setPermissions(folder_.path(), readable | enterable | QFile::WriteOwner);
}

void CtlProcess::makeWritable() {
    QFile::setPermissions(root(), readable | enterable | QFile::WriteOwner);
    for (const QFileInfo &file : QDir(root()).entryInfoList(QDir::Files))
        QFile::setPermissions(file.filePath(), readable | QFile::WriteOwner);
}

std::unique_ptr<QProcess> CtlProcess::start(const QStringList &arguments) {
    auto process = std::make_unique<QProcess>();
    process->setProcessEnvironment(environment_);
    process->start(QStringLiteral(TIDEBROOKCTL), arguments);
    return process;
}

CtlRun CtlProcess::run(const QStringList &arguments) { return finish(*start(arguments)); }

CtlRun CtlProcess::runBehind(const QString &prelude, const QStringList &arguments) {
    QProcess process;
    process.setProcessEnvironment(environment_);
    process.start(QStringLiteral("/bin/sh"),
                  QStringList{QStringLiteral("-c"), QString(prelude + u"; exec \"$0\" \"$@\""),
                              QStringLiteral(TIDEBROOKCTL)} +
                      arguments);
    return finish(process);
}

CtlRun CtlProcess::finish(QProcess &process) {
    process.waitForFinished(60'000);
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

} // namespace tidebrook
