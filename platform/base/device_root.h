#pragma once

#include <QString>

#include <functional>

namespace tidebrook {

/// The directory that stands for the device's file system, and holds everything that is kept
/// between runs. A value, which keeps nothing open.
class DeviceRoot {
public:
    explicit DeviceRoot(const QString &path);

    /// `$TIDEBROOK_HOME`, or else `tidebrook` in the user's data folder.
    static DeviceRoot standard();

    QString path() const { return path_; }
    /// Whether there is a device: a folder with a registry, or with the folder `windows`. Nothing
    /// may be made in any other folder.
    bool isDevice() const;

    /// The path of a file of the device: `\windows\X`, `\Temp\X`, or a bare name in the root.
    QString filePath(QStringView devicePath) const;
    QString registryPath() const;

    /// Makes the root and its folders `windows`, `Temp` and `run`, where they are missing. Only the
    /// user may enter what is made. False when one could not be made.
    bool makeFolders() const;

    /// Makes a device where there is nothing yet, or an empty folder. It is built aside, filled by
    /// `fill`, which gets the root being built and returns whether it succeeded, and put in place
    /// whole. True when there is a device afterwards, also when another process made it meanwhile;
    /// after a failure nothing is left behind. Removes what a killed process was building.
    bool provision(const std::function<bool(const DeviceRoot &)> &fill) const;

private:
    QString path_;
};

} // namespace tidebrook
