#include "platform/device_root.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTemporaryDir>

namespace tidebrook {

DeviceRoot::DeviceRoot(const QString &path) : path_(QDir::cleanPath(QDir(path).absolutePath())) {}

DeviceRoot DeviceRoot::standard() {
    const QString home = qEnvironmentVariable("TIDEBROOK_HOME");
    if (!home.isEmpty())
        return DeviceRoot(home);
    const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    return DeviceRoot(data + u"/tidebrook");
}

bool DeviceRoot::exists() const { return QFileInfo(path_).isDir(); }

QString DeviceRoot::filePath(QStringView devicePath) const {
    QString relative = devicePath.toString();
    relative.replace(u'\\', u'/');
    return path_ + (relative.startsWith(u'/') ? u"" : u"/") + relative;
}

QString DeviceRoot::registryPath() const { return path_ + u"/registry.db"; }

bool DeviceRoot::makeFolders() const {
    const QString run = path_ + u"/run";
    const auto userOnly = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;
    const QDir dir;
    return dir.mkpath(path_ + u"/windows") && dir.mkpath(path_ + u"/Temp") &&
           (QFileInfo(run).isDir() || dir.mkdir(run, userOnly));
}

bool DeviceRoot::provision(const std::function<bool(const DeviceRoot &)> &furnish) const {
    if (exists())
        return true;
    if (!QDir().mkpath(QFileInfo(path_).path()))
        return false;
    QTemporaryDir aside(path_ + u".new-XXXXXX");
    if (!aside.isValid())
        return false;
    const DeviceRoot built(aside.path());
    if (!built.makeFolders() || !furnish(built))
        return false;
    // The rename fails where somebody else's root has come into place first: theirs then serves.
    if (!QDir().rename(aside.path(), path_))
        return exists();
    aside.setAutoRemove(false);
    return true;
}

} // namespace tidebrook
