#include "platform/base/device_root.h"

#include "platform/base/aside.h"
#include "platform/base/descriptor.h"
#include "platform/base/plain_file.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QStringList>

#include <algorithm>
#include <cstdio>

namespace tidebrook {

namespace {

const QStringList &folders() {
    static const QStringList names{QStringLiteral("windows"), QStringLiteral("Temp"),
                                   QStringLiteral("run")};
    return names;
}

// A folder with such a name may also be the user's own.
bool isUnfinishedRoot(const QString &path) {
    const QStringList entries =
        QDir(path).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    return QFileInfo(path).isDir() &&
           std::all_of(entries.begin(), entries.end(), [](const QString &name) {
               return folders().contains(name) || name.startsWith(u"registry.db");
           });
}

} // namespace

DeviceRoot::DeviceRoot(const QString &path) : path_(QDir::cleanPath(QDir(path).absolutePath())) {}

DeviceRoot DeviceRoot::standard() {
    const QString home = qEnvironmentVariable("TIDEBROOK_HOME");
    if (!home.isEmpty())
        return DeviceRoot(home);
    const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    return DeviceRoot(data + u"/tidebrook");
}

bool DeviceRoot::isDevice() const {
    return QFileInfo(registryPath()).isFile() || QFileInfo(path_ + u"/windows").isDir();
}

QString DeviceRoot::filePath(QStringView devicePath) const {
    QString relative = devicePath.toString();
    relative.replace(u'\\', u'/');
    return path_ + (relative.startsWith(u'/') ? u"" : u"/") + relative;
}

QString DeviceRoot::registryPath() const { return path_ + u"/registry.db"; }

bool DeviceRoot::makeFolders() const {
    return QDir().mkpath(QFileInfo(path_).path()) && makeOwnFolder(path_) &&
           std::all_of(folders().begin(), folders().end(),
                       [this](const QString &name) { return makeOwnFolder(path_ + u'/' + name); });
}

bool DeviceRoot::provision(const std::function<bool(const DeviceRoot &)> &fill) const {
    const QString prefix = path_ + u".new-";
    removeLeftAside(prefix, isUnfinishedRoot);
    const QString parent = QFileInfo(path_).path();
    if (isDevice() || !QDir().mkpath(parent))
        return isDevice();
    const Aside aside = makeFolderAside(prefix);
    const Descriptor lock(aside.descriptor);
    if (!lock.isOpen())
        return false;
    const DeviceRoot built(aside.path);
    const bool isBuilt = built.makeFolders() && fill(built) && syncFolder(aside.path);
    // The rename fails unless an empty folder or nothing is in place. A device that another process
    // made first will do.
    if (isBuilt && std::rename(QFile::encodeName(aside.path).constData(),
                               QFile::encodeName(path_).constData()) == 0)
        syncFolder(parent);
    else
        QDir(aside.path).removeRecursively();
    return isDevice();
}

} // namespace tidebrook
