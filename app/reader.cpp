#include "app/reader.h"

#include "app/instance.h"
#include "platform/single_instance.h"
#include "res/default_channels.h"
#include "res/strings.h"
#include "store/provisioning.h"
#include "ui/kit/touch_style.h"

#include <QApplication>

#include <cstdio>

namespace tidebrook {

namespace {

constexpr std::chrono::seconds forwardPatience(15);

void prepareApplication() {
    QApplication::setApplicationName(QStringLiteral("tidebrook"));
    QApplication::setApplicationDisplayName(resourceString(programNameString));
    QApplication::setApplicationVersion(QStringLiteral(TIDEBROOK_VERSION));
    QGuiApplication::setDesktopFileName(QStringLiteral("tidebrook"));
    // The end of the screens is told by the category list, in nested loops, and by nothing else.
    QApplication::setQuitOnLastWindowClosed(false);
}

void makeDevice(const DeviceRoot &device) {
    // What cannot be made is told by the screens, which then find no device.
    if (device.isDevice() || provisionDevice(device, defaultChannelsFile(),
                                             todayItemKey(resourceString(todayItemNameString))))
        device.makeFolders();
}

} // namespace

int runReader(int argc, char **argv) {
    const DeviceRoot device = DeviceRoot::standard();
    makeDevice(device);
    SingleInstance single(device);
    const SingleInstance::Claim claim = single.claim(forwardPatience);
    if (claim == SingleInstance::Claim::NoAnswer)
        std::fputs("tidebrook: it runs already, but does not answer\n", stderr);
    if (claim == SingleInstance::Claim::BroughtForward || claim == SingleInstance::Claim::NoAnswer)
        return 0;
    DeviceOpening opening(device); // goes on while the application is made
    prepareApplication();
    const QApplication application(argc, argv);
    installTouchStyle(); // over that of the desktop, which is known now
    Instance instance(opening, single);
    instance.InitInstance();
    return 0;
}

} // namespace tidebrook
