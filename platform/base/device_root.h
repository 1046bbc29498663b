#pragma once

#include <QString>

#include <functional>

namespace tidebrook {

/// The directory that stands for the device's file system. Everything the system keeps between
/// runs lies below it. A value; it opens nothing and keeps nothing open.
class DeviceRoot {
public:
    explicit DeviceRoot(const QString &path);

    /// `$TIDEBROOK_HOME`, or else `tidebrook` in the user's data folder.
    static DeviceRoot standard();

    QString path() const { return path_; }
    /// Whether there is a device: a folder with a registry, or with the folder `windows`. No other
    /// folder is one, and nothing is to be made in it.
    bool isDevice() const;

    /// Where a file of the device lies here: `\windows\X`, `\Temp\X`, or a bare name for the
    /// root of the device.
    QString filePath(QStringView devicePath) const;
    QString registryPath() const;

    /// Makes the root and the folders that every device has, where they are missing: `windows`,
    /// `Temp` and `run`. Only the user may enter what is made. False when one could not be made.
    bool makeFolders() const;

    /// Makes a device where there is nothing yet, or an empty folder. It is built aside, filled by
    /// `fill` (which is given the root being built and returns whether it succeeded), and put in
    /// place whole, so that no process ever sees half a device. True when there is a device
    /// afterwards, also when another process made it meanwhile; after a failure nothing is left
    /// behind. What a killed process left of a device that it was building is removed.
    bool provision(const std::function<bool(const DeviceRoot &)> &fill) const;

private:
    QString path_;
};

} // namespace tidebrook
